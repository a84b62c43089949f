#include "plugin_commands.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

template <class Predicate>
const PluginCommand* FindIf(Predicate predicate)
{
    const auto* const found = std::ranges::find_if(kPluginCommands, predicate);
    return found != kPluginCommands.end() ? found : nullptr;
}

}  // namespace

const PluginCommand* FindCommandByName(std::string_view name)
{
    return FindIf([=](const auto& row) { return !name.empty() && row.name == name; });
}

const PluginCommand* FindCommandByLabel(std::string_view label)
{
    return FindIf([=](const auto& row) { return label.starts_with(row.menuLabel); });
}

const PluginCommand* FindCommandByBatchName(std::string_view name)
{
    return FindIf([=](const auto& row) { return !name.empty() && row.batchName == name; });
}

QString CommandLabel(const RegisteredCommand& command)
{
    static const QString kPrefix = QStringLiteral("Quilp");
    static const QRegularExpression kWordStart("(?<=[a-z])(?=[A-Z])");
    if (const auto* const row = FindCommandByName(command.name); row != nullptr && *row->label) {
        return row->label;
    }
    QString label = QString::fromStdString(command.name);
    if (label.startsWith(kPrefix) && label.size() > kPrefix.size()) {
        label.remove(0, kPrefix.size());
    }
    label.replace(kWordStart, " ");
    return label.left(1) + label.mid(1).toLower();
}
