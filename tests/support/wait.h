#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

// Runs the event loop until the condition is true. False if it was not in time.
bool WaitUntil(const std::function<bool()>& condition,
               std::chrono::milliseconds patience = std::chrono::seconds(20));

// A new folder, removed with this object.
class TemporaryFolder {
  public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    std::string path() const { return path_.string(); }
    std::string operator/(const std::string& name) const { return (path_ / name).string(); }
    // Creates a file in it and returns its path.
    std::string Write(const std::string& name, std::string_view content) const;

  private:
    std::filesystem::path path_;
};

// All 256 byte values.
std::string EveryByte();

// The content of a file; empty if it cannot be read.
std::string ReadFile(const std::string& path);
