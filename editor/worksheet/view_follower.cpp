#include "view_follower.h"

#include "scintilla_text.h"

#include <QScrollBar>

#include <utility>

using Sci = QsciScintillaBase;

namespace {

// The number of lines on the screen that the whole text takes.
long DisplayedLines(const QsciScintilla& editor)
{
    const long last = Send(editor, Sci::SCI_GETLINECOUNT) - 1;
    return Send(editor, Sci::SCI_VISIBLEFROMDOCLINE, last) + Send(editor, Sci::SCI_WRAPCOUNT, last);
}

void ShowEnd(const QsciScintilla& editor)
{
    if (editor.wrapMode() != QsciScintilla::WrapNone) {
        // Wraps the new lines, which Scintilla would do later.
        Send(editor, Sci::SCI_ENSUREVISIBLE, editor.lines() - 1);
    }
    Send(editor, Sci::SCI_SETFIRSTVISIBLELINE, DisplayedLines(editor));
}

}  // namespace

ViewFollower::ViewFollower(QsciScintilla& editor) : editor_(editor)
{
    QObject::connect(editor.verticalScrollBar(), &QScrollBar::actionTriggered, &editor,
                     [this] { isScrolled_ = true; });
    QObject::connect(&editor, &Sci::SCN_ZOOM, &editor, [this] {
        Change([this] { Send(editor_, Sci::SCI_TEXTHEIGHT); });  // Applies the new size.
    });
}

// When lines are wrapped anew, the first visible line stays, but not its number on the screen.
long ViewFollower::FirstLine() const
{
    return Send(editor_, Sci::SCI_DOCLINEFROMVISIBLE, editor_.firstVisibleLine());
}

void ViewFollower::FollowEnd()
{
    Reset();
    Change([] {});
}

void ViewFollower::Reset()
{
    follows_ = true;
    isScrolled_ = false;
    firstLine_ = FirstLine();
}

void ViewFollower::Change(const std::function<void()>& change)
{
    if (std::exchange(isChanging_, true)) {
        return change();
    }
    NoticeScrolling();
    change();
    KeepView();
    isChanging_ = false;
}

void ViewFollower::NoticeScrolling()
{
    if (std::exchange(isScrolled_, false) || FirstLine() != firstLine_) {
        // The view may have its new size already.
        follows_ = editor_.firstVisibleLine() + linesOnScreen_ >= DisplayedLines(editor_);
    }
}

void ViewFollower::KeepView()
{
    if (follows_) {
        ShowEnd(editor_);
    }
    firstLine_ = FirstLine();
    linesOnScreen_ = Send(editor_, Sci::SCI_LINESONSCREEN);
}
