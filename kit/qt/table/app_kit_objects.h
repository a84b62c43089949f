#pragma once

#include "AppKit.h"

#include <QMimeData>

#include <vector>

// The implementation of the opaque objects of AppKit.h.

struct objc_object {
    objc_object() = default;
    objc_object(const objc_object&) = delete;
    objc_object& operator=(const objc_object&) = delete;
    virtual ~objc_object() = default;
};

struct NSArray {
    std::vector<const objc_object*> objects;
};

struct NSPasteboard {
    const QMimeData* data;
};

// The dragging information object of one call.
struct DraggingInfo final : objc_object {
    explicit DraggingInfo(const QMimeData* data) : pasteboard{data} {}

    NSPasteboard pasteboard;
};

// The drag-and-drop interface of a table.
struct NSOutlineView {
    NSOutlineView() = default;
    NSOutlineView(const NSOutlineView&) = delete;
    NSOutlineView& operator=(const NSOutlineView&) = delete;
    virtual ~NSOutlineView() = default;
    virtual void SetAcceptsFiles(bool accepts) = 0;
    virtual void SetDropTarget(objc_object* row, int index) = 0;
};
