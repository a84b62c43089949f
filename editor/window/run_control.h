#pragma once

#include <QTimer>
#include <QToolButton>

// A control that a plug-in offers: a button with an arrow beside it. A press that lasts, the arrow
// keys and the menu key ask for the menu, too.
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
