#pragma once

#include "settings_store.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

// The plug-ins' settings file: lines of words with blanks between them, the first of which is the
// line's key. Lines under keys that this plug-in has not registered belong to others and stay as
// they are. Used on the user-interface thread.
class PluginSettings final : public SettingsStore {
  public:
    explicit PluginSettings(std::string path) : path_(std::move(path)) {}

    // Reads the file; a missing one is an empty one. One that cannot be used is set aside as
    // NAME.unreadable, or NAME.unreadable.2 and so on, and the answer is a sentence about it.
    std::optional<std::string> Load();

    void RegisterKey(const std::string& key) override { keys_.insert(key); }
    const std::vector<std::string>* Words(const std::string& key) const override;
    void Replace(const std::string& text) override;

    // Writes the replaced lines into the file as it is now, so that what other editors have written
    // meanwhile is kept. Makes the file's folder.
    std::expected<void, std::string> Save() override;

  private:
    using Lines = std::vector<std::string>;

    std::expected<Lines, std::string> ReadLines() const;

    const std::string path_;
    std::set<std::string> keys_;
    std::map<std::string, std::vector<std::string>> words_;  // By key.
    std::map<std::string, std::string> unsaved_;             // Lines by key.
};
