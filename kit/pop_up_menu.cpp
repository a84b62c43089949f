#include "pop_up_menu.h"

#include "menu_widget.h"
#include "protect.h"

#include <QApplication>
#include <QPointer>
#include <QWindow>

#include <utility>

namespace {

std::function<const BMenuItem*(const BMenu&)> popUpChooser;
std::function<bool(const std::string&)> popUpGuard;

// The action of the item that the user chooses, if the guard lets it run; empty for none. The menu
// goes with the window that it lies over, whatever ends that meanwhile.
std::function<void()> LetUserChoose(const BMenu& menu, BPoint where)
{
    std::string label;
    std::function<void()> chosen;
    auto* window = QApplication::activeWindow();
    if (window != nullptr && !window->isVisible()) {
        window = nullptr;  // It was closed before it became active, and is about to be destroyed.
    }
    const QPointer<QMenu> widget =
        MakeMenuWidget(menu, window, [&](const auto& itsLabel, const auto& action) {
            label = itsLabel;
            chosen = action;
        });
    if (window != nullptr) {
        QObject::connect(window->windowHandle(), &QWindow::visibleChanged, widget, &QWidget::close);
    }
    widget->exec(QPointF(where.x, where.y).toPoint());
    delete widget;  // Unless it has gone already.
    const bool isRefused = chosen && popUpGuard && !popUpGuard(label);
    return isRefused ? nullptr : chosen;
}

}  // namespace

BPopUpMenu::BPopUpMenu(const char* name, bool, bool) : BMenu(name) {}

void BPopUpMenu::Go(BPoint where, bool, bool, bool, BView* /*view*/)
{
    AboutToShow();
    if (popUpChooser) {
        if (const auto* item = popUpChooser(*this)) {
            item->Action()();
        }
    } else if (const auto action = LetUserChoose(*this, where)) {
        Protect(action);
    }
}

void SetPopUpGuard(std::function<bool(const std::string& label)> mayRun)
{
    popUpGuard = std::move(mayRun);
}

void SetPopUpChooser(std::function<const BMenuItem*(const BMenu& menu)> chooser)
{
    popUpChooser = std::move(chooser);
}
