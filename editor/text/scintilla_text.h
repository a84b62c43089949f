#pragma once

#include "scintilla.h"

#include <QByteArray>
#include <QString>

// The text of a QsciScintilla by its positions, which count bytes of UTF-8. Unlike QsciScintilla's
// own functions these take and give NUL characters as any other. Used on the user-interface thread.

// Scintilla's message with two numbers, where a plain 0 would be ambiguous.
inline long Send(const QsciScintillaBase& editor, unsigned message, long first = 0, long second = 0)
{
    return editor.SendScintilla(message, static_cast<unsigned long>(first), second);
}

long Length(const QsciScintillaBase& editor);
long LineAt(const QsciScintillaBase& editor, long position);
long LineStart(const QsciScintillaBase& editor, long line);
long LineEnd(const QsciScintillaBase& editor, long line);  // Before the line's ending.

QByteArray BytesBetween(const QsciScintillaBase& editor, long start, long end);
QString TextBetween(const QsciScintillaBase& editor, long start, long end);
QString TextOf(const QsciScintillaBase& editor);

// Puts the text in place of what stands there, in one step of undo; the selection stays on the text
// that it was on.
void ReplaceBetween(QsciScintillaBase& editor, long start, long end, const QByteArray& utf8);

// Selects and shows it, in the middle when it was out of sight. The caret stands at `caret`.
void SelectBetween(QsciScintillaBase& editor, long anchor, long caret);
