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

// `end` is the end of the last match. The iterator is invalid also after an empty match at the end
// of the text, which is not an error.
bool LimitExceeded(const QRegularExpressionMatchIterator& iterator, const QString& text,
                   qsizetype end)
{
    return !iterator.isValid() && end < text.size();
}

QString PatternOf(const QString& searchText, SearchOptions options)
{
    QString pattern =
        options.regularExpression ? searchText : QRegularExpression::escape(searchText);
    if (options.wholeWords) {
        pattern = "(?<!\\w)(?:" + pattern + ")(?!\\w)";
    }
    return "(*ANYCRLF)" + pattern;  // "$" does not match between "\r" and "\n".
}

}  // namespace

std::expected<TextSearch, QString> TextSearch::Make(const QString& searchText,
                                                    SearchOptions options)
{
    using Option = QRegularExpression::PatternOption;
    auto flags = Option::MultilineOption | Option::UseUnicodePropertiesOption;
    flags.setFlag(Option::CaseInsensitiveOption, !options.matchCase);
    QRegularExpression pattern(PatternOf(searchText, options), flags);
    if (!pattern.isValid()) {
        return std::unexpected("Invalid regular expression: " + pattern.errorString());
    }
    return TextSearch(std::move(pattern), options.regularExpression);
}

std::expected<std::optional<FoundText>, MatchLimitExceeded> TextSearch::FindFrom(
    const QString& text, qsizetype start) const
{
    if (start > text.size()) {
        return std::nullopt;
    }
    const auto match = pattern_.match(text, CharacterFrom(text, start));
    if (!match.isValid()) {
        return std::unexpected(MatchLimitExceeded());
    }
    return match.hasMatch() ? std::optional(RangeOf(match)) : std::nullopt;
}

PartSearch TextSearch::FindInPart(const QString& part, qsizetype start, bool isEnd) const
{
    const auto type =
        isEnd ? QRegularExpression::NormalMatch : QRegularExpression::PartialPreferFirstMatch;
    // Checking the encoding of the whole part for each match would take most of the time.
    const auto match = pattern_.match(part, CharacterFrom(part, start), type,
                                      QRegularExpression::DontCheckSubjectStringMatchOption);
    if (!match.isValid()) {
        return {PartSearch::LimitExceeded, {}};
    }
    if (match.hasPartialMatch()) {
        return {PartSearch::Incomplete, RangeOf(match)};
    }
    return match.hasMatch() ? PartSearch{PartSearch::Found, RangeOf(match)}
                            : PartSearch{PartSearch::NotFound, {}};
}

std::expected<std::optional<FoundText>, MatchLimitExceeded> TextSearch::FindBefore(
    const QString& text, qsizetype end) const
{
    constexpr qsizetype kInitialDistance = 4096;
    std::optional<FoundText> found;
    // Search an increasing range, so that a near match in a long text is found quickly.
    for (qsizetype distance = kInitialDistance; !found; distance *= 2) {
        const auto start = CharacterFrom(text, std::max<qsizetype>(0, end - distance));
        auto it = pattern_.globalMatch(text, start);
        for (; it.hasNext(); it.next()) {
            const auto range = RangeOf(it.peekNext());
            if (range.start >= end) {
                break;
            }
            found = range;
        }
        if (LimitExceeded(it, text, found ? found->start + found->length : start)) {
            return std::unexpected(MatchLimitExceeded());
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

std::expected<ReplacedText, MatchLimitExceeded> TextSearch::ReplaceAll(
    const QString& text, const QString& replacement, const QString& lineEnding) const
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
    if (LimitExceeded(it, text, end)) {
        return std::unexpected(MatchLimitExceeded());
    }
    replaced.range.length = end - replaced.range.start;
    return replaced;
}
