#include "menu_widget.h"

#include "bitmap_content.h"
#include "key_events.h"
#include "window_widget.h"

#include <QApplication>

namespace {

constexpr int kLastFunctionKey = 31;

// Empty if the item has no shortcut.
QKeySequence ShortcutOf(const BMenuItem& item)
{
    int key = item.Shortcut();
    const int function = key - kFunctionKeyBase;
    if (function > 0 && function <= kLastFunctionKey) {
        key = Qt::Key_F1 + function - 1;
    } else if (!QChar(key).isPrint()) {
        return {};
    }
    return QKeyCombination(ToQtModifiers(item.Modifiers()), static_cast<Qt::Key>(key));
}

// The shortcut is only shown: it cannot trigger the action, since the menu is not in a menu bar.
void AddAction(QMenu& menu, const BMenuItem& item, const MenuChoice& choose)
{
    QAction* action = menu.addAction(MenuIcon(item), MenuLabel(item));
    action->setIconVisibleInMenu(true);
    action->setShortcut(ShortcutOf(item));
    action->setShortcutVisibleInContextMenu(true);
    QObject::connect(
        action, &QAction::triggered, &menu,
        [choose, label = item.Label(), chosen = item.Action()] { choose(label, chosen); });
}

}  // namespace

QString MenuLabel(const BMenuItem& item)
{
    return QString::fromStdString(item.Label()).replace('&', QLatin1String("&&"));
}

QIcon MenuIcon(const BMenuItem& item)
{
    const BBitmap* bitmap = item.Icon();
    return bitmap != nullptr && bitmap->content() != nullptr ? bitmap->content()->icon : QIcon();
}

QMenu* MakeMenuWidget(const BMenu& menu, QWidget* parent, const MenuChoice& choose)
{
    auto* widget = new QMenu(parent);
    widget->setObjectName(QString::fromStdString(menu.Name()));
    if (menu.Font() && menu.Font()->Size() > 0) {
        QFont font = QApplication::font();
        font.setPointSizeF(menu.Font()->Size());
        widget->setFont(font);
    }
    for (const auto& item : menu.Items()) {
        AddAction(*widget, *item, choose);
    }
    return widget;
}

QMenu* MakeWindowMenu(QWidget& owner, const BMenu& menu)
{
    QMenu* widget = nullptr;
    CallWindow(owner, [&] {
        menu.AboutToShow();
        if (menu.Items().empty()) {
            return;
        }
        widget = MakeMenuWidget(
            menu, &owner, [&owner](const auto&, const auto& action) { CallWindow(owner, action); });
        widget->setAttribute(Qt::WA_DeleteOnClose);
    });
    return widget;
}
