#pragma once

#include "EntryRef.h"

#include <memory>
#include <vector>

// The platform's calls of drag and drop, named for the messages that they stand for. This file
// alone is replaced where that platform is there itself. Used on the user-interface thread.

// Objects are opaque. A dragging information object and the objects of rows are valid during the
// call that they are passed to.
struct objc_object;
struct NSArray;
struct NSPasteboard;
struct NSOutlineView;

// What a drop validator returns.
inline constexpr int NSDragOperationNone = 0;
inline constexpr int NSDragOperationCopy = 1;

// The pasteboard type under which file URLs are dragged. Lives for ever.
objc_object* FileURLPasteboardType();

std::shared_ptr<NSArray> NSArray_arrayWithObjects_count(objc_object* const* objects,
                                                        unsigned long count);

// The view takes drags of these types and no others; before, it takes none.
void NSOutlineView_registerForDraggedTypes(NSOutlineView* view, const NSArray* types);

// Proposes another target for the drop that is being validated: a row, or null for the whole view;
// the index -1 stands for "on it".
void NSOutlineView_setDropItem_dropChildIndex(NSOutlineView* view, objc_object* item, long index);

// Valid as long as the dragging information object.
NSPasteboard* NSDraggingInfo_draggingPasteboard(objc_object* info);

// The local files of the pasteboard, in its order; empty when there are none. What is no local file
// is left out.
std::vector<EntryRef> RefsFromPasteboard(NSPasteboard* pasteboard);
