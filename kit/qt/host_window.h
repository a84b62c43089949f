#pragma once

#include "Window.h"

class QWidget;

// One of the host's own windows, as plug-ins see it; they use it only to convert coordinates. [ui]
class HostWindow final : public BWindow {
  public:
    // The widget is not owned and may be destroyed before this object. It is null in a host without
    // windows: then the window's coordinates are screen coordinates.
    explicit HostWindow(QWidget* widget);
};
