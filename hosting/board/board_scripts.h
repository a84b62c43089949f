#pragma once

#include <QString>

#include <string>
#include <string_view>
#include <vector>

// What hosts make the tool do on the board, as the words after the tool's path. [any]

// The path of a file on the board as the tool takes it in a command line. The tool puts paths
// between single quotes into programs, without escaping what is special there.
std::string BoardPathWord(std::string_view path);

// Restarts the board and prints its firmware.
std::vector<std::string> RestartWords();

// Lists all files and directories of the board.
std::vector<std::string> ListFilesWords();

struct BoardEntry {
    std::string path;  // Begins with "/".
    bool isDirectory = false;
    long long size = 0;  // bytes

    bool operator==(const BoardEntry&) const = default;
};
// The entries in the output of ListFilesWords, sorted by their paths.
std::vector<BoardEntry> ParseEntries(const std::string& output);

// The board's firmware in the output of RestartWords and ListFilesWords, such as "MicroPython
// v1.26.1"; empty if it is missing.
QString ParseFirmware(const std::string& output);
