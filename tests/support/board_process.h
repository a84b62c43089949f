#pragma once

#include "subprocess.h"
#include "wait.h"

#include <memory>
#include <string>
#include <vector>

// A client of a board's serial device.
class BoardLine {
  public:
    explicit BoardLine(const std::string& device);
    BoardLine(const BoardLine&) = delete;
    BoardLine& operator=(const BoardLine&) = delete;
    ~BoardLine();

    void Send(std::string_view text) const;
    // Reads up to and including `text`; everything that arrived if it did not arrive in time.
    std::string ReadTo(std::string_view text,
                       std::chrono::milliseconds patience = std::chrono::seconds(20));

  private:
    int fd_;
    std::string pending_;
};

// A virtual board with a folder of its own.
class BoardProcess {
  public:
    using Files = std::vector<std::pair<std::string, std::string>>;  // names and contents

    // With these files at power-on.
    explicit BoardProcess(const Files& files = {});

    const TemporaryFolder& files() const { return files_; }
    // The serial device; changes when the board is plugged in again.
    std::string devicePath() const;
    // A permanent link to it.
    std::string link() const { return run_ / "port"; }
    // The socket that serves its pins.
    std::string pins() const { return run_ / "port.pins"; }
    void SetPlugged(bool plugged);
    // The environment of programs that use this board.
    std::vector<std::string> variables() const;

    // Runs the real tool with these words.
    ProgramResult Tool(const std::vector<std::string>& words) const;

    // Sends empty lines until the board answers with its prompt, as it does when no program runs.
    // Sends no interrupt. False if it did not answer in time.
    bool IsAtPrompt() const;

  private:
    void Start();

    TemporaryFolder files_;
    TemporaryFolder run_;
    std::unique_ptr<BackgroundProgram> process_;
};
