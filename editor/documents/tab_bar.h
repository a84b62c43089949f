#pragma once

#include <QTabBar>

// The tabs of the documents: a middle click closes a tab, the right button or the menu key opens
// its menu. [ui]
class TabBar final : public QTabBar {
    Q_OBJECT

  public:
    using QTabBar::QTabBar;

  Q_SIGNALS:
    void CloseRequested(int index);
    void CloseOthersRequested(int index);
    void CopyPathRequested(int index);
    void ShowInFolderRequested(int index);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    int pressed_ = -1;  // The tab on which the middle button was pressed.
};
