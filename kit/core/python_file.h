#pragma once

#include <array>
#include <string_view>

// The extensions of Python source files.
inline constexpr std::array<std::string_view, 2> kPythonExtensions{".py", ".pyw"};

// Whether a file with this name is Python source. [any]
constexpr bool IsPythonFile(std::string_view name)
{
    for (const auto extension : kPythonExtensions) {
        if (name.ends_with(extension)) {
            return true;
        }
    }
    return false;
}
