#include "gradual_styling.h"

#include "scintilla_text.h"

#include <QElapsedTimer>

#include <algorithm>

using Sci = QsciScintillaBase;

namespace {

constexpr long kMaxAtOnce = 32'768;  // Bytes that Scintilla may style before a repaint.
constexpr long kStep = 8192;         // bytes
constexpr qint64 kTime = 4;          // milliseconds in one iteration of the event loop

}  // namespace

GradualStyling::GradualStyling(QsciScintilla& editor) : QObject(&editor), editor_(editor)
{
    Send(editor_, Sci::SCI_SETIDLESTYLING, Sci::SC_IDLESTYLING_TOVISIBLE);
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, &GradualStyling::StyleForAWhile);
}

long GradualStyling::VisibleEnd() const
{
    const long last = editor_.firstVisibleLine() + Send(editor_, Sci::SCI_LINESONSCREEN);
    return LineEnd(
        editor_, std::min(Send(editor_, Sci::SCI_DOCLINEFROMVISIBLE, last), editor_.lines() - 1L));
}

void GradualStyling::Prepare()
{
    const long styled = Send(editor_, Sci::SCI_GETENDSTYLED);
    if (editor_.lexer() == nullptr || VisibleEnd() - styled <= kMaxAtOnce) {
        return;
    }
    styled_ = std::min(styled_.value_or(styled), styled);
    Send(editor_, Sci::SCI_STARTSTYLING, Length(editor_));
    timer_.start();
}

// The start of a line.
long GradualStyling::NextStop(long position) const
{
    const long line = LineAt(editor_, std::min(position + kStep, Length(editor_)));
    const long start = LineStart(editor_, line);
    return start > position ? start : LineEnd(editor_, line) + 1;
}

void GradualStyling::StyleForAWhile()
{
    if (!styled_) {
        return;
    }
    QElapsedTimer timer;
    timer.start();
    styled_ = std::min(*styled_, Send(editor_, Sci::SCI_GETENDSTYLED));  // The text was changed.
    const long end = VisibleEnd();
    while (*styled_ < end && timer.elapsed() < kTime) {
        const long next = NextStop(*styled_);
        Send(editor_, Sci::SCI_COLOURISE, *styled_, std::min(next, Length(editor_)));
        styled_ = next;
    }
    if (*styled_ >= end) {
        Send(editor_, Sci::SCI_STARTSTYLING, std::min(*styled_, Length(editor_)));
        styled_.reset();
    } else {
        Send(editor_, Sci::SCI_STARTSTYLING, Length(editor_));
        timer_.start();
    }
}
