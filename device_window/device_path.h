#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Paths on the board: bytes with "/" as the only separator. Nothing is normalised.

// `dir` and `leaf` with one "/" between them; a "/" at the end of `dir` serves as that.
std::string AppendPath(std::string_view dir, std::string_view leaf);

// What stands before the last "/"; the whole path when there is none. So the parent of an entry at
// the top is empty.
std::string ParentPath(std::string_view path);

// What stands after the last "/"; the whole path when there is none.
std::string LeafItem(std::string_view path);

// Walks over the components of a path, the root "/" first. Of several "/" at the beginning the last
// is the root; a path without one begins with an empty component.
//
//     for (PathIter i(path); !i.AtEnd(); i.Advance()) { use(i.Component()); }
struct PathIter {
    // `path` is not copied and must outlive this object.
    explicit PathIter(std::string_view path);

    void Advance();
    bool AtEnd() const { return start == path.size() && end == path.size(); }
    std::string_view Component() const { return path.substr(start, end - start); }

    std::string_view path;
    std::size_t start;  // of the current component
    std::size_t end;    // of the current component
};
