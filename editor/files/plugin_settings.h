#pragma once

#include "settings_store.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

// The settings file of plug-ins: lines of words separated by spaces, the first of which is the
// line's key. Lines whose key is not registered belong to other plug-ins and are preserved. [ui]
class PluginSettings final : public SettingsStore {
  public:
    explicit PluginSettings(std::string path) : path_(std::move(path)) {}

    // Reads the file; a missing file counts as empty. An unusable file is renamed (see SetAside),
    // and a message for the user is returned.
    std::optional<std::string> Load();

    void RegisterKey(const std::string& key) override { keys_.insert(key); }
    const std::vector<std::string>* Words(const std::string& key) const override;
    void Replace(const std::string& text) override;

    // Replaces the changed lines in the current file, so that lines that other editors have written
    // are preserved. Creates the file's folder if necessary. Waits for the disk for a few seconds
    // at most. A Runtime must exist.
    std::expected<void, std::string> Save() override;

  private:
    const std::string path_;
    std::set<std::string> keys_;
    std::map<std::string, std::vector<std::string>> words_;  // By key.
    std::map<std::string, std::string> unsaved_;             // Changed lines by key.
};
