#pragma once

#include "action_icons.h"

#include <QToolBar>

#include <functional>
#include <string>
#include <vector>

// The editor's own buttons, and behind them the controls that the plug-in offers. Used on the
// user-interface thread.
class ControlToolBar final : public QToolBar {
    Q_OBJECT

  public:
    explicit ControlToolBar(QWidget* parent);

    // Returns what the button does, which this object owns.
    QAction* AddButton(Action icon, const QString& text, const std::function<void()>& action);

    // These and no others from now on.
    void ShowControls(const std::vector<std::string>& names);

    // Where a menu opens that was asked for elsewhere: the first control, or the bar itself.
    const QWidget& FirstControl() const;

  Q_SIGNALS:
    void ControlPressed();
    void MenuRequested(const QWidget& control);

  private:
    QAction* AddControl(const QString& name);

    std::vector<std::string> shown_;
    std::vector<QAction*> controls_;
};
