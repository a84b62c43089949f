#include "picture_icon.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QPalette>

#include <set>

namespace {

std::set<QRgb> ColorsOf(const QString& name)
{
    const QImage image = PictureIcon(name).pixmap({16, 16}, 2).toImage();
    EXPECT_EQ(image.width(), 32);
    std::set<QRgb> colors;
    for (int i = 0; i < image.width() * image.height(); ++i) {
        colors.insert(image.pixel(i % image.width(), i / image.width()));
    }
    return colors;
}

}  // namespace

TEST(PictureIcon, EveryPictureIsDrawnInTheColorsOfThePalette)
{
    const auto pictures = QDir(":/quilp/pictures").entryInfoList();
    EXPECT_FALSE(pictures.empty());
    for (const auto& picture : pictures) {
        const auto colors = ColorsOf(picture.baseName());
        EXPECT_TRUE(colors.contains(0)) << picture.baseName().toStdString() << " has no shape";
        EXPECT_GT(colors.size(), 2U) << picture.baseName().toStdString() << " is blank";
    }
    const QPalette before = QApplication::palette();
    QPalette dark;
    dark.setColor(QPalette::WindowText, QColor(0xf0, 0xe0, 0xd0));
    dark.setColor(QPalette::Base, Qt::black);
    QApplication::setPalette(dark);
    const auto colors = ColorsOf("save");
    EXPECT_TRUE(colors.contains(0xfff0e0d0) && colors.contains(0xff000000));
    EXPECT_FALSE(colors.contains(0xffffffff));
    QApplication::setPalette(before);
}
