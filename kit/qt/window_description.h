#pragma once

#include "View.h"

#include <memory>
#include <string>
#include <vector>

class WindowWidget;

// A window's widgets and views, created from its description: a Qt Designer file that uses the
// framework's classes, in which the integer property "tag" identifies a view.
struct DescribedWindow {
    std::unique_ptr<WindowWidget> widget;
    std::vector<std::unique_ptr<BView>> views;  // the direct children
};

// Throws std::runtime_error, with a sentence for the user, if the file cannot be read or contains a
// view of an unknown class. [ui]
DescribedWindow LoadWindowDescription(const std::string& file);

// The tag of a view; 0 if it has none.
int TagOf(const BView& view);
