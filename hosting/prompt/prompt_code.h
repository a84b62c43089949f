#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Code and command lines for the prompt of a board. Texts are UTF-8. [any]

// The program that does what an interactive prompt does with the text: the value of a single line
// is printed, several lines run as they are. Its tracebacks name "<stdin>".
std::string PromptProgram(std::string_view text);

// The words after the tool's path that run the text with the board's state kept. Empty if there is
// nothing to run, or if the text contains a NUL character, which no command line can.
std::vector<std::string> PromptCommand(const std::string& text);

// The lines without the white space that all of them begin with. Blank lines do not count, and line
// endings become "\n".
std::string RemoveCommonIndentation(std::string_view text);

// A name that is being typed.
struct CompletionRequest {
    std::string object;  // The expression before the last dot; empty for a plain name.
    std::string stem;    // The start of the name; may be empty after a dot.

    bool operator==(const CompletionRequest&) const = default;
};

// The name or chain of attributes that the text ends with. Nothing if it ends otherwise, or if the
// value before the dot is not a chain of names: only these are safe to evaluate.
std::optional<CompletionRequest> FindCompletion(std::string_view textBeforeCaret);

// The words after the tool's path that list the names in an object, or all global names.
std::vector<std::string> CompletionCommand(const std::string& object);

// The names in the board's answer that continue the request, sorted. Private names are included
// only if the stem is one.
std::vector<std::string> ParseCompletions(std::string_view answer,
                                          const CompletionRequest& request);

std::string CommonPrefix(const std::vector<std::string>& names);
