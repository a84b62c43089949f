#pragma once

#include <expected>
#include <optional>
#include <string>
#include <utility>

// A folder that belongs to this process as long as the object exists, marked by a lock on a file in
// it. The system releases the lock when the process exits for any reason, so the lock shows
// reliably whether the owner is still running; a process number in a file might have been reused.
// Only this user can access the folder. [any]
class ProcessFolder {
  public:
    // Creates a folder in `root`, and `root` itself if necessary. The error is a message for the
    // user.
    static std::expected<ProcessFolder, std::string> Make(const std::string& root);
    // Adopts the folder of a process that has exited. None if a running process owns it.
    static std::optional<ProcessFolder> Adopt(const std::string& path);

    ProcessFolder(ProcessFolder&& other) noexcept;
    ProcessFolder& operator=(ProcessFolder&&) = delete;
    // Removes the folder if it is empty.
    ~ProcessFolder();

    const std::string& path() const { return path_; }

    // Whether an entry of the folder is the lock file.
    static bool IsLock(const std::string& name);
    // Whether the name is that of a process folder in `root`.
    static bool IsProcessFolder(const std::string& name);

  private:
    ProcessFolder(std::string path, int lock) : path_(std::move(path)), lock_(lock) {}

    std::string path_;
    int lock_;
};
