#include "command_line.h"

#include <glib.h>

namespace {

constexpr std::string_view kSpecial = " \t'\"\\";

// A comment begins with "#" at the beginning of a word.
bool BeginsComment(std::string_view text, std::size_t at)
{
    return text[at] == '#' && (at == 0 || std::string_view(" \t\n").contains(text[at - 1]));
}

}  // namespace

std::string EscapeWord(std::string_view text)
{
    std::string word;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n') {
            word += "'\n'";  // After a backslash, it would be removed.
            continue;
        }
        if (kSpecial.contains(text[i]) || BeginsComment(text, i)) {
            word += '\\';
        }
        word += text[i];
    }
    return word;
}

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
