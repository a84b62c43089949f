#pragma once

#include <string>

// Joins `dir` and `leaf` with a "/", unless `dir` already ends with one. [any]
std::string AppendPath(const std::string& dir, const std::string& leaf);

// The part of `path` before its last "/"; the whole path if it has none. The result is "/" for a
// top-level entry and for "/" itself. [any]
std::string ParentPath(const std::string& path);
