#pragma once

#include <string>

// An entry of the local file system. Each call queries the file system again. [any]
class BEntry {
  public:
    // With `traverse`, a symbolic link is replaced by its target.
    BEntry(std::string path, bool traverse);

    // Also false if the entry does not exist or cannot be queried.
    bool IsDirectory() const;

  private:
    std::string path_;
    bool traverse_;
};
