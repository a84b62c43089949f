#pragma once

#include <QTimer>
#include <QToolButton>

// A control that the plug-in offers: a button with a menu arrow. A long press, the Up and Down keys
// and the menu key request the menu, too. [ui]
class RunControl final : public QToolButton {
    Q_OBJECT

  public:
    RunControl(const QString& name, QWidget* parent);

  Q_SIGNALS:
    void MenuRequested();

  protected:
    void initStyleOption(QStyleOptionToolButton* option) const override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    bool IsOnArrow(const QPoint& at) const;
    void RequestMenu();

    QTimer held_;
};
