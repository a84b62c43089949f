#include "shortcut_code.h"

#include "Menu.h"
#include "key_events.h"
#include "qt_version.h"

namespace {

// Returns 0 if the key has no code.
std::uint32_t KeyCode(Qt::Key key)
{
    if (key >= Qt::Key_F1 && key <= Qt::Key_F31) {
        return static_cast<std::uint32_t>(key - Qt::Key_F1 + 1 + kFunctionKeyBase);
    }
    return key <= Qt::Key_ydiaeresis ? static_cast<std::uint32_t>(key) : 0;
}

}  // namespace

std::pair<std::uint32_t, std::uint32_t> ShortcutCode(const QKeySequence& keys)
{
    if (keys.count() != 1) {
        return {0, 0};
    }
    constexpr int kMask = static_cast<int>(Qt::KeyboardModifierMask);
    const int first = FirstKey(keys);
    const std::uint32_t key = KeyCode(static_cast<Qt::Key>(first & ~kMask));
    return {key, key != 0 ? FromQtModifiers(Qt::KeyboardModifiers(first & kMask)) : 0};
}
