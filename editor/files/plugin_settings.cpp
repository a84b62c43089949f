#include "plugin_settings.h"

#include "file_save.h"
#include "file_worker.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <sstream>

namespace {

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;
using Saved = std::expected<void, std::string>;

constexpr std::chrono::seconds kDiskPatience{5};
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

std::expected<Lines, std::string> ReadLines(const std::string& path)
{
    std::error_code ignored;
    if (fs::status(path, ignored).type() == fs::file_type::not_found) {
        return Lines();
    }
    const auto bytes = ReadFileBytes(path, kMaxFileSize);
    if (!bytes) {
        return std::unexpected(bytes.error());
    }
    const std::string text = bytes->toStdString();
    if (!IsText(text)) {
        return std::unexpected(path + " is not a settings file");
    }
    return SplitLines(text);
}

// `changed` are lines by their keys.
Saved SaveLines(const std::string& path, const std::map<std::string, std::string>& changed)
{
    auto lines = ReadLines(path);
    if (!lines) {
        if (const auto aside = SetAside(path); !aside) {
            return std::unexpected(aside.error());
        }
        lines = Lines();
    }
    QByteArray bytes;
    for (const auto& [key, line] : changed) {
        SetLine(*lines, key, line);
    }
    for (const auto& line : *lines) {
        bytes += line + '\n';
    }
    std::error_code ignored;
    fs::create_directories(fs::path(path).parent_path(), ignored);
    return SaveAtomically(path, bytes);
}

}  // namespace

std::optional<std::string> PluginSettings::Load()
{
    words_.clear();
    const auto lines = ReadLines(path_);
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
    const auto saved = std::make_shared<Saved>();
    FileWorker worker(1, std::chrono::seconds(0));
    worker.Do({}, [saved, path = path_, changed = unsaved_]() -> FileWorker::Result {
        *saved = SaveLines(path, changed);
        return {};
    });
    if (!worker.WaitFor({}, kDiskPatience)) {
        return std::unexpected(path_ + " cannot be saved: the disk does not answer");
    }
    if (*saved) {
        unsaved_.clear();
    }
    return *saved;
}
