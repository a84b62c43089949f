#include "settings_lines.h"

#include <sstream>

namespace {

std::vector<std::string> SplitWords(const std::string& line)
{
    std::vector<std::string> words;
    std::istringstream stream(line);
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

}  // namespace

std::string SettingsLines::KeyOf(const std::string& line)
{
    std::string key;
    std::istringstream(line) >> key;
    return key;
}

void SettingsLines::Load(const std::vector<std::string>& lines)
{
    words_.clear();
    for (const auto& line : lines) {
        words_[KeyOf(line)] = SplitWords(line);
    }
    words_.erase("");
}

const std::vector<std::string>* SettingsLines::Words(const std::string& key) const
{
    const auto words = words_.find(key);
    return words != words_.end() ? &words->second : nullptr;
}

void SettingsLines::Replace(const std::string& text)
{
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        const std::string key = KeyOf(line);
        if (keys_.contains(key) && line.find('\0') == std::string::npos) {
            words_[key] = SplitWords(line);
            unsaved_[key] = line;
        }
    }
}
