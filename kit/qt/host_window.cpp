#include "host_window.h"

#include "window_native.h"

HostWindow::HostWindow(QWidget* widget) : BWindow(std::make_unique<Native>(widget)) {}
