#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Paths on the board: bytes with "/" as the only separator. They are never normalised. [any]

// Joins `dir` and `leaf` with a "/", unless `dir` ends with one.
std::string AppendPath(std::string_view dir, std::string_view leaf);

// The part before the last "/"; the whole path when there is none. The parent of a top-level entry
// is therefore empty.
std::string ParentPath(std::string_view path);

// The part after the last "/"; the whole path when there is none.
std::string LeafItem(std::string_view path);

// Iterates over the components of a path, beginning with the root "/". Of several leading "/" the
// last one is the root; a path without a leading "/" begins with an empty component.
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
