#include "path_text.h"

#include "qt_version.h"

#include <QByteArray>

#include <glib.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <string_view>

namespace {

constexpr char16_t kByteEscape = 0xDC00;  // Added to a byte that is not part of UTF-8.
constexpr char16_t kFirstEscaped = kByteEscape + 0x80;
constexpr char16_t kLastEscaped = kByteEscape + 0xFF;
constexpr const char* kFileUrl = "file://";

// The part at the beginning that is UTF-8.
std::string_view ValidStart(std::string_view bytes)
{
    const char* end = nullptr;
    g_utf8_validate_len(bytes.data(), bytes.size(), &end);
    return bytes.substr(0, static_cast<std::size_t>(end - bytes.data()));
}

bool IsEscaped(QChar character)
{
    return character >= kFirstEscaped && character <= kLastEscaped;
}

template <typename Convert>
QStringList ConvertAll(const QStringList& texts, Convert convert)
{
    QStringList converted;
    std::ranges::transform(texts, std::back_inserter(converted), convert);
    return converted;
}

}  // namespace

QString PathToText(const std::string& path)
{
    QString text;
    for (std::string_view rest = path; !rest.empty();) {
        const auto valid = ValidStart(rest);
        text += QString::fromStdString(std::string(valid));
        rest.remove_prefix(valid.size());
        if (!rest.empty()) {
            text += QChar(
                static_cast<char16_t>(kByteEscape + static_cast<unsigned char>(rest.front())));
            rest.remove_prefix(1);
        }
    }
    return text;
}

std::string TextToPath(const QString& text)
{
    if (text.isValidUtf16()) {
        return text.toStdString();
    }
    std::string path;
    for (QtSize at = 0; at < text.size();) {
        if (IsEscaped(text[at])) {
            path += static_cast<char>(text[at].unicode() - kByteEscape);
            ++at;
        } else {
            const QtSize length = text[at].isHighSurrogate() ? 2 : 1;
            path += text.mid(at, length).toStdString();
            at += length;
        }
    }
    return path;
}

QString PathToStored(const QString& path)
{
    if (path.isValidUtf16()) {
        return path;
    }
    const auto bytes = QByteArray::fromStdString(TextToPath(path));
    return kFileUrl + QString::fromLatin1(bytes.toPercentEncoding("/"));
}

QString PathFromStored(const QString& stored)
{
    return stored.startsWith(kFileUrl)
               ? PathFromPercentEncoding(
                     stored.mid(static_cast<QtSize>(qstrlen(kFileUrl))).toUtf8())
               : stored;
}

QStringList PathsToStored(const QStringList& paths)
{
    return ConvertAll(paths, PathToStored);
}

QStringList PathsFromStored(const QStringList& stored)
{
    return ConvertAll(stored, PathFromStored);
}

QString PathFromPercentEncoding(const QByteArray& encoded)
{
    return PathToText(QByteArray::fromPercentEncoding(encoded).toStdString());
}

bool IsRegularFile(const QString& path)
{
    std::error_code error;
    return std::filesystem::is_regular_file(TextToPath(path), error);
}

bool IsFolder(const QString& path)
{
    std::error_code error;
    return std::filesystem::is_directory(TextToPath(path), error);
}
