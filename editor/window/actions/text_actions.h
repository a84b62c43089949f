#pragma once

#include <QObject>

#include <functional>

class DocumentPage;
class DocumentTabs;
class FindBar;
class QsciScintilla;
class QSplitter;
class Worksheet;

// Actions on the text that has the focus: the front document, the worksheet, the board's prompt or
// a field of the find bar. [ui]
class TextActions final : public QObject {
    Q_OBJECT

  public:
    // The referenced objects must outlive this one. `splitter` contains the documents and below
    // them the worksheet.
    TextActions(DocumentTabs& tabs, Worksheet& worksheet, FindBar& findBar, QSplitter& splitter);

    // Calls a slot without arguments, such as "undo", of the text or field that has the focus.
    void Edit(const char* slot);
    // Searches the text that has the focus, or from the find bar the text that it searched last.
    void Search(void (FindBar::*search)());
    // Asks the user for the line.
    void GoToLine(DocumentPage& page);

    // The zoom of all texts, in points added to the font size.
    int zoom() const { return zoom_; }
    void ZoomTo(int zoom);
    // Adopts the zoom of the front document, which the mouse wheel changes.
    void AdoptZoom();

    // Moves the focus to the front document, if there is one.
    void GoToDocument();
    // Moves the focus to the worksheet, or from there back to the front document.
    void SwitchToWorksheet();
    // A negative number shrinks the worksheet.
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
