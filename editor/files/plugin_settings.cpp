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

bool IsText(const std::string& text)
{
    return text.find('\0') == std::string::npos;
}

// Replaces the key's first line and removes its other lines, or appends the line.
void SetLine(std::vector<std::string>& lines, const std::string& key, const std::string& line)
{
    const auto hasKey = [&](const std::string& other) {
        return SettingsLines::KeyOf(other) == key;
    };
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
    const auto lines = ReadLines(path_);
    SettingsLines::Load(lines ? *lines : Lines());
    if (lines) {
        return std::nullopt;
    }
    return SetAsideWithReport(lines.error(), path_);
}

std::expected<void, std::string> PluginSettings::Save()
{
    if (unsaved().empty()) {
        return {};
    }
    const auto saved = std::make_shared<Saved>();
    FileWorker worker(1, std::chrono::seconds(0));
    worker.Do({}, [saved, path = path_, changed = unsaved()]() -> FileWorker::Result {
        *saved = SaveLines(path, changed);
        return {};
    });
    if (!worker.WaitFor({}, kDiskPatience)) {
        return std::unexpected(path_ + " cannot be saved: the disk does not answer");
    }
    if (*saved) {
        MarkSaved();
    }
    return *saved;
}
