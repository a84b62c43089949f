#pragma once

#include "view_native.h"

#include <memory>

class BMenu;

// The implementation of a table with Qt, which owns the context menu.
struct TableNative : BView::Native {
    using BView::Native::Native;

    std::unique_ptr<BMenu> menu;
};
