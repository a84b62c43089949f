#include "shortcuts.h"

#include "Menu.h"

#include <QByteArray>
#include <QSettings>
#include <QUrl>

#include <algorithm>
#include <array>
#include <tuple>

namespace {

constexpr const char* kGroup = "shortcuts";

constexpr std::array<std::pair<Qt::KeyboardModifier, std::uint32_t>, 4> kModifiers{{
    {Qt::ShiftModifier, 1},
    {Qt::ControlModifier, 2},
    {Qt::MetaModifier, 4},
    {Qt::AltModifier, 0x40},
}};

QKeySequence FromText(const QString& text)
{
    return QKeySequence::fromString(text, QKeySequence::PortableText);
}

QString ToText(const QKeySequence& keys)
{
    return keys.toString(QKeySequence::PortableText);
}

// An empty text is: it takes a shortcut away.
bool IsUnderstood(const QString& text)
{
    const QKeySequence keys = FromText(text);
    for (int i = 0; i < keys.count(); ++i) {
        if (keys[static_cast<uint>(i)].key() == Qt::Key_unknown) {
            return false;
        }
    }
    return text.isEmpty() || !keys.isEmpty();
}

// Whether one of them would never be reached, or only after a pause.
bool Clash(const QKeySequence& one, const QKeySequence& other)
{
    return !one.isEmpty() && !other.isEmpty() &&
           (one.matches(other) != QKeySequence::NoMatch ||
            other.matches(one) != QKeySequence::NoMatch);
}

// A slash in a name would make a group of its own.
QString SettingsKey(const std::string& command)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(QString::fromStdString(command)));
}

std::string CommandOf(const QString& settingsKey)
{
    return QUrl::fromPercentEncoding(settingsKey.toLatin1()).toStdString();
}

// 0 when it has none.
std::uint32_t MenuKey(Qt::Key key)
{
    if (key >= Qt::Key_F1 && key <= Qt::Key_F31) {
        return static_cast<std::uint32_t>(key - Qt::Key_F1 + 1 + kBeforeFunctionKeys);
    }
    return key <= Qt::Key_ydiaeresis ? static_cast<std::uint32_t>(key) : 0;
}

}  // namespace

Shortcuts::Shortcuts(std::vector<NamedShortcut> defaults,
                     const std::vector<NamedShortcut>& reserved)
    : defaults_(std::move(defaults))
{
    for (const auto& [name, keys] : reserved) {
        reserved_.emplace_back(name, FromText(keys));
    }
    FillWithDefaults();
}

// The commands that the user has not decided on.
void Shortcuts::FillWithDefaults()
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
    for (const auto& [name, taken] : reserved_) {
        if (Clash(taken, keys)) {
            return std::unexpected(name);
        }
    }
    for (const auto& [name, taken] : shortcuts_) {
        if (name != command && Clash(taken, keys)) {
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
        // A comma that was written by hand makes a list of it.
        const QString text = settings.value(key).toStringList().join(u',');
        if (IsUnderstood(text)) {
            std::ignore = SetShortcut(CommandOf(key), FromText(text));
        }
    }
    settings.endGroup();
    FillWithDefaults();
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

std::pair<std::uint32_t, std::uint32_t> Shortcuts::KeyAndModifiers(const std::string& command) const
{
    const QKeySequence keys = Shortcut(command);
    if (keys.count() != 1) {
        return {0, 0};
    }
    std::uint32_t modifiers = 0;
    for (const auto& [modifier, bit] : kModifiers) {
        modifiers |= keys[0].keyboardModifiers().testFlag(modifier) ? bit : 0;
    }
    const std::uint32_t key = MenuKey(keys[0].key());
    return {key, key != 0 ? modifiers : 0};
}
