#include "python_lexer.h"

#include "editor_style.h"

#include <array>
#include <utility>

const char* PythonLexer::keywords(int set) const
{
    switch (set) {
        case 1:
            return "False None True and as assert async await break class continue def del elif "
                   "else except finally for from global if import in is lambda nonlocal not or "
                   "pass raise return try while with yield";
        case 2:
            return "abs all any bin bool bytearray bytes callable chr classmethod complex const "
                   "delattr dict dir divmod enumerate eval exec filter float frozenset getattr "
                   "globals hasattr hash help hex id input int isinstance issubclass iter len list "
                   "locals map max memoryview min next object oct open ord pow print property "
                   "range repr reversed round set setattr slice sorted staticmethod str sum super "
                   "tuple type zip __import__ self cls";
        default: return nullptr;
    }
}

void PythonLexer::ApplyColors(const QPalette& palette)
{
    const EditorColors& colors = ColorsFor(palette);
    QFont font = EditorFont();
    setDefaultPaper(palette.color(QPalette::Base));
    setPaper(palette.color(QPalette::Base));
    setDefaultColor(palette.color(QPalette::Text));
    setColor(palette.color(QPalette::Text));
    setDefaultFont(font);
    setFont(font);
    for (const auto& [style, color] :
         {std::pair(Comment, colors.comment), std::pair(CommentBlock, colors.comment),
          std::pair(Number, colors.number), std::pair(Keyword, colors.keyword),
          std::pair(DoubleQuotedString, colors.string),
          std::pair(SingleQuotedString, colors.string),
          std::pair(TripleSingleQuotedString, colors.string),
          std::pair(TripleDoubleQuotedString, colors.string),
          std::pair(DoubleQuotedFString, colors.string),
          std::pair(SingleQuotedFString, colors.string),
          std::pair(TripleSingleQuotedFString, colors.string),
          std::pair(TripleDoubleQuotedFString, colors.string),
          std::pair(UnclosedString, colors.error), std::pair(ClassName, colors.className),
          std::pair(FunctionMethodName, colors.function),
          std::pair(HighlightedIdentifier, colors.builtin),
          std::pair(Decorator, colors.decorator)}) {
        setColor(color, style);
    }
    setEolFill(false, UnclosedString);
    font.setItalic(true);
    setFont(font, Comment);
    setFont(font, CommentBlock);
    font.setItalic(false);
    font.setBold(true);
    setFont(font, Keyword);
    setFont(font, ClassName);
}
