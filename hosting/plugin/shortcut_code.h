#pragma once

#include <QKeySequence>

#include <cstdint>
#include <utility>

// Encodes a shortcut for PluginInterface::CommandShortcut as key and modifiers. The key is an
// upper-case Latin-1 character, or kFunctionKeyBase + n (host/Menu.h) for function key number n;
// the modifiers are those of modifiers(). The key is 0 if there is no shortcut or it cannot be
// encoded: a sequence of several keys, or any other key. [any]
std::pair<std::uint32_t, std::uint32_t> ShortcutCode(const QKeySequence& keys);
