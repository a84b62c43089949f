#include "input_text.h"

#include "input_history.h"
#include "qt_version.h"

#include <QAbstractTextDocumentLayout>
#include <QKeyEvent>
#include <QTextBlock>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kMaxLines = 6;
constexpr int kIndent = 4;  // spaces

bool IsReturn(const QKeyEvent& event)
{
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

Qt::KeyboardModifiers ModifiersOf(const QKeyEvent& event)
{
    return event.modifiers() & ~Qt::KeypadModifier;
}

}  // namespace

InputText::InputText(InputHistory& history, QWidget* parent)
    : QPlainTextEdit(parent), history_(&history)
{
    setFrameShape(NoFrame);
    setAcceptDrops(false);  // Files are opened by the window.
    setWordWrapMode(QTextOption::WrapAnywhere);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(document()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged, this,
            &InputText::FitHeight);
    FitHeight();
}

void InputText::SetText(const QString& text)
{
    setPlainText(text);
    moveCursor(QTextCursor::End);
}

void InputText::SetTextFont(const QFont& font)
{
    setFont(font);
    FitHeight();
}

QString InputText::TextBeforeCaret() const
{
    return toPlainText().left(textCursor().position());
}

// The size of a plain text's layout is counted in lines.
void InputText::FitHeight()
{
    const int lines = std::max(1, static_cast<int>(document()->size().height()));
    const double text = std::min(lines, kMaxLines) * QFontMetricsF(font()).lineSpacing();
    setVerticalScrollBarPolicy(lines > kMaxLines ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    setFixedHeight(static_cast<int>(std::ceil(text + 2 * document()->documentMargin())));
}

bool InputText::IsCaretOnEdge(int key) const
{
    const auto cursor = textCursor();
    const auto* const layout = cursor.block().layout();
    const int line = layout->lineForTextPosition(cursor.positionInBlock()).lineNumber();
    return key == Qt::Key_Up
               ? cursor.blockNumber() == 0 && line <= 0
               : cursor.blockNumber() == blockCount() - 1 && line == layout->lineCount() - 1;
}

bool InputText::Walk(int key)
{
    if (!IsCaretOnEdge(key)) {
        return false;
    }
    const auto entry =
        key == Qt::Key_Up ? history_->Older(toPlainText()) : history_->Newer(toPlainText());
    if (entry) {
        SetText(*entry);
    }
    return true;
}

// The new line is indented like the one before it, and deeper after a colon.
void InputText::AddLine()
{
    auto cursor = textCursor();
    const QString line = cursor.block().text().left(cursor.positionInBlock());
    const auto text = std::ranges::find_if_not(line, [](QChar c) { return c.isSpace(); });
    const QString deeper(line.trimmed().endsWith(u':') ? kIndent : 0, u' ');
    cursor.insertText('\n' + line.left(static_cast<QtSize>(text - line.begin())) + deeper);
    setTextCursor(cursor);
    ensureCursorVisible();
}

// Returns false if the key has its usual effect.
bool InputText::HandleKey(const QKeyEvent& event)
{
    const auto modifiers = ModifiersOf(event);
    if (IsReturn(event)) {
        if (modifiers == Qt::ShiftModifier) {
            AddLine();
        } else {
            Q_EMIT ReturnPressed();
        }
        return true;
    }
    if (event.key() == Qt::Key_D && modifiers == Qt::ControlModifier && document()->isEmpty()) {
        Q_EMIT EndRequested();
        return true;
    }
    if (event.key() == Qt::Key_Backtab) {
        return focusPreviousChild();
    }
    if (modifiers != Qt::NoModifier) {
        return false;
    }
    switch (event.key()) {
        case Qt::Key_Tab: Q_EMIT TabPressed(); return true;
        case Qt::Key_Escape: Q_EMIT Left(); return true;
        case Qt::Key_Up:
        case Qt::Key_Down: return Walk(event.key());
        default: return false;
    }
}

bool InputText::event(QEvent* event)
{
    // These keys must not reach the menus.
    if (event->type() == QEvent::ShortcutOverride) {
        const auto& key = *static_cast<QKeyEvent*>(event);
        const bool isEnd = key.key() == Qt::Key_D && document()->isEmpty();
        if ((IsReturn(key) || isEnd) && ModifiersOf(key) == Qt::ControlModifier) {
            event->accept();
            return true;
        }
    }
    return QPlainTextEdit::event(event);
}

void InputText::keyPressEvent(QKeyEvent* event)
{
    const bool isOfList =
        IsReturn(*event) || event->key() == Qt::Key_Tab || event->key() == Qt::Key_Escape;
    if (isOfList && list_ != nullptr && list_->isVisible()) {
        event->ignore();  // The completer sends it to the list.
    } else if (!HandleKey(*event)) {
        QPlainTextEdit::keyPressEvent(event);
    }
}
