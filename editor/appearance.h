#pragma once

#include <optional>
#include <string>

class QPalette;

// How the windows look: as the desktop has it, or one of the two by the user's wish.
enum class Appearance { System, Light, Dark };

// The names are "system", "light" and "dark".
std::optional<Appearance> AppearanceNamed(const std::string& name);
std::string AppearanceName(Appearance appearance);

// Sets style, colours and font of all windows. Once, after the application object was made; a
// change of the appearance later is allowed.
void SetAppearance(Appearance appearance);

// Whether the palette has light text on a dark ground.
bool IsDark(const QPalette& palette);
