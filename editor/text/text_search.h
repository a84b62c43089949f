#pragma once

#include <QRegularExpression>
#include <QString>

#include <expected>
#include <optional>

// Searches of texts. Positions count UTF-16 units. Used on any thread.

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
    QString text;     // What is to stand there.
    int count = 0;
};

// There are too many ways to try the pattern at some place of the text.
struct TooHard {};

// One set of words to look for, and of what takes their place.
class TextSearch {
  public:
    // The error is a sentence.
    static std::expected<TextSearch, QString> Make(const QString& words, SearchOptions options);

    // The first match that starts there or later.
    std::expected<std::optional<FoundText>, TooHard> FindFrom(const QString& text,
                                                              qsizetype start) const;
    // The last match that starts before.
    std::expected<std::optional<FoundText>, TooHard> FindBefore(const QString& text,
                                                                qsizetype end) const;

    // What takes the place of a match; nothing when the range is none. With a regular expression \1
    // to \9 stand for its groups, \0 for all of it, \n for `lineEnding` and \t for a tab.
    std::optional<QString> Replacement(const QString& text, FoundText range,
                                       const QString& replacement, const QString& lineEnding) const;
    std::expected<ReplacedText, TooHard> ReplaceAll(const QString& text, const QString& replacement,
                                                    const QString& lineEnding) const;

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
