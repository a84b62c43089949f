#include "display_text.h"

#include "qt_version.h"

namespace {

constexpr char16_t kControlPictures = 0x2400;  // The first of the symbols for codes below 32.
constexpr char16_t kDeletePicture = 0x2421;

QChar Visible(QChar c)
{
    if (c < QChar(0x20)) {
        return QChar(static_cast<char16_t>(kControlPictures + c.unicode()));
    }
    if (c == QChar(0x7F)) {
        return QChar(kDeletePicture);
    }
    const bool breaksLine = c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
    return breaksLine || c.category() == QChar::Other_Control ? QChar(QChar::ReplacementCharacter)
                                                              : c;
}

}  // namespace

QString DisplayText(std::string_view text)
{
    QString shown = QString::fromUtf8(text.data(), static_cast<QtSize>(text.size()));
    for (auto& c : shown) {
        c = Visible(c);
    }
    return shown;
}

QString ToolTipText(const QString& text)
{
    return "<p style='white-space:pre-wrap'>" + text.toHtmlEscaped() + "</p>";
}
