#pragma once

#include <string>
#include <utility>

// A reference to a file by its full path; the file need not exist. A copyable value. [any]
class EntryRef {
  public:
    // An empty reference: path and name are empty.
    EntryRef() = default;
    explicit EntryRef(std::string path) : path_(std::move(path)) {}

    // The full path, as passed to the constructor.
    const std::string& path() const { return path_; }

    // The leaf name: the part after the last "/" of the path. Valid as long as this object.
    const char* name() const
    {
        const auto slash = path_.rfind('/');
        return path_.c_str() + (slash == std::string::npos ? 0 : slash + 1);
    }

  private:
    std::string path_;
};
