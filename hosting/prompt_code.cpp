#include "prompt_code.h"

namespace {

std::string PythonLiteral(const std::string& text)
{
    std::string literal = "'";
    for (const char c : text) {
        if (c == '\'' || c == '\\') {
            literal += '\\';
        }
        literal += c;
    }
    return literal + "'";
}

}  // namespace

std::vector<std::string> PromptCommand(const std::string& text)
{
    if (text.find_first_not_of(" \t\n") == std::string::npos) {
        return {};
    }
    const bool isLine = text.find('\n') == std::string::npos;
    return {"resume", "exec",
            isLine ? "exec(compile(" + PythonLiteral(text) + ",'<stdin>','single'))" : text};
}
