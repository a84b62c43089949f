#pragma once

#include "Window.h"

class QWidget;

// A window of the host's as plug-ins see it: they convert its coordinates, and nothing else. Used
// on the user-interface thread.
class HostWindow final : public BWindow {
  public:
    // Not owned, and may go earlier. Null in a host without windows: then the window's coordinates
    // are those of the screen.
    explicit HostWindow(QWidget* widget);
};
