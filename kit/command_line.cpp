#include "command_line.h"

#include <glib.h>

std::expected<std::vector<std::string>, std::string> CutCommandLine(const std::string& line)
{
    int count = 0;
    char** words = nullptr;
    GError* error = nullptr;
    if (!g_shell_parse_argv(line.c_str(), &count, &words, &error)) {
        std::string message = error->message;
        g_error_free(error);
        return std::unexpected(std::move(message));
    }
    std::vector<std::string> result(words, words + count);
    g_strfreev(words);
    return result;
}
