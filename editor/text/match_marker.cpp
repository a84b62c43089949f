#include "match_marker.h"

#include "editor_style.h"
#include "on_demand_accessibility.h"
#include "scintilla_text.h"

#include <QElapsedTimer>

#include <algorithm>
#include <chrono>
#include <utility>

using Sci = QsciScintillaBase;

namespace {

constexpr int kIndicator = 9;
constexpr long kPartSize = 131'072;  // bytes
constexpr long kContext = 256;       // Bytes before a part that the expression may look at.
constexpr qint64 kMaxTime = 3;       // milliseconds in one iteration of the event loop
constexpr std::chrono::milliseconds kDelay{200};  // After a change, because others may follow.

// The start of the character at the position.
long CharacterStart(const Sci& editor, long position)
{
    return position <= 0 ? 0 : Send(editor, Sci::SCI_POSITIONBEFORE, position + 1);
}

void ClearMarks(const Sci& editor, long start, long end)
{
    Send(editor, Sci::SCI_SETINDICATORCURRENT, kIndicator);
    Send(editor, Sci::SCI_INDICATORCLEARRANGE, start, end - start);
}

}  // namespace

MatchMarker::MatchMarker(QObject* parent) : QObject(parent)
{
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, &MatchMarker::MarkPart);
}

MatchMarker::~MatchMarker() = default;

void MatchMarker::Show(QsciScintilla& editor, const TextSearch& search)
{
    if (editor_ == &editor && search_ == search) {
        return;
    }
    Clear();
    editor_ = &editor;
    search_ = search;
    DefineMark();
    connect(&editor, &Sci::SCN_MODIFIED, this, [this](int, int type) {
        if ((type & kBeforeChange) != 0) {
            Restart();
            timer_.start(kDelay);
        }
    });
    connect(&editor, &Sci::SCN_UPDATEUI, this, [this] {
        if (isFinished_ && Length(*editor_) != length_) {  // Output sends no SCN_MODIFIED.
            Restart();
            timer_.start(kDelay);
        }
        UnmarkSelected();
        Q_EMIT Changed();
    });
    Restart();
    MarkPart();
}

void MatchMarker::Clear()
{
    timer_.stop();
    Restart();
    search_.reset();
    if (editor_) {
        editor_->disconnect(this);
        ClearMarks(*editor_, 0, Length(*editor_));
    }
    editor_ = nullptr;
}

void MatchMarker::DefineMark()
{
    const QColor color = ColorsFor(editor_->palette()).match;
    editor_->indicatorDefine(QsciScintilla::StraightBoxIndicator, kIndicator);
    editor_->setIndicatorForegroundColor(color, kIndicator);
    editor_->setIndicatorOutlineColor(color, kIndicator);
    editor_->setIndicatorDrawUnder(true, kIndicator);
}

void MatchMarker::Mark(Match match)
{
    Send(*editor_, Sci::SCI_SETINDICATORCURRENT, kIndicator);
    Send(*editor_, Sci::SCI_INDICATORFILLRANGE, match.start, match.end - match.start);
}

// The mark would hide the colour of the selection.
void MatchMarker::UnmarkSelected()
{
    const auto counted = count();
    const std::size_t selected = counted ? counted->selected : 0;
    if (selected == unmarked_) {
        return;
    }
    if (const auto old = std::exchange(unmarked_, selected); old > 0) {
        Mark(matches_[old - 1]);
    }
    if (selected > 0) {
        ClearMarks(*editor_, matches_[selected - 1].start, matches_[selected - 1].end);
    }
}

// The marks remain until their part of the text is searched again.
void MatchMarker::Restart()
{
    matches_.clear();
    unmarked_ = 0;
    position_ = 0;
    length_ = editor_ ? Length(*editor_) : 0;
    partSize_ = kPartSize;
    isFinished_ = false;
}

void MatchMarker::MarkPart()
{
    if (!editor_ || !search_) {
        return;
    }
    if (Length(*editor_) != length_) {  // Output has arrived, perhaps in place of old lines.
        Restart();
    }
    const long start = CharacterStart(*editor_, std::max(0L, position_ - kContext));
    const long end = CharacterStart(*editor_, std::min(length_, position_ + partSize_));
    const long before = position_;
    const auto context = TextBetween(*editor_, start, position_).size();
    AddMatches(TextBetween(*editor_, start, end), context, end == length_);
    if (isFinished_) {
        UnmarkSelected();
        Q_EMIT Changed();
        return;
    }
    // If nothing was searched, a match does not fit into the part.
    partSize_ = position_ == before ? partSize_ * 2 : kPartSize;
    timer_.start(std::chrono::milliseconds(0));
}

// Searches the part from `at` until the time is over. The text continues after the part, unless
// `isEnd`.
void MatchMarker::AddMatches(const QString& part, qsizetype at, bool isEnd)
{
    QElapsedTimer timer;
    timer.start();
    qsizetype done = at;
    while (timer.elapsed() < kMaxTime) {
        const auto found = search_->FindInPart(part, at, isEnd);
        if (found.kind != PartSearch::Found) {
            if (found.kind == PartSearch::LimitExceeded) {
                Restart();  // The count would be wrong.
                return Finish();
            }
            const bool isIncomplete = found.kind == PartSearch::Incomplete;
            Advance(part, done, isIncomplete ? found.range.start : part.size());
            return isEnd && !isIncomplete ? Finish() : void();
        }
        Advance(part, done, found.range.start);
        const long start = position_;
        done = found.range.start + found.range.length;
        Advance(part, found.range.start, done);
        matches_.push_back({start, position_});
        Mark(matches_.back());
        if (matches_.size() == kMaxMatches) {
            return Finish();
        }
        if (found.range.length == 0) {
            if (done == part.size()) {
                return isEnd ? Finish() : void();
            }
            const qsizetype next = done + (part[done].isHighSurrogate() ? 2 : 1);
            Advance(part, std::exchange(done, next), next);
        }
        at = done;
    }
}

// Removes the old marks from a range of the part that follows the position, and moves the position
// to the range's end.
void MatchMarker::Advance(const QString& part, qsizetype from, qsizetype to)
{
    const long end = position_ + QStringView(part).sliced(from, to - from).toUtf8().size();
    ClearMarks(*editor_, position_, end);
    position_ = end;
}

void MatchMarker::Finish()
{
    ClearMarks(*editor_, position_, length_);
    isFinished_ = true;
}

std::optional<MatchMarker::Count> MatchMarker::count() const
{
    if (!isFinished_ || !editor_) {
        return std::nullopt;
    }
    const long start = Send(*editor_, Sci::SCI_GETSELECTIONSTART);
    const long end = Send(*editor_, Sci::SCI_GETSELECTIONEND);
    const auto found = std::ranges::lower_bound(matches_, start, {}, &Match::start);
    const bool isSelected = found != matches_.end() && found->start == start && found->end == end;
    const auto number = static_cast<std::size_t>(found - matches_.begin()) + 1;
    return Count{isSelected ? number : 0, matches_.size(), matches_.size() == kMaxMatches};
}
