#include "tool_environment.h"

#include "child_process.h"

std::vector<std::string> ToolEnvironment()
{
    std::vector<std::string> words = CurrentEnvironment();
    std::erase_if(words, [](const std::string& word) {
        return word.starts_with("PYTHONUNBUFFERED=") || word.starts_with("PYTHONUTF8=");
    });
    words.emplace_back("PYTHONUNBUFFERED=1");
    words.emplace_back("PYTHONUTF8=1");
    return words;
}
