#include "picture_icon.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QPalette>

TEST(PictureIcon, EveryPictureIsDrawnInTheColorsOfThePalette)
{
    const QPalette before = QApplication::palette();
    QPalette palette;
    palette.setColor(QPalette::WindowText, QColor(0xf0, 0xe0, 0xd0));
    palette.setColor(QPalette::Base, Qt::black);
    QApplication::setPalette(palette);
    const auto imageOf = [](const QString& name) {
        return PictureIcon(name).pixmap({16, 16}, 2).toImage();
    };
    QImage blank = imageOf("save");
    EXPECT_EQ(blank.size(), QSize(32, 32));
    EXPECT_EQ(blank.pixel(5, 14), 0xfff0e0d0) << "its outline";
    EXPECT_EQ(blank.pixel(7, 14), 0xff000000) << "its surface";
    blank.fill(Qt::transparent);
    const auto pictures = QDir(":/quilp/pictures").entryInfoList();
    EXPECT_FALSE(pictures.empty());
    for (const auto& picture : pictures) {
        EXPECT_NE(imageOf(picture.baseName()), blank) << picture.baseName().toStdString();
    }
    QApplication::setPalette(before);
}
