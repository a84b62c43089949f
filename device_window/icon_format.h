#pragma once

// How the window asks for the system's icons.
inline constexpr unsigned kIconSize = 16;
inline constexpr unsigned kColorsWithAlpha = 4;
