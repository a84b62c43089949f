#pragma once

// The size and format of the system's icons in the window.
inline constexpr unsigned kIconSize = 16;
inline constexpr unsigned kColorsWithAlpha = 4;
