#pragma once

#include "action_icons.h"

#include <QString>
#include <QToolBar>

#include <functional>
#include <string>
#include <vector>

// The editor's own buttons, followed by the controls that the plug-in offers. [ui]
class ControlToolBar final : public QToolBar {
    Q_OBJECT

  public:
    explicit ControlToolBar(QWidget* parent);

    // Returns the button's action, which the tool bar owns.
    QAction* AddButton(Action icon, const QString& text, const std::function<void()>& action);

    // Replaces the plug-in's controls with new ones that have these names.
    void ShowControls(const std::vector<std::string>& names);
    // What a press on a control does.
    void DescribeControls(const QString& toolTip);

    // Adds the button that stops what runs on the board; it follows the controls. Owned by the tool
    // bar.
    QAction* AddStop(const std::function<void()>& action);

    // The first control, or the tool bar itself if it has none. The plug-in's menu opens below it
    // when the menu was requested elsewhere.
    const QWidget& FirstControl() const;

  Q_SIGNALS:
    void ControlPressed();
    void MenuRequested(const QWidget& control);

  private:
    QAction* AddControl(const QString& name);

    std::vector<std::string> shown_;
    std::vector<QAction*> controls_;
    QString controlToolTip_;
    QAction* stop_ = nullptr;
};
