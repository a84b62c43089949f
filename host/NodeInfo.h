#pragma once

class BBitmap;

// The four-character codes of the system's icon types.
inline constexpr int kFolderIconType = 0x666C6472;    // 'fldr'
inline constexpr int kDocumentIconType = 0x646F6375;  // 'docu'
inline constexpr int kDiskIconType = 0x6864736B;      // 'hdsk'

// Provides the system's icons. [ui]
class BNodeInfo {
  public:
    // These functions fill the bitmap with an icon of `size` by `size` points: the icon for a file
    // name, chosen by its extension, or for an icon type. The last argument is always false. They
    // return 0 on success; otherwise the bitmap is unchanged.
    static int GetTrackerIconFromName(const char* name, BBitmap* bitmap, unsigned size, bool);
    static int GetTrackerIconFromType(int typeCode, BBitmap* bitmap, unsigned size, bool);
};
