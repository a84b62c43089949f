#include "menu_widget.h"

#include "bitmap_content.h"
#include "display_text.h"
#include "key_events.h"
#include "window_widget.h"

#include <QApplication>

namespace {

constexpr int kLastFunctionKey = 31;
constexpr int kMaxLabelWidth = 60;  // in average characters

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
    return {static_cast<int>(ToQtModifiers(item.Modifiers())) | key};
}

// Elides a label that would make the menu too wide; then a tool tip shows all of it. Escapes it so
// that no character becomes a mnemonic.
void SetLabel(QAction& action, const QFontMetrics& metrics, const QString& label)
{
    const int room = kMaxLabelWidth * metrics.averageCharWidth();
    QString shown = metrics.elidedText(label, Qt::ElideMiddle, room);
    if (shown != label) {
        action.setToolTip(ToolTipText(label));
    }
    action.setText(shown.replace('&', QLatin1String("&&")));
}

// The shortcut is only shown: it cannot trigger the action, since the menu is not in a menu bar.
void AddAction(QMenu& menu, const BMenuItem& item, const MenuChoice& choose)
{
    QAction* action = menu.addAction(MenuIcon(item), QString());
    SetLabel(*action, menu.fontMetrics(), QString::fromStdString(item.Label()));
    action->setIconVisibleInMenu(true);
    action->setShortcut(ShortcutOf(item));
    action->setShortcutVisibleInContextMenu(true);
    QObject::connect(
        action, &QAction::triggered, &menu,
        [choose, label = item.Label(), chosen = item.Action()] { choose(label, chosen); });
}

}  // namespace

QIcon MenuIcon(const BMenuItem& item)
{
    const BBitmap* bitmap = item.Icon();
    return bitmap != nullptr && bitmap->content() != nullptr ? bitmap->content()->icon : QIcon();
}

QMenu* MakeMenuWidget(const BMenu& menu, QWidget* parent, const MenuChoice& choose)
{
    auto* widget = new QMenu(parent);
    widget->setObjectName(QString::fromStdString(menu.Name()));
    widget->setToolTipsVisible(true);
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

void ActivateItem(QMenu& menu, QAction* item, MenuOpening opening)
{
    if (opening == MenuOpening::ByKey) {
        menu.setActiveAction(item);
    }
}
