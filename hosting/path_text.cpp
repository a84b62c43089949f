#include "path_text.h"

#include "qt_version.h"

#include <QByteArray>

#include <glib.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <string_view>

namespace {

constexpr char16_t kEscape = 0xDC00;  // Added to a byte that is not part of UTF-8.
constexpr char16_t kFirstEscaped = kEscape + 0x80;
constexpr char16_t kLastEscaped = kEscape + 0xFF;
constexpr std::size_t kMaxSequence = 4;  // bytes
constexpr const char* kFileUrl = "file://";

bool IsUtf8(std::string_view bytes)
{
    return g_utf8_validate(bytes.data(), static_cast<gssize>(bytes.size()), nullptr) != FALSE;
}

QString FromUtf8(std::string_view bytes)
{
    return QString::fromUtf8(bytes.data(), static_cast<QtSize>(bytes.size()));
}

// The length of the UTF-8 sequence at the beginning; 0 if there is none.
std::size_t SequenceLength(std::string_view bytes)
{
    for (std::size_t length = 1; length <= std::min(kMaxSequence, bytes.size()); ++length) {
        if (IsUtf8(bytes.substr(0, length))) {
            return length;
        }
    }
    return 0;
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
    const std::string_view bytes(path);
    if (IsUtf8(bytes)) {
        return FromUtf8(bytes);
    }
    QString text;
    for (std::size_t at = 0; at < bytes.size();) {
        const auto length = SequenceLength(bytes.substr(at));
        if (length > 0) {
            text += FromUtf8(bytes.substr(at, length));
        } else {
            text += QChar(static_cast<char16_t>(kEscape + static_cast<unsigned char>(bytes[at])));
        }
        at += std::max<std::size_t>(length, 1);
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
            path += static_cast<char>(text[at].unicode() - kEscape);
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
                     stored.mid(static_cast<qsizetype>(qstrlen(kFileUrl))).toUtf8())
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
