#pragma once

#include "scintilla.h"

#include <QColor>
#include <QFont>

class QKeyEvent;

// The common style of all text views. [ui]

// The keys that every menu shows for Redo.
inline constexpr int kRedoKeys =
    static_cast<int>(Qt::CTRL) | static_cast<int>(Qt::SHIFT) | static_cast<int>(Qt::Key_Z);

// Colours that QPalette has no roles for.
struct EditorColors {
    QColor caretLine, margin, guide, link;
    QColor keyword, builtin, string, comment, number, className, function, decorator;
    QColor matchedBrace, match, error;  // `error` is also used for unmatched brackets.
};

const EditorColors& ColorsFor(const QPalette& palette);

QFont EditorFont();

// Sets the common properties. Call it once for each editor.
void SetUpEditor(QsciScintilla& editor);

// Sets the fonts, and colours that match the widget's palette. Call it again when the palette or
// the lexer changes.
void ApplyStyle(QsciScintilla& editor);

// Whether the event is Control with a printable character, which must not be inserted as text.
bool IsControlChord(const QKeyEvent& event);
