#include "icons.h"

#include "picture_icon.h"
#include "python_file.h"

#include <QFileInfo>
#include <QHash>
#include <QMimeDatabase>

namespace {

QString PictureForSuffix(const QString& suffix)
{
    static const QHash<QString, const char*> pictures{
        {"mpy", "binary"}, {"txt", "text"},   {"md", "text"},     {"log", "text"},
        {"csv", "data"},   {"json", "data"},  {"toml", "data"},   {"ini", "data"},
        {"cfg", "data"},   {"yaml", "data"},  {"html", "markup"}, {"htm", "markup"},
        {"xml", "markup"}, {"css", "markup"}, {"js", "markup"},   {"png", "image"},
        {"jpg", "image"},  {"jpeg", "image"}, {"gif", "image"},   {"bmp", "image"},
        {"svg", "image"},  {"bin", "binary"}, {"uf2", "binary"},  {"hex", "binary"},
        {"zip", "binary"},
    };
    return pictures.value(suffix.toLower(), "document");
}

QString PictureForFileName(const QString& name)
{
    return IsPythonFile(name.toStdString()) ? "python" : PictureForSuffix(QFileInfo(name).suffix());
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
    return PictureIcon(PictureForFileName(name));
}

}  // namespace

QIcon ThemedIcon(const char* name, const char* picture)
{
    return QIcon::hasThemeIcon(name) ? QIcon::fromTheme(name) : PictureIcon(picture);
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
