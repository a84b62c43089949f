#pragma once

#include "settings_lines.h"

#include <optional>
#include <string>
#include <utility>

// The settings file of plug-ins. Lines whose key is not registered belong to other plug-ins and are
// preserved. [ui]
class PluginSettings final : public SettingsLines {
  public:
    explicit PluginSettings(std::string path) : path_(std::move(path)) {}

    // Reads the file; a missing file counts as empty. An unusable file is renamed (see SetAside),
    // and a message for the user is returned.
    std::optional<std::string> Load();

    // Replaces the changed lines in the current file, so that lines that other editors have written
    // are preserved. Creates the file's folder if necessary. Waits for the disk for a few seconds
    // at most. A Runtime must exist.
    std::expected<void, std::string> Save() override;

  private:
    const std::string path_;
};
