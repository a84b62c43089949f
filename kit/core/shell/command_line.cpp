#include "command_line.h"

#include <glib.h>

std::expected<std::vector<std::string>, std::string> SplitCommandLine(const std::string& line)
{
    int count = 0;
    char** words = nullptr;
    GError* error = nullptr;
    if (!g_shell_parse_argv(line.c_str(), &count, &words, &error)) {
        // GLib's own message repeats the whole line.
        const bool isEmpty = error->code == G_SHELL_ERROR_EMPTY_STRING;
        g_error_free(error);
        return std::unexpected(isEmpty ? "it is empty" : "its quotes are not balanced");
    }
    std::vector<std::string> result(words, words + count);
    g_strfreev(words);
    return result;
}
