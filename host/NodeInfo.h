#pragma once

class BBitmap;

// The system's icons. Used on the user-interface thread.
class BNodeInfo {
  public:
    // Fill the bitmap with the icon of `size` by `size` points for a file of this name, by its
    // extension, or for a four-character type code: 'fldr' a folder, 'docu' a document, 'hdsk' a
    // disk. The last argument is always false. 0 on success; else the bitmap is as it was.
    static int GetTrackerIconFromName(const char* name, BBitmap* bitmap, unsigned size, bool);
    static int GetTrackerIconFromType(int typeCode, BBitmap* bitmap, unsigned size, bool);
};
