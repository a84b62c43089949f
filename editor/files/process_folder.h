#pragma once

#include <expected>
#include <optional>
#include <string>
#include <utility>

// A folder that belongs to this process for as long as the object lives, marked by a lock on a file
// in it. The system itself gives the lock back when the process ends, however it does, so it can be
// told at once whether a folder's process lives. A number in a file could not tell that: another
// process may have got it meanwhile. Only this user may look into the folder.
class ProcessFolder {
  public:
    // Makes one in `root`, and `root` itself where it is missing. The error is a sentence.
    static std::expected<ProcessFolder, std::string> Make(const std::string& root);
    // Takes a folder over that was made by a process that has ended. None when another owns it.
    static std::optional<ProcessFolder> Adopt(const std::string& path);

    ProcessFolder(ProcessFolder&& other) noexcept;
    ProcessFolder& operator=(ProcessFolder&&) = delete;
    // Removes the folder when nothing is left in it.
    ~ProcessFolder();

    const std::string& path() const { return path_; }

    // Whether a folder's entry is the lock.
    static bool IsLock(const std::string& name);
    // Whether an entry of `root` is such a folder, by its name.
    static bool IsOne(const std::string& name);

  private:
    ProcessFolder(std::string path, int lock) : path_(std::move(path)), lock_(lock) {}

    std::string path_;
    int lock_;
};
