#include "tab_bar.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QMouseEvent>

#include <utility>

void TabBar::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton) {
        pressed_ = tabAt(event->position().toPoint());
        return;
    }
    QTabBar::mousePressEvent(event);
}

void TabBar::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::MiddleButton) {
        QTabBar::mouseReleaseEvent(event);
        return;
    }
    const int index = tabAt(event->position().toPoint());
    if (std::exchange(pressed_, -1) == index && index >= 0) {
        Q_EMIT CloseRequested(index);
    }
}

void TabBar::contextMenuEvent(QContextMenuEvent* event)
{
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    const int index = isByKey ? currentIndex() : tabAt(event->pos());
    if (index < 0) {
        return;
    }
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [&](const QString& text, void (TabBar::*request)(int)) {
        auto* const action = menu->addAction(text);
        connect(action, &QAction::triggered, this, [this, request, index] {
            Q_EMIT(this->*request)(index);
        });
        return action;
    };
    add(tr("&Close"), &TabBar::CloseRequested);
    add(tr("Close &Others"), &TabBar::CloseOthersRequested)->setEnabled(count() > 1);
    menu->addSeparator();
    const bool hasFile = tabToolTip(index).startsWith('/');  // On this computer.
    add(tr("Copy &Path"), &TabBar::CopyPathRequested)->setEnabled(hasFile);
    add(tr("Show in &Folder"), &TabBar::ShowInFolderRequested)->setEnabled(hasFile);
    menu->popup(isByKey ? mapToGlobal(tabRect(index).bottomLeft()) : event->globalPos());
}
