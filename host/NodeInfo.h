#pragma once

class BBitmap;

// The four-character codes of the system's icon types.
inline constexpr int kFolderIconType = 0x666C6472;    // 'fldr'
inline constexpr int kDocumentIconType = 0x646F6375;  // 'docu'
inline constexpr int kDiskIconType = 0x6864736B;      // 'hdsk'

// The system's icons. Used on the user-interface thread.
class BNodeInfo {
  public:
    // Fill the bitmap with the icon of `size` by `size` points for a file of this name, by its
    // extension, or for an icon type. The last argument is always false. 0 on success; otherwise
    // the bitmap is unchanged.
    static int GetTrackerIconFromName(const char* name, BBitmap* bitmap, unsigned size, bool);
    static int GetTrackerIconFromType(int typeCode, BBitmap* bitmap, unsigned size, bool);
};
