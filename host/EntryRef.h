#pragma once

#include <string>
#include <utility>

// A reference to a file by its full path; the file need not exist. A copyable value. [any]
class EntryRef {
  public:
    // An empty reference: path and name are empty.
    EntryRef() = default;
    explicit EntryRef(std::string path) : path_(std::move(path))
    {
        const auto slash = path_.rfind('/');
        name_ = path_.substr(slash == std::string::npos ? 0 : slash + 1);
    }
    // A path in a form in which its end is not the name itself.
    EntryRef(std::string path, std::string name) : path_(std::move(path)), name_(std::move(name)) {}

    // The full path, as passed to the constructor.
    const std::string& path() const { return path_; }

    // The leaf name: the part after the last "/" of the path. Valid as long as this object.
    const char* name() const { return name_.c_str(); }

  private:
    std::string path_;
    std::string name_;
};
