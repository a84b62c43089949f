#pragma once

#include "AppKit.h"

#include <QMimeData>

#include <vector>

// What the opaque objects of AppKit.h are here.

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

// A drag, during one call.
struct DraggingInfo final : objc_object {
    explicit DraggingInfo(const QMimeData* data) : pasteboard{data} {}

    NSPasteboard pasteboard;
};

// The part of a table that drag and drop speaks to.
struct NSOutlineView {
    NSOutlineView() = default;
    NSOutlineView(const NSOutlineView&) = delete;
    NSOutlineView& operator=(const NSOutlineView&) = delete;
    virtual ~NSOutlineView() = default;
    virtual void TakeDragsOfFiles(bool take) = 0;
    virtual void SetDropTarget(objc_object* row, int index) = 0;
};
