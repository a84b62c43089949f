#include "NodeInfo.h"

#include "bitmap_content.h"
#include "icons.h"

namespace {

void Fill(BBitmap* bitmap, const QIcon& icon, unsigned size)
{
    const auto side = static_cast<double>(size);
    bitmap->SetContent(std::make_shared<const BBitmap::Content>(icon), {0, 0, side, side});
}

}  // namespace

int BNodeInfo::GetTrackerIconFromName(const char* name, BBitmap* bitmap, unsigned size, bool)
{
    Fill(bitmap, IconForFileName(QString::fromUtf8(name)), size);
    return 0;
}

int BNodeInfo::GetTrackerIconFromType(int typeCode, BBitmap* bitmap, unsigned size, bool)
{
    switch (typeCode) {
        case kFolderIconType: Fill(bitmap, ThemedIcon("folder", "folder"), size); return 0;
        case kDocumentIconType:
            Fill(bitmap, ThemedIcon("text-x-generic", "document"), size);
            return 0;
        case kDiskIconType: Fill(bitmap, ThemedIcon("drive-harddisk", "disk"), size); return 0;
        default: return -1;
    }
}
