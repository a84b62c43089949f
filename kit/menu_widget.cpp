#include "menu_widget.h"

#include "bitmap_content.h"

QString MenuLabel(const BMenuItem& item)
{
    return QString::fromStdString(item.Label()).replace('&', QLatin1String("&&"));
}

QIcon MenuIcon(const BMenuItem& item)
{
    const BBitmap* bitmap = item.Icon();
    return bitmap != nullptr && bitmap->content() != nullptr ? bitmap->content()->icon : QIcon();
}

QMenu* MakeMenuWidget(const BMenu& menu, QWidget* parent,
                      const std::function<void(const std::function<void()>& action)>& choose)
{
    auto* widget = new QMenu(parent);
    widget->setObjectName(QString::fromStdString(menu.Name()));
    for (const auto& item : menu.Items()) {
        QAction* action = widget->addAction(MenuIcon(*item), MenuLabel(*item));
        action->setIconVisibleInMenu(true);
        QObject::connect(action, &QAction::triggered, widget,
                         [choose, chosen = item->Action()] { choose(chosen); });
    }
    return widget;
}
