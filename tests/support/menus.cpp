#include "menus.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QMenu>
#include <QTest>

#include <algorithm>

QMenu* OpenMenu()
{
    return qobject_cast<QMenu*>(QApplication::activePopupWidget());
}

std::vector<std::string> LabelsOf(const QMenu& menu)
{
    std::vector<std::string> labels;
    for (const auto* action : menu.actions()) {
        labels.push_back(action->text().toStdString());
    }
    return labels;
}

QAction* ItemOf(const QMenu& menu, const std::string& label)
{
    const auto labels = LabelsOf(menu);
    const auto index = std::ranges::find(labels, label) - labels.begin();
    EXPECT_LT(index, std::ssize(labels)) << label;
    return menu.actions().value(index, menu.actions().value(0));
}

void ClickItem(QMenu& menu, const std::string& label)
{
    const auto at = menu.actionGeometry(ItemOf(menu, label)).center();
    QTest::mouseClick(&menu, Qt::LeftButton, {}, at);
}
