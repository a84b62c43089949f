#pragma once

// The modifier keys as modifiers() gives them, to be combined.
inline constexpr unsigned kShiftKey = 1;
inline constexpr unsigned kCommandKey = 2;  // Control, where there is no key of that name.
inline constexpr unsigned kControlKey = 4;
inline constexpr unsigned kOptionKey = 0x40;

// The modifier keys that are held: with the key that is being handled, else now. Used on the
// user-interface thread.
unsigned modifiers();
