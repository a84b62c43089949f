#pragma once

#include "View.h"

#include <memory>
#include <string>
#include <vector>

class WindowWidget;

// A window's widgets and views, made from its description: a Designer file whose classes are the
// framework's, and where the integer property "tag" tells a view from others.
struct DescribedWindow {
    std::unique_ptr<WindowWidget> widget;
    std::vector<std::unique_ptr<BView>> views;  // the direct children
};

// Throws std::runtime_error, with a sentence, when the file cannot be read or names an unknown
// class.
DescribedWindow LoadWindowDescription(const std::string& file);

// The property of a widget that holds its tag; 0 for none.
int TagOf(const BView& view);
