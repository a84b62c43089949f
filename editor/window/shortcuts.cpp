#include "shortcuts.h"

#include <QByteArray>
#include <QSettings>
#include <QUrl>

#include <algorithm>
#include <tuple>

namespace {

constexpr const char* kGroup = "shortcuts";

QKeySequence FromText(const QString& text)
{
    return QKeySequence::fromString(text, QKeySequence::PortableText);
}

QString ToText(const QKeySequence& keys)
{
    return keys.toString(QKeySequence::PortableText);
}

// An empty text is valid: it removes a shortcut.
bool IsValid(const QString& text)
{
    const QKeySequence keys = FromText(text);
    for (int i = 0; i < keys.count(); ++i) {
        if (keys[static_cast<uint>(i)].key() == Qt::Key_unknown) {
            return false;
        }
    }
    return text.isEmpty() || !keys.isEmpty();
}

// Whether one shortcut would hide or delay the other.
bool Conflict(const QKeySequence& one, const QKeySequence& other)
{
    return !one.isEmpty() && !other.isEmpty() &&
           (one.matches(other) != QKeySequence::NoMatch ||
            other.matches(one) != QKeySequence::NoMatch);
}

// Escapes slashes, which separate groups in QSettings.
QString SettingsKey(const std::string& command)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(QString::fromStdString(command)));
}

std::string CommandOf(const QString& settingsKey)
{
    return QUrl::fromPercentEncoding(settingsKey.toLatin1()).toStdString();
}

}  // namespace

Shortcuts::Shortcuts(std::vector<NamedShortcut> defaults,
                     const std::vector<NamedShortcut>& reserved)
    : defaults_(std::move(defaults))
{
    for (const auto& [name, keys] : reserved) {
        reserved_.emplace_back(name, FromText(keys));
    }
    ApplyDefaults();
}

// For the commands whose shortcut the user has not changed.
void Shortcuts::ApplyDefaults()
{
    for (const auto& [name, keys] : defaults_) {
        if (!shortcuts_.contains(name)) {
            std::ignore = SetShortcut(name, FromText(keys));
        }
    }
}

QKeySequence Shortcuts::Default(const std::string& command) const
{
    const auto found = std::find_if(defaults_.begin(), defaults_.end(),
                                    [&](const auto& other) { return other.name == command; });
    return found != defaults_.end() ? FromText(found->keys) : QKeySequence();
}

QKeySequence Shortcuts::Shortcut(const std::string& command) const
{
    const auto found = shortcuts_.find(command);
    return found != shortcuts_.end() ? found->second : QKeySequence();
}

std::expected<void, std::string> Shortcuts::SetShortcut(const std::string& command,
                                                        const QKeySequence& keys)
{
    for (const auto& [name, other] : reserved_) {
        if (Conflict(other, keys)) {
            return std::unexpected(name);
        }
    }
    for (const auto& [name, other] : shortcuts_) {
        if (name != command && Conflict(other, keys)) {
            return std::unexpected(name);
        }
    }
    shortcuts_[command] = keys;
    return {};
}

void Shortcuts::Load(QSettings& settings)
{
    shortcuts_.clear();
    settings.beginGroup(kGroup);
    for (const auto& key : settings.childKeys()) {
        // QSettings reads a value with an unquoted comma as a list.
        const QString text = settings.value(key).toStringList().join(u',');
        if (IsValid(text)) {
            std::ignore = SetShortcut(CommandOf(key), FromText(text));
        }
    }
    settings.endGroup();
    ApplyDefaults();
}

void Shortcuts::Save(QSettings& settings) const
{
    settings.beginGroup(kGroup);
    settings.remove("");
    for (const auto& [name, keys] : shortcuts_) {
        if (keys != Default(name)) {
            settings.setValue(SettingsKey(name), ToText(keys));
        }
    }
    settings.endGroup();
}
