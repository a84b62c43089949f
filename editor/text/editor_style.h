#pragma once

#include "scintilla.h"

#include <QColor>
#include <QFont>

class QKeyEvent;

// How texts look. Used on the user-interface thread.

// Colours that a palette does not have.
struct EditorColors {
    QColor caretLine, margin, guide, link;
    QColor keyword, builtin, string, comment, number, className, function, decorator;
    QColor good, bad;  // Of matching and lonely brackets, and of messages.
};

const EditorColors& ColorsFor(const QPalette& palette);

QFont EditorFont();

// What all texts have in common. Once.
void SetUpEditor(QsciScintilla& editor);

// Fonts, and colours that suit the widget's palette. Again when the palette or the lexer changes.
void ApplyStyle(QsciScintilla& editor);

// Whether it is a chord of Control that stands for no character, though it has one.
bool IsControlChord(const QKeyEvent& event);
