#include "text_search.h"

#include <algorithm>
#include <utility>

namespace {

FoundText RangeOf(const QRegularExpressionMatch& match)
{
    return {match.capturedStart(), match.capturedLength()};
}

// A search cannot start inside a surrogate pair.
qsizetype CharacterFrom(const QString& text, qsizetype at)
{
    return at > 0 && at < text.size() && text[at].isLowSurrogate() ? at + 1 : at;
}

// `end` is the last match's. An iterator is no longer valid either behind an empty match at the
// text's end.
bool GaveUp(const QRegularExpressionMatchIterator& iterator, const QString& text, qsizetype end)
{
    return !iterator.isValid() && end < text.size();
}

QString PatternOf(const QString& words, SearchOptions options)
{
    QString pattern = options.regularExpression ? words : QRegularExpression::escape(words);
    if (options.wholeWords) {
        pattern = "(?<!\\w)(?:" + pattern + ")(?!\\w)";
    }
    return "(*ANYCRLF)" + pattern;  // A line ends before "\r\n", not between.
}

}  // namespace

std::expected<TextSearch, QString> TextSearch::Make(const QString& words, SearchOptions options)
{
    using Option = QRegularExpression::PatternOption;
    auto flags = Option::MultilineOption | Option::UseUnicodePropertiesOption;
    flags.setFlag(Option::CaseInsensitiveOption, !options.matchCase);
    QRegularExpression pattern(PatternOf(words, options), flags);
    if (!pattern.isValid()) {
        return std::unexpected("No regular expression: " + pattern.errorString());
    }
    return TextSearch(std::move(pattern), options.regularExpression);
}

std::expected<std::optional<FoundText>, TooHard> TextSearch::FindFrom(const QString& text,
                                                                      qsizetype start) const
{
    if (start > text.size()) {
        return std::nullopt;
    }
    const auto match = pattern_.match(text, CharacterFrom(text, start));
    if (!match.isValid()) {
        return std::unexpected(TooHard());
    }
    return match.hasMatch() ? std::optional(RangeOf(match)) : std::nullopt;
}

std::expected<std::optional<FoundText>, TooHard> TextSearch::FindBefore(const QString& text,
                                                                        qsizetype end) const
{
    constexpr qsizetype kFirstLook = 4096;
    std::optional<FoundText> found;
    // Further and further back, so that a near match of a long text is found at once.
    for (qsizetype look = kFirstLook; !found; look *= 2) {
        const auto start = CharacterFrom(text, std::max<qsizetype>(0, end - look));
        auto it = pattern_.globalMatch(text, start);
        for (; it.hasNext(); it.next()) {
            const auto range = RangeOf(it.peekNext());
            if (range.start >= end) {
                break;
            }
            found = range;
        }
        if (GaveUp(it, text, found ? found->start + found->length : start)) {
            return std::unexpected(TooHard());
        }
        if (start == 0) {
            break;
        }
    }
    return found;
}

QString TextSearch::Expand(const QRegularExpressionMatch& match, const QString& replacement,
                           const QString& lineEnding) const
{
    if (!isRegularExpression_) {
        return replacement;
    }
    QString text;
    for (qsizetype at = 0; at < replacement.size(); ++at) {
        const QChar c = replacement[at];
        if (c != u'\\' || at + 1 == replacement.size()) {
            text += c;
            continue;
        }
        const QChar escaped = replacement[++at];
        if (escaped >= u'0' && escaped <= u'9') {
            text += match.captured(escaped.digitValue());
        } else if (escaped == u'n') {
            text += lineEnding;
        } else {
            text += escaped == u't' ? QChar(u'\t') : escaped;
        }
    }
    return text;
}

std::optional<QString> TextSearch::Replacement(const QString& text, FoundText range,
                                               const QString& replacement,
                                               const QString& lineEnding) const
{
    const auto match = pattern_.match(text, range.start, QRegularExpression::NormalMatch,
                                      QRegularExpression::AnchorAtOffsetMatchOption);
    if (!match.hasMatch() || RangeOf(match) != range) {
        return std::nullopt;
    }
    return Expand(match, replacement, lineEnding);
}

std::expected<ReplacedText, TooHard> TextSearch::ReplaceAll(const QString& text,
                                                            const QString& replacement,
                                                            const QString& lineEnding) const
{
    ReplacedText replaced;
    qsizetype end = 0;
    auto it = pattern_.globalMatch(text);
    while (it.hasNext()) {
        const auto match = it.next();
        if (replaced.count++ == 0) {
            replaced.range.start = match.capturedStart();
        } else {
            replaced.text += QStringView(text).sliced(end, match.capturedStart() - end);
        }
        replaced.text += Expand(match, replacement, lineEnding);
        end = match.capturedEnd();
    }
    if (GaveUp(it, text, end)) {
        return std::unexpected(TooHard());
    }
    replaced.range.length = end - replaced.range.start;
    return replaced;
}
