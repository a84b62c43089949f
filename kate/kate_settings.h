#pragma once

#include "settings_lines.h"

#include <KConfigGroup>

// The plug-in's settings lines in Kate's configuration. [ui]
class KateSettings final : public SettingsLines {
  public:
    KateSettings();

    std::expected<void, std::string> Save() override;

    KConfigGroup& group() { return group_; }

  private:
    KConfigGroup group_;
    KConfigGroup lines_;
};
