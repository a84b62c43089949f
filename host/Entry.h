#pragma once

#include <string>

// An entry of the local file system, asked anew by each question.
class BEntry {
  public:
    // With `traverse`, a symbolic link stands for what it points to.
    BEntry(std::string path, bool traverse);

    // False also when there is no such entry or it cannot be asked.
    bool IsDirectory() const;

  private:
    std::string path_;
    bool traverse_;
};
