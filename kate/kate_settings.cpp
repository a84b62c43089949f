#include "kate_settings.h"

#include <KSharedConfig>

KateSettings::KateSettings()
    : group_(KSharedConfig::openConfig(), "MicroPython"), lines_(&group_, "Settings Lines")
{
    std::vector<std::string> lines;
    for (const auto& key : lines_.keyList()) {
        lines.push_back(lines_.readEntry(key, QString()).toStdString());
    }
    Load(lines);
}

std::expected<void, std::string> KateSettings::Save()
{
    for (const auto& [key, line] : unsaved()) {
        lines_.writeEntry(QString::fromStdString(key), QString::fromStdString(line));
    }
    if (!lines_.sync()) {
        return std::unexpected("Kate's settings cannot be saved");
    }
    MarkSaved();
    return {};
}
