#include "document_file.h"

#include <QStringDecoder>

#include <utility>

namespace {

LoadedText Decode(const QByteArray& bytes)
{
    using Flag = QStringDecoder::Flag;
    QStringDecoder decoder(QStringDecoder::Utf8, Flag::Stateless | Flag::ConvertInitialBom);
    QString text = decoder.decode(bytes);
    if (decoder.hasError()) {
        return {QString::fromLatin1(bytes), TextEncoding::Latin1};
    }
    if (text.startsWith(QChar::ByteOrderMark)) {
        return {text.sliced(1), TextEncoding::Utf8WithBom};
    }
    return {std::move(text), TextEncoding::Utf8};
}

struct LineEndings {
    qsizetype lf;
    qsizetype crLf;
    qsizetype cr;

    qsizetype all() const { return lf + crLf + cr; }
};

LineEndings CountLineEndings(const QString& text)
{
    const auto crLf = text.count("\r\n");
    return {text.count(u'\n') - crLf, crLf, text.count(u'\r') - crLf};
}

char32_t CodePointAt(const QString& text, qsizetype at)
{
    const QChar first = text[at];
    return first.isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate()
               ? QChar::surrogateToUcs4(first, text[at + 1])
               : first.unicode();
}

bool CanEncode(TextEncoding encoding, char32_t character)
{
    return encoding == TextEncoding::Latin1 ? character <= 0xFF : !QChar::isSurrogate(character);
}

std::string EncodingName(TextEncoding encoding)
{
    return encoding == TextEncoding::Latin1 ? "Latin-1" : "UTF-8";
}

std::string Describe(char32_t character)
{
    const auto code = QString::number(character, 16).toUpper().rightJustified(4, u'0');
    return QString("%1 (U+%2)").arg(QString::fromUcs4(&character, 1), code).toStdString();
}

}  // namespace

std::expected<LoadedText, std::string> LoadText(const std::string& path)
{
    const auto bytes = ReadFileBytes(path);
    if (!bytes) {
        return std::unexpected(bytes.error());
    }
    return Decode(*bytes);
}

std::expected<QByteArray, std::string> Encode(const QString& text, TextEncoding encoding)
{
    for (qsizetype at = 0; at < text.size(); ++at) {
        const char32_t character = CodePointAt(text, at);
        if (!CanEncode(encoding, character)) {
            const auto line = CountLineEndings(text.first(at)).all() + 1;
            return std::unexpected("The character " + Describe(character) + " on line " +
                                   std::to_string(line) + " cannot be encoded in " +
                                   EncodingName(encoding));
        }
        at += QChar::requiresSurrogates(character) ? 1 : 0;
    }
    switch (encoding) {
        case TextEncoding::Utf8: return text.toUtf8();
        case TextEncoding::Utf8WithBom: return (QChar(QChar::ByteOrderMark) + text).toUtf8();
        case TextEncoding::Latin1: return text.toLatin1();
    }
    return QByteArray();
}

std::optional<qsizetype> FirstTooLongLine(const QString& text)
{
    qsizetype start = 0;
    for (qsizetype at = 0; at <= text.size(); ++at) {
        if (at == text.size() || text[at] == u'\n' || text[at] == u'\r') {
            if (at - start > kMaxSmoothLineLength) {
                return CountLineEndings(text.first(start)).all() + 1;
            }
            start = at + 1;
        }
    }
    return std::nullopt;
}

LineEnding DominantLineEnding(const QString& text)
{
    const auto [lf, crLf, cr] = CountLineEndings(text);
    if (crLf > lf && crLf >= cr) {
        return LineEnding::CrLf;
    }
    return cr > lf ? LineEnding::Cr : LineEnding::Lf;
}
