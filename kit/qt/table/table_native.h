#pragma once

#include "view_native.h"

#include <memory>

class BMenu;

// A table's own: the menu that was given to it.
struct TableNative : BView::Native {
    using BView::Native::Native;

    std::unique_ptr<BMenu> menu;
};
