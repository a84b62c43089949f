#pragma once

#include "scintilla.h"

#include <functional>

// Keeps the end of a text visible while text is appended, until the user scrolls away from it. [ui]
class ViewFollower {
  public:
    // `editor` must outlive this object.
    explicit ViewFollower(QsciScintilla& editor);

    // Scrolls to the end, and follows it.
    void FollowEnd();
    // The text was replaced: its end is followed.
    void Reset();

    // Makes a change that scrolls the view although the user does not, such as appending text or
    // resizing the view. It may cause other such changes, for example when a scroll bar disappears.
    void Change(const std::function<void()>& change);

  private:
    void NoticeScrolling();
    void KeepView();
    long FirstLine() const;

    QsciScintilla& editor_;
    bool follows_ = true;      // Only the user's scrolling changes this.
    bool isScrolled_ = false;  // The user has moved the vertical scroll bar.
    bool isChanging_ = false;
    // As they were after the last change: the first visible line of the text, and the number of
    // lines that fit.
    long firstLine_ = 0;
    long linesOnScreen_ = 0;
};
