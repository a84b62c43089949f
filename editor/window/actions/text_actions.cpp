#include "text_actions.h"

#include "document_tabs.h"
#include "find_bar.h"
#include "session.h"
#include "text_editor.h"
#include "worksheet.h"

#include <QApplication>
#include <QInputDialog>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSplitter>

#include <algorithm>

TextActions::TextActions(DocumentTabs& tabs, Worksheet& worksheet, FindBar& findBar,
                         QSplitter& splitter)
    : tabs_(tabs), worksheet_(worksheet), findBar_(findBar), splitter_(splitter)
{
}

QsciScintilla* TextActions::FocusedText() const
{
    if (worksheet_.hasFocus()) {
        return &worksheet_;
    }
    auto* const page = tabs_.FrontPage();
    return page != nullptr ? &page->editor() : nullptr;
}

bool TextActions::IsFindBarFocused() const
{
    const auto* const focused = QApplication::focusWidget();
    return focused != nullptr && findBar_.isAncestorOf(focused);
}

// Text fields and QsciScintilla have slots of the same names. While a button of the find bar has
// the focus, the action is for the text that the bar searches.
void TextActions::Edit(const char* slot)
{
    auto* const focused = QApplication::focusWidget();
    QWidget* target = FocusedText();
    if (IsFindBarFocused()) {
        target = qobject_cast<QLineEdit*>(focused);
        target = target != nullptr ? target : findBar_.editor();
    } else if (auto* const prompt = qobject_cast<QPlainTextEdit*>(focused)) {
        target = prompt;
    }
    if (target != nullptr) {
        QMetaObject::invokeMethod(target, slot);
    }
}

void TextActions::Search(void (FindBar::*search)())
{
    if (!IsFindBarFocused()) {
        findBar_.SetEditor(FocusedText());
    }
    (findBar_.*search)();
}

void TextActions::GoToLine(DocumentPage& page)
{
    auto& editor = page.editor();
    bool accepted = false;
    const int line = QInputDialog::getInt(page.window(), tr("Go to Line"), tr("Line:"),
                                          editor.CaretLine(), 1, editor.lines(), 1, &accepted);
    if (accepted) {
        editor.GoToLine(line);
    }
}

void TextActions::ZoomTo(int zoom)
{
    const int wanted = std::clamp(zoom, kMinZoom, kMaxZoom);
    for (int i = 0; i < tabs_.count(); ++i) {
        static_cast<DocumentPage*>(tabs_.widget(i))->editor().zoomTo(wanted);
    }
    worksheet_.zoomTo(wanted);
    zoom_ = wanted;  // Last, because zooming a document makes AdoptZoom read the front one's zoom.
}

// The other documents adopt the zoom when they become the front document.
void TextActions::AdoptZoom()
{
    if (auto* const page = tabs_.FrontPage()) {
        const auto zoom = page->editor().SendScintilla(QsciScintilla::SCI_GETZOOM);
        zoom_ = std::clamp(static_cast<int>(zoom), kMinZoom, kMaxZoom);
    }
}

void TextActions::GoToDocument()
{
    if (auto* const page = tabs_.FrontPage()) {
        page->editor().setFocus();
    }
}

void TextActions::SwitchToWorksheet()
{
    if (worksheet_.hasFocus() && tabs_.FrontPage() != nullptr) {
        GoToDocument();
    } else {
        worksheet_.setFocus();
    }
}

void TextActions::EnlargeWorksheet(int pixels)
{
    const auto sizes = splitter_.sizes();
    splitter_.setSizes({sizes[0] - pixels, sizes[1] + pixels});
}
