#include "board_scripts.h"

#include "qt_version.h"

#include <QByteArray>

#include <algorithm>
#include <sstream>

namespace {

// Marks the lines that the host reads: other programs of the board, such as boot.py, print as well.
constexpr std::string_view kEntryMark = "quilp-entry ";
constexpr std::string_view kFirmwareMark = "Firmware: ";

constexpr const char* kPrintFirmware =
    "import sys\n"
    "print('Firmware:', sys.version.split('; ')[-1])\n";

// The names are printed as hexadecimal numbers, because they may contain any character.
constexpr const char* kListFiles =
    "import os\n"
    "def walk(folder):\n"
    "    try:\n"
    "        for entry in os.ilistdir(folder or '/'):\n"
    "            path = folder + '/' + entry[0]\n"
    "            name = ''.join(['%02x' % byte for byte in path.encode()])\n"
    "            if entry[1] & 0x4000:\n"
    "                print('quilp-entry', -1, name)\n"
    "                walk(path)\n"
    "            else:\n"
    "                size = entry[3] if len(entry) > 3 else os.stat(path)[6]\n"
    "                print('quilp-entry', size, name)\n"
    "    except OSError:\n"
    "        pass\n"
    "walk('')\n";

// The rest of a line that begins with the mark; empty for other lines.
std::string_view After(std::string_view mark, const std::string& line)
{
    const bool isMarked = std::string_view(line).starts_with(mark);
    return isMarked ? std::string_view(line).substr(mark.size()) : std::string_view();
}

BoardEntry ParseEntry(std::string_view text)
{
    const auto space = text.find(' ');
    const auto name = text.substr(std::min(space, text.size() - 1) + 1);
    const auto size = QByteArray::fromStdString(std::string(text.substr(0, space)));
    const auto path = QByteArray::fromHex(
        QByteArray(name.data(), static_cast<QtSize>(name.size())));  // Skips the line's end.
    return {path.toStdString(), size == "-1", std::max(size.toLongLong(), 0LL)};
}

}  // namespace

std::string BoardPathWord(std::string_view path)
{
    std::string word = ":";
    for (const char c : path) {
        if (c == '\'' || c == '\\') {
            word += '\\';
        }
        word += c;
    }
    return word;
}

std::vector<std::string> RestartWords()
{
    return {"soft-reset", "exec", kPrintFirmware};
}

std::vector<std::string> ListFilesWords()
{
    return {"exec", std::string(kPrintFirmware) + kListFiles};
}

std::vector<BoardEntry> ParseEntries(const std::string& output)
{
    std::vector<BoardEntry> entries;
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        if (const auto text = After(kEntryMark, line); !text.empty()) {
            entries.push_back(ParseEntry(text));
        }
    }
    std::ranges::sort(entries, {}, &BoardEntry::path);
    return entries;
}

QString ParseFirmware(const std::string& output)
{
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        if (const auto text = After(kFirmwareMark, line); !text.empty()) {
            return QString::fromStdString(std::string(text)).trimmed();
        }
    }
    return {};
}
