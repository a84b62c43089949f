#pragma once

#include <optional>
#include <string>

class QPalette;

// The theme of the windows: that of the desktop, or one that the user has chosen. [ui]
enum class Appearance { System, Light, Dark };

// The names are "system", "light" and "dark".
std::optional<Appearance> ParseAppearance(const std::string& name);
std::string AppearanceName(Appearance appearance);

// Sets the style and colours of all windows. Requires the application object.
void SetAppearance(Appearance appearance);
// The appearance that was set last.
Appearance CurrentAppearance();

// Whether the palette has light text on a dark background.
bool IsDark(const QPalette& palette);
