#pragma once

#include <QObject>

#include <functional>

class DocumentPage;
class DocumentTabs;
class FindBar;
class QsciScintilla;
class QSplitter;
class Worksheet;

// Actions on whichever text the user works in: the front document, the worksheet or a field of the
// find bar. Used on the user-interface thread.
class TextActions final : public QObject {
    Q_OBJECT

  public:
    // What it refers to must outlive it. `splitter` holds the documents above the worksheet.
    TextActions(DocumentTabs& tabs, Worksheet& worksheet, FindBar& findBar, QSplitter& splitter);

    // Calls a slot without arguments, such as "undo", of the focused text or field.
    void Edit(const char* slot);
    // Searches the focused text, also from within the find bar.
    void Search(void (FindBar::*search)());
    // Asks for the line.
    void GoToLine(DocumentPage& page);

    // The size of all texts, in points added to the font's.
    int zoom() const { return zoom_; }
    void ZoomTo(int zoom);
    // Follows the zoom of the front document, which the mouse wheel changes.
    void TakeZoom();

    void SwitchToWorksheet();
    // A negative number shrinks it.
    void EnlargeWorksheet(int pixels);

  private:
    QsciScintilla* FocusedText() const;
    bool IsFindBarFocused() const;

    DocumentTabs& tabs_;
    Worksheet& worksheet_;
    FindBar& findBar_;
    QSplitter& splitter_;
    int zoom_ = 0;
};
