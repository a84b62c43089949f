#pragma once

#include <QRegularExpression>
#include <QString>

#include <expected>
#include <optional>

// Searching and replacing text. Positions count UTF-16 units. [any]

struct SearchOptions {
    bool matchCase = false;
    bool wholeWords = false;
    bool regularExpression = false;
};

struct FoundText {
    qsizetype start = 0;
    qsizetype length = 0;

    bool operator==(const FoundText&) const = default;
};

struct ReplacedText {
    FoundText range;  // From the first match to the end of the last.
    QString text;     // The replacement for the range.
    int count = 0;
};

// The regular-expression engine gave up, because matching would take too long.
struct MatchLimitExceeded {};

// The result of searching a part of a text.
struct PartSearch {
    enum Kind {
        Found,
        NotFound,
        Incomplete,  // What follows the part decides whether there is a match at `range.start`.
        LimitExceeded,
    };
    Kind kind;
    FoundText range;
};

// A compiled search pattern.
class TextSearch {
  public:
    // The error is a message for the user.
    static std::expected<TextSearch, QString> Make(const QString& searchText,
                                                   SearchOptions options);

    // The first match that starts at `start` or later.
    std::expected<std::optional<FoundText>, MatchLimitExceeded> FindFrom(const QString& text,
                                                                         qsizetype start) const;
    // The first match at `start` or later in a part of a text. `isEnd` tells that no text follows.
    // The part must be valid UTF-16.
    PartSearch FindInPart(const QString& part, qsizetype start, bool isEnd) const;
    // The last match that starts before `end`.
    std::expected<std::optional<FoundText>, MatchLimitExceeded> FindBefore(const QString& text,
                                                                           qsizetype end) const;

    // The replacement for a match; none if the range is not a match. If the pattern is a regular
    // expression, \1 to \9 insert its groups, \0 the whole match, \n `lineEnding` and \t a tab.
    std::optional<QString> Replacement(const QString& text, FoundText range,
                                       const QString& replacement, const QString& lineEnding) const;
    std::expected<ReplacedText, MatchLimitExceeded> ReplaceAll(const QString& text,
                                                               const QString& replacement,
                                                               const QString& lineEnding) const;

    bool operator==(const TextSearch&) const = default;

  private:
    TextSearch(QRegularExpression pattern, bool isRegularExpression)
        : pattern_(std::move(pattern)), isRegularExpression_(isRegularExpression)
    {
    }
    QString Expand(const QRegularExpressionMatch& match, const QString& replacement,
                   const QString& lineEnding) const;

    QRegularExpression pattern_;
    bool isRegularExpression_;
};
