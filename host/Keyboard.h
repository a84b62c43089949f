#pragma once

// The modifier keys as flags; modifiers() returns a combination of them.
inline constexpr unsigned kShiftKey = 1;
inline constexpr unsigned kCommandKey = 2;  // Control on keyboards without a Command key.
inline constexpr unsigned kControlKey = 4;
inline constexpr unsigned kOptionKey = 0x40;

// The modifier keys that were held with the key event being handled; otherwise those that are held
// now. [ui]
unsigned modifiers();
