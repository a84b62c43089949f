#pragma once

#include "subprocess.h"
#include "wait.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

// A client of a board's serial line, for what the tool would not send.
class BoardLine {
  public:
    explicit BoardLine(const std::string& device);
    BoardLine(const BoardLine&) = delete;
    BoardLine& operator=(const BoardLine&) = delete;
    ~BoardLine();

    void Send(std::string_view text) const;
    // Reads up to and with `text`; all there was when it did not come.
    std::string ReadTo(std::string_view text,
                       std::chrono::milliseconds patience = std::chrono::seconds(15));

  private:
    int fd_;
    std::string pending_;
};

// A virtual board of the test's own, as a process of its own, with a folder of its own.
class BoardProcess {
  public:
    using Files = std::vector<std::pair<std::string, std::string>>;  // names and contents

    // With these files at power-on.
    explicit BoardProcess(const Files& files = {});

    // The board's files.
    const TemporaryFolder& files() const { return files_; }
    // The line-device; changes when the board is plugged again.
    std::string devicePath() const;
    // A link to it, which stays the same.
    std::string link() const { return run_ / "port"; }
    bool isPlugged() const;
    void Unplug();
    void Plug();
    // For the environment of programs that are to see this board.
    std::vector<std::string> variables() const;

    // Runs the real tool with these words.
    ProgramResult Tool(const std::vector<std::string>& words) const;

    // Whether the board answers an empty line with its prompt, which it does only when no program
    // runs on it. Sends no interrupt.
    bool IsAtPrompt() const;

  private:
    void Start();

    TemporaryFolder files_;
    TemporaryFolder run_;
    std::unique_ptr<BackgroundProgram> process_;
};
