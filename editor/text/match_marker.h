#pragma once

#include "scintilla.h"
#include "text_search.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <optional>
#include <vector>

// Marks and counts all matches of a search, and does so again when the text has changed. It works
// on a part of the text in each iteration of the event loop, so that typing in a large text is not
// delayed. [ui]
class MatchMarker final : public QObject {
    Q_OBJECT

  public:
    // Further matches are neither marked nor counted.
    static constexpr std::size_t kMaxMatches = 100'000;

    explicit MatchMarker(QObject* parent);
    ~MatchMarker() override;

    // Does nothing if it already shows this search.
    void Show(QsciScintilla& editor, const TextSearch& search);
    // Removes the marks.
    void Clear();

    struct Count {
        std::size_t selected = 0;  // The number of the selected match, from 1; 0 if there is none.
        std::size_t total = 0;
        bool isLimited = false;  // There may be more than `total`.
    };
    bool IsBusy() const { return editor_ && search_ && !isFinished_; }
    // None until the whole text has been searched.
    std::optional<Count> count() const;

  Q_SIGNALS:
    // The count may have changed.
    void Changed();

  private:
    struct Match {
        long start, end;  // Bytes.
    };

    void Restart();
    void MarkPart();
    void AddMatches(const QString& part, qsizetype at, bool isEnd);
    void Advance(const QString& part, qsizetype from, qsizetype to);
    void Finish();
    void DefineMark();
    void Mark(Match match);
    void UnmarkSelected();

    QPointer<QsciScintilla> editor_;
    std::optional<TextSearch> search_;
    QTimer timer_;
    std::vector<Match> matches_;
    std::size_t unmarked_ = 0;  // The number of the selected match, which has no mark.
    long position_ = 0;         // The text before it has been searched; in bytes.
    long partSize_ = 0;         // Bytes.
    long length_ = 0;           // Of the text that is being searched, in bytes.
    bool isFinished_ = false;
};
