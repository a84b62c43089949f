#pragma once

#include "scintilla.h"

#include <QByteArray>
#include <QString>

// Functions for the text of a QsciScintilla. Positions count bytes of UTF-8. Unlike QsciScintilla's
// own functions, these support NUL characters. [ui]

// SendScintilla with two numbers. Its own overloads are ambiguous if a number is a literal 0.
inline long Send(const QsciScintillaBase& editor, unsigned message, long first = 0, long second = 0)
{
    return editor.SendScintilla(message, static_cast<unsigned long>(first), second);
}

long Length(const QsciScintillaBase& editor);
long LineAt(const QsciScintillaBase& editor, long position);
long LineStart(const QsciScintillaBase& editor, long line);
long LineEnd(const QsciScintillaBase& editor, long line);  // Before the line ending.

QByteArray BytesBetween(const QsciScintillaBase& editor, long start, long end);
QString TextBetween(const QsciScintillaBase& editor, long start, long end);
QString TextOf(const QsciScintillaBase& editor);
// The selection, or the caret's line if nothing is selected, with its indentation.
QString CodeAtCaret(const QsciScintillaBase& editor);

// Replaces text in one undo step. Preserves a selection outside the replaced range.
void ReplaceBetween(QsciScintillaBase& editor, long start, long end, const QByteArray& utf8);

// Selects a range and moves the caret to `caret`. If that line is not visible, it is scrolled to
// the middle.
void SelectBetween(QsciScintillaBase& editor, long anchor, long caret);
