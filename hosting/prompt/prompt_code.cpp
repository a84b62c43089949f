#include "prompt_code.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <set>

namespace {

constexpr std::string_view kBlank = " \t";

constexpr std::array<std::string_view, 32> kKeywords{
    "False",    "None",  "True",     "and",    "as",    "assert", "async", "await",
    "break",    "class", "continue", "def",    "del",   "elif",   "else",  "except",
    "finally",  "for",   "from",     "global", "if",    "import", "in",    "lambda",
    "nonlocal", "not",   "or",       "pass",   "raise", "return", "while", "yield"};

std::string WithPlainLineEnds(std::string_view text)
{
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isReturn = text[i] == '\r';
        plain += isReturn ? '\n' : text[i];
        i += isReturn && text.substr(i + 1).starts_with('\n') ? 1 : 0;
    }
    return plain;
}

std::vector<std::string_view> Lines(std::string_view text)
{
    std::vector<std::string_view> lines;
    for (auto end = text.find('\n'); end != text.npos; end = text.find('\n')) {
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    lines.push_back(text);
    return lines;
}

std::string_view IndentOf(std::string_view line)
{
    return line.substr(0, std::min(line.find_first_not_of(kBlank), line.size()));
}

bool IsBlank(std::string_view line)
{
    return IndentOf(line).size() == line.size();
}

bool IsControl(char c)
{
    return static_cast<unsigned char>(c) < ' ';
}

// A string literal of Python. It contains no control characters, which the board would obey.
std::string Quote(std::string_view text)
{
    std::string quoted = "\"";
    for (const char c : text) {
        if (IsControl(c)) {
            std::array<char, 5> escape{};
            std::snprintf(escape.data(), escape.size(), "\\x%02x", static_cast<unsigned>(c));
            quoted += escape.data();
        } else {
            quoted += c == '"' || c == '\\' ? std::string{'\\', c} : std::string{c};
        }
    }
    return quoted + '"';
}

std::string Compiled(std::string_view text, std::string_view mode)
{
    return "exec(compile(" + Quote(text) + ",\"<stdin>\",\"" + std::string(mode) + "\"))";
}

bool IsNameCharacter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

bool IsName(std::string_view text)
{
    return !text.empty() && !(text[0] >= '0' && text[0] <= '9') &&
           std::ranges::all_of(text, IsNameCharacter);
}

bool IsChain(std::string_view text)
{
    while (text.find('.') != text.npos) {
        if (!IsName(text.substr(0, text.find('.')))) {
            return false;
        }
        text.remove_prefix(text.find('.') + 1);
    }
    return IsName(text);
}

}  // namespace

std::string PromptProgram(std::string_view text)
{
    std::string code = RemoveCommonIndentation(text);
    code.erase(code.find_last_not_of(" \t\n") + 1);
    code.erase(0, code.find_last_of('\n', code.find_first_not_of(" \t\n")) + 1);
    if (code.empty()) {
        return code;
    }
    if (code.find('\n') == code.npos) {
        return Compiled(code, "single");
    }
    const auto isObeyed = [](char c) { return IsControl(c) && c != '\n' && c != '\t'; };
    if (std::ranges::any_of(code, isObeyed)) {
        return Compiled(code, "exec");
    }
    // The tool would take a word that begins with a hyphen for an option.
    return code.starts_with('-') ? "pass;" + code : code;
}

std::vector<std::string> PromptCommand(const std::string& text)
{
    const std::string program = PromptProgram(text);
    if (program.empty() || text.find('\0') != text.npos) {
        return {};
    }
    return {"resume", "exec", program};
}

std::string RemoveCommonIndentation(std::string_view text)
{
    const std::string plain = WithPlainLineEnds(text);
    const auto lines = Lines(plain);
    std::optional<std::string_view> common;
    for (const auto line : lines) {
        if (!IsBlank(line)) {
            const auto indent = IndentOf(line);
            const auto shared = std::ranges::mismatch(common.value_or(indent), indent).in2;
            common = indent.substr(0, static_cast<std::size_t>(shared - indent.begin()));
        }
    }
    std::string result;
    for (const auto line : lines) {
        result += line.data() == plain.data() ? "" : "\n";
        // Blank lines may be indented less. In a string their blanks count.
        result += line.substr(std::min(common.value_or(line).size(), line.size()));
    }
    return result;
}

std::optional<CompletionRequest> FindCompletion(std::string_view textBeforeCaret)
{
    const auto isPart = [](char c) { return IsNameCharacter(c) || c == '.'; };
    const auto rest =
        std::ranges::find_if_not(textBeforeCaret.rbegin(), textBeforeCaret.rend(), isPart);
    const auto length = static_cast<std::size_t>(rest - textBeforeCaret.rbegin());
    const auto chain = textBeforeCaret.substr(textBeforeCaret.size() - length);
    const auto dot = chain.rfind('.');
    if (dot == chain.npos) {
        return IsName(chain) ? std::optional<CompletionRequest>({"", std::string(chain)})
                             : std::nullopt;
    }
    const auto object = chain.substr(0, dot);
    const auto stem = chain.substr(dot + 1);
    if (!IsChain(object) || !(stem.empty() || IsName(stem))) {
        return std::nullopt;
    }
    return CompletionRequest{std::string(object), std::string(stem)};
}

std::vector<std::string> CompletionCommand(const std::string& object)
{
    return {"resume", "eval",
            object.empty() ? "dir()+dir(__import__(\"builtins\"))" : "dir(" + object + ")"};
}

std::vector<std::string> ParseCompletions(std::string_view answer, const CompletionRequest& request)
{
    std::set<std::string> names;
    const auto add = [&](std::string_view name) {
        const bool isPrivate = name.starts_with('_') && !request.stem.starts_with('_');
        if (IsName(name) && name.starts_with(request.stem) && !isPrivate) {
            names.emplace(name);
        }
    };
    while (answer.find('\'') != answer.npos) {
        answer.remove_prefix(answer.find('\'') + 1);
        const auto end = std::min(answer.find('\''), answer.size());
        add(answer.substr(0, end));
        answer.remove_prefix(std::min(end + 1, answer.size()));
    }
    if (request.object.empty()) {
        std::ranges::for_each(kKeywords, add);
    }
    return {names.begin(), names.end()};
}

std::string CommonPrefix(const std::vector<std::string>& names)
{
    std::string prefix = names.empty() ? std::string() : names.front();
    for (const auto& name : names) {
        const auto end = std::ranges::mismatch(prefix, name).in1;
        prefix.erase(end, prefix.end());
    }
    return prefix;
}
