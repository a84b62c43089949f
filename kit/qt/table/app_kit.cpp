#include "app_kit_objects.h"

#include <QUrl>

#include <algorithm>

objc_object* FileURLPasteboardType()
{
    static objc_object type;
    return &type;
}

std::shared_ptr<NSArray> NSArray_arrayWithObjects_count(objc_object* const* objects,
                                                        unsigned long count)
{
    return std::make_shared<NSArray>(NSArray{{objects, objects + count}});
}

void NSOutlineView_registerForDraggedTypes(NSOutlineView* view, const NSArray* types)
{
    view->SetAcceptsFiles(std::ranges::find(types->objects, FileURLPasteboardType()) !=
                          types->objects.end());
}

void NSOutlineView_setDropItem_dropChildIndex(NSOutlineView* view, objc_object* item, long index)
{
    view->SetDropTarget(item, static_cast<int>(index));
}

NSPasteboard* NSDraggingInfo_draggingPasteboard(objc_object* info)
{
    return &static_cast<DraggingInfo*>(info)->pasteboard;
}

std::vector<EntryRef> RefsFromPasteboard(NSPasteboard* pasteboard)
{
    std::vector<EntryRef> refs;
    for (const auto& url : pasteboard->data->urls()) {
        if (url.isLocalFile() && !url.toLocalFile().isEmpty()) {
            QString path = url.toLocalFile();
            while (path.size() > 1 && path.endsWith('/')) {
                path.chop(1);  // The URL of a folder may end with a slash.
            }
            refs.emplace_back(path.toStdString());
        }
    }
    return refs;
}
