#include "icons.h"

#include "painted_icon.h"
#include "python_file.h"

#include <QFileInfo>
#include <QHash>
#include <QMimeDatabase>
#include <QPainter>
#include <QPainterPath>

#include <array>

namespace {

const QColor kOutline(0x6b, 0x75, 0x80);
const QColor kPaper(0xfc, 0xfd, 0xfe);
const QColor kFolder(0x62, 0xa8, 0xe5);
const QColor kFolderEdge(0x2f, 0x79, 0xbd);
const QColor kMetal(0xc4, 0xcc, 0xd4);
const QColor kLamp(0x2f, 0xa8, 0x5a);
const QColor kPython(0x2b, 0x6c, 0xb0);
const QColor kMarkup(0xc0, 0x56, 0x21);
const QColor kImage(0x80, 0x5a, 0xd5);
const QColor kData(0x97, 0x6d, 0x0c);
const QColor kBinary(0x4a, 0x55, 0x68);

void DrawFolder(QPainter& painter)
{
    painter.setPen(QPen(kFolderEdge, 1));
    painter.setBrush(kFolder.darker(110));
    painter.drawRoundedRect(QRectF(1.5, 2.5, 7, 5), 1, 1);
    painter.setBrush(kFolder);
    painter.drawRoundedRect(QRectF(1.5, 4.5, 13, 9), 1, 1);
}

void DrawDisk(QPainter& painter)
{
    painter.setPen(QPen(kOutline, 1));
    painter.setBrush(kMetal);
    painter.drawRoundedRect(QRectF(1.5, 4.5, 13, 8), 1.5, 1.5);
    painter.drawLine(QPointF(1.5, 9.5), QPointF(14.5, 9.5));
    painter.setPen(Qt::NoPen);
    painter.setBrush(kLamp);
    painter.drawRect(QRectF(11, 10.5, 2, 1));
}

void DrawPaper(QPainter& painter)
{
    QPainterPath sheet(QPointF(3.5, 1.5));
    for (const auto& point : {QPointF(9.5, 1.5), QPointF(12.5, 4.5), QPointF(12.5, 14.5),
                              QPointF(3.5, 14.5), QPointF(3.5, 1.5)}) {
        sheet.lineTo(point);
    }
    painter.setPen(QPen(kOutline, 1));
    painter.setBrush(kPaper);
    painter.drawPath(sheet);
    painter.drawPolyline(
        std::array{QPointF(9.5, 1.5), QPointF(9.5, 4.5), QPointF(12.5, 4.5)}.data(), 3);
}

void DrawLines(QPainter& painter)
{
    painter.setPen(QPen(kOutline.lighter(130), 1));
    for (const double y : {7.5, 9.5, 11.5}) {
        painter.drawLine(QPointF(5.5, y), QPointF(10.5, y));
    }
}

void DrawBadge(QPainter& painter, const QColor& color)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(QRectF(5, 8, 10, 6), 1.5, 1.5);
}

// A document with a badge, whose colour and label show the kind.
void DrawKind(QPainter& painter, const QColor& color, const char* label)
{
    DrawPaper(painter);
    DrawBadge(painter, color);
    QFont font;
    font.setPixelSize(5);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(QRectF(5, 8, 10, 6), Qt::AlignCenter, QLatin1String(label));
}

IconDrawing DrawingOf(Picture picture)
{
    using Painter = QPainter&;
    using Colors = const IconColors&;
    switch (picture) {
        case Picture::Folder: return [](Painter p, Colors) { DrawFolder(p); };
        case Picture::Disk: return [](Painter p, Colors) { DrawDisk(p); };
        case Picture::Text:
            return [](Painter p, Colors) {
                DrawPaper(p);
                DrawLines(p);
            };
        case Picture::Python: return [](Painter p, Colors) { DrawKind(p, kPython, "PY"); };
        case Picture::Markup: return [](Painter p, Colors) { DrawKind(p, kMarkup, "</>"); };
        case Picture::Image: return [](Painter p, Colors) { DrawKind(p, kImage, "IMG"); };
        case Picture::Data: return [](Painter p, Colors) { DrawKind(p, kData, "{ }"); };
        case Picture::Binary: return [](Painter p, Colors) { DrawKind(p, kBinary, "010"); };
        case Picture::Document: break;
    }
    return [](Painter p, Colors) { DrawPaper(p); };
}

Picture PictureForSuffix(const QString& suffix)
{
    static const QHash<QString, Picture> pictures{
        {"mpy", Picture::Binary}, {"txt", Picture::Text},    {"md", Picture::Text},
        {"log", Picture::Text},   {"csv", Picture::Data},    {"json", Picture::Data},
        {"toml", Picture::Data},  {"ini", Picture::Data},    {"cfg", Picture::Data},
        {"yaml", Picture::Data},  {"html", Picture::Markup}, {"htm", Picture::Markup},
        {"xml", Picture::Markup}, {"css", Picture::Markup},  {"js", Picture::Markup},
        {"png", Picture::Image},  {"jpg", Picture::Image},   {"jpeg", Picture::Image},
        {"gif", Picture::Image},  {"bmp", Picture::Image},   {"svg", Picture::Image},
        {"bin", Picture::Binary}, {"uf2", Picture::Binary},  {"hex", Picture::Binary},
        {"zip", Picture::Binary},
    };
    return pictures.value(suffix.toLower(), Picture::Document);
}

Picture PictureForFileName(const QString& name)
{
    return IsPythonFile(name.toStdString()) ? Picture::Python
                                            : PictureForSuffix(QFileInfo(name).suffix());
}

QIcon FindIconForFileName(const QString& name)
{
    // Looking up the type is slow and useless without a theme that has icons for file types.
    if (QIcon::hasThemeIcon("text-x-generic")) {
        const auto type = QMimeDatabase().mimeTypeForFile(name, QMimeDatabase::MatchExtension);
        for (const auto& candidate : {type.iconName(), type.genericIconName()}) {
            if (QIcon::hasThemeIcon(candidate)) {
                return QIcon::fromTheme(candidate);
            }
        }
    }
    return PaintedIcon(PictureForFileName(name));
}

}  // namespace

QIcon PaintedIcon(Picture picture)
{
    return PaintedIcon(DrawingOf(picture));
}

QIcon ThemedIcon(const char* name, Picture picture)
{
    return QIcon::hasThemeIcon(name) ? QIcon::fromTheme(name) : PaintedIcon(picture);
}

QIcon IconForFileName(const QString& name)
{
    // Icons are cached, since each drawn row needs one. The user may change the theme.
    static QHash<QString, QIcon> cache;
    static QString theme;
    if (theme != QIcon::themeName() || cache.size() > 1000) {
        cache.clear();
        theme = QIcon::themeName();
    }
    const QString suffix = QFileInfo(name).completeSuffix();
    auto found = cache.find(suffix);
    if (found == cache.end()) {
        found = cache.insert(suffix, FindIconForFileName(name));
    }
    return *found;
}
