#pragma once

// The four-character codes of the system's icons, and how they are asked for.
inline constexpr int kFolderIcon = 0x666C6472;    // 'fldr'
inline constexpr int kDocumentIcon = 0x646F6375;  // 'docu'
inline constexpr int kDiskIcon = 0x6864736B;      // 'hdsk'
inline constexpr unsigned kIconSize = 16;
inline constexpr unsigned kColorsWithAlpha = 4;
