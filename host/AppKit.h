#pragma once

#include "EntryRef.h"

#include <memory>
#include <vector>

// The platform's drag-and-drop functions, named after the messages that they represent. On that
// platform itself, only this file is replaced. [ui]

// Objects are opaque. A dragging information object and row objects are valid only during the call
// that they are passed to.
struct objc_object;
struct NSArray;
struct NSPasteboard;
struct NSOutlineView;

// The drag operations that a drop validator returns.
inline constexpr int NSDragOperationNone = 0;
inline constexpr int NSDragOperationCopy = 1;

// The pasteboard type of dragged file URLs. It is never destroyed.
objc_object* FileURLPasteboardType();

std::shared_ptr<NSArray> NSArray_arrayWithObjects_count(objc_object* const* objects,
                                                        unsigned long count);

// Makes the view accept drags of these types only. Initially it accepts none.
void NSOutlineView_registerForDraggedTypes(NSOutlineView* view, const NSArray* types);

// Proposes a different target for the drop that is being validated: a row, or null for the whole
// view; the index -1 means "on it".
void NSOutlineView_setDropItem_dropChildIndex(NSOutlineView* view, objc_object* item, long index);

// Valid as long as the dragging information object.
NSPasteboard* NSDraggingInfo_draggingPasteboard(objc_object* info);

// The local files on the pasteboard, in its order; empty if there are none. Anything that is not a
// local file is skipped.
std::vector<EntryRef> RefsFromPasteboard(NSPasteboard* pasteboard);
