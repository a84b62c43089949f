#include "plugin_settings.h"

#include "file_save.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <sstream>

namespace {

namespace fs = std::filesystem;

constexpr qint64 kMaxFileSize = 1024LL * 1024;  // bytes

std::vector<std::string> SplitLines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> SplitWords(const std::string& line)
{
    std::vector<std::string> words;
    std::istringstream stream(line);
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

std::string KeyOf(const std::string& line)
{
    std::string key;
    std::istringstream(line) >> key;
    return key;
}

bool IsText(const std::string& text)
{
    return text.find('\0') == std::string::npos;
}

// Replaces the key's first line and removes its other lines, or appends the line.
void SetLine(std::vector<std::string>& lines, const std::string& key, const std::string& line)
{
    const auto hasKey = [&](const std::string& other) { return KeyOf(other) == key; };
    const auto first = std::find_if(lines.begin(), lines.end(), hasKey);
    if (first == lines.end()) {
        lines.push_back(line);
        return;
    }
    *first = line;
    lines.erase(std::remove_if(first + 1, lines.end(), hasKey), lines.end());
}

}  // namespace

std::expected<PluginSettings::Lines, std::string> PluginSettings::ReadLines() const
{
    std::error_code ignored;
    if (fs::status(path_, ignored).type() == fs::file_type::not_found) {
        return Lines();
    }
    const auto bytes = ReadFileBytes(path_, kMaxFileSize);
    if (!bytes) {
        return std::unexpected(bytes.error());
    }
    const std::string text = bytes->toStdString();
    if (!IsText(text)) {
        return std::unexpected(path_ + " is not a settings file");
    }
    return SplitLines(text);
}

std::optional<std::string> PluginSettings::Load()
{
    words_.clear();
    const auto lines = ReadLines();
    if (!lines) {
        return SetAsideWithReport(lines.error(), path_);
    }
    for (const auto& line : *lines) {
        words_[KeyOf(line)] = SplitWords(line);
    }
    words_.erase("");
    return std::nullopt;
}

const std::vector<std::string>* PluginSettings::Words(const std::string& key) const
{
    const auto words = words_.find(key);
    return words != words_.end() ? &words->second : nullptr;
}

void PluginSettings::Replace(const std::string& text)
{
    for (const auto& line : SplitLines(text)) {
        const std::string key = KeyOf(line);
        if (keys_.contains(key) && IsText(line)) {
            words_[key] = SplitWords(line);
            unsaved_[key] = line;
        }
    }
}

std::expected<void, std::string> PluginSettings::Save()
{
    if (unsaved_.empty()) {
        return {};
    }
    auto lines = ReadLines();
    if (!lines) {
        if (const auto aside = SetAside(path_); !aside) {
            return std::unexpected(aside.error());
        }
        lines = Lines();
    }
    QByteArray bytes;
    for (const auto& [key, line] : unsaved_) {
        SetLine(*lines, key, line);
    }
    for (const auto& line : *lines) {
        bytes += line + '\n';
    }
    std::error_code ignored;
    fs::create_directories(fs::path(path_).parent_path(), ignored);
    const auto saved = SaveAtomically(path_, bytes);
    if (saved) {
        unsaved_.clear();
    }
    return saved;
}
