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

// By the keyboard: newer versions of Qt ignore clicks where the pointer was when the menu opened.
inline void ChooseItem(QMenu& menu, const std::string& label)
{
    for (auto* action : menu.actions()) {
        if (action->text().toStdString() == label) {
            menu.setActiveAction(action);
            return QTest::keyClick(&menu, Qt::Key_Return);
        }
    }
    ADD_FAILURE() << "The menu has no item \"" << label << '"';
    menu.close();
}
