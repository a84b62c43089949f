#include "Menu.h"
#include "menu_widget.h"
#include "runtime.h"

#include <QApplication>
#include <QPointer>
#include <QWindow>

#include <utility>

namespace {

// The action of the item that the user chooses, if the host allows it; empty otherwise. If the
// window below the menu closes, for whatever reason, the menu closes, too.
std::function<void()> LetUserChoose(const BMenu& menu, BPoint where)
{
    std::string label;
    std::function<void()> chosen;
    auto* window = QApplication::activeWindow();
    if (window != nullptr && !window->isVisible()) {
        window = nullptr;  // It was closed before it became active, and will be destroyed soon.
    }
    const QPointer<QMenu> widget =
        MakeMenuWidget(menu, window, [&](const auto& chosenLabel, const auto& action) {
            label = chosenLabel;
            chosen = action;
        });
    if (window != nullptr) {
        QObject::connect(window->windowHandle(), &QWindow::visibleChanged, widget, &QWidget::close);
    }
    const bool byMouse = QGuiApplication::mouseButtons() != Qt::NoButton;
    ActivateItem(*widget, widget->actions().value(0),
                 byMouse ? MenuOpening::ByMouse : MenuOpening::ByKey);
    widget->exec(QPointF(where.x, where.y).toPoint());
    delete widget;  // Null if it was destroyed with the window.
    const auto& mayPerform = Runtime::Current().handlers.mayPerform;
    const bool isRefused = chosen && mayPerform && !mayPerform(label);
    return isRefused ? nullptr : chosen;
}

}  // namespace

BPopUpMenu::BPopUpMenu(const char* name, bool, bool) : BMenu(name) {}

void BPopUpMenu::Go(BPoint where, bool, bool, bool, BView* /*view*/)
{
    AboutToShow();
    const auto& choose = Runtime::Current().handlers.choosePopUpItem;
    if (choose) {
        if (const auto* item = choose(*this)) {
            item->Action()();
        }
    } else if (const auto action = LetUserChoose(*this, where)) {
        Runtime::Protect(action);
    }
}
