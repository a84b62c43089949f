#pragma once

#include <QKeySequence>

#include <cstdint>
#include <utility>

// A shortcut as PluginInterface::CommandShortcut returns it: key and modifiers. The key is a
// Latin-1 character, a letter as its capital, or for the function key Fn kFunctionKeyBase + n
// (host/Menu.h); the modifiers are those of modifiers(). Key 0 when there is no shortcut, or none
// that a menu item can show: one of several chords, or a key without a code.
std::pair<std::uint32_t, std::uint32_t> ShortcutCode(const QKeySequence& keys);
