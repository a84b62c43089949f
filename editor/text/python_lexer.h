#pragma once

#include "scintilla.h"

// Highlights the syntax of MicroPython. [ui]
class PythonLexer final : public QsciLexerPython {
  public:
    explicit PythonLexer(QObject* parent) : QsciLexerPython(parent) {}

    void ApplyColors(const QPalette& palette);

    const char* keywords(int set) const override;
};
