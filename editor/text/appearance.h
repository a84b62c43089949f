#pragma once

#include <optional>
#include <string>

class QPalette;

// How the windows look: like the rest of the desktop, or as the user has chosen.
enum class Appearance { System, Light, Dark };

// The names are "system", "light" and "dark".
std::optional<Appearance> AppearanceNamed(const std::string& name);
std::string AppearanceName(Appearance appearance);

// Sets the style and colours of all windows. The application object must exist.
void SetAppearance(Appearance appearance);
// What SetAppearance set last.
Appearance CurrentAppearance();

// Whether the palette has light text on a dark background.
bool IsDark(const QPalette& palette);
