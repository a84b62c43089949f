#pragma once

#include "scintilla.h"

// Colours Python as MicroPython has it. Used on the user-interface thread.
class PythonLexer final : public QsciLexerPython {
  public:
    explicit PythonLexer(QObject* parent) : QsciLexerPython(parent) {}

    void ApplyColors(const QPalette& palette);

    const char* keywords(int set) const override;
};
