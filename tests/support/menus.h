#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QMenu>
#include <QTest>

#include <string>
#include <vector>

// The open menu, or null.
inline QMenu* OpenMenu()
{
    return qobject_cast<QMenu*>(QApplication::activePopupWidget());
}

inline std::vector<std::string> LabelsOf(const QMenu& menu)
{
    std::vector<std::string> labels;
    for (const auto* action : menu.actions()) {
        labels.push_back(action->text().toStdString());
    }
    return labels;
}

inline void ClickItem(QMenu& menu, const std::string& label)
{
    for (auto* action : menu.actions()) {
        if (action->text().toStdString() == label) {
            const auto at = menu.actionGeometry(action).center();
            return QTest::mouseClick(&menu, Qt::LeftButton, {}, at);
        }
    }
    ADD_FAILURE() << "The menu has no item \"" << label << '"';
    menu.close();
}
