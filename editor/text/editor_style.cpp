#include "editor_style.h"

#include "appearance.h"
#include "on_demand_accessibility.h"
#include "scintilla_text.h"

#include <QFontDatabase>
#include <QKeyEvent>

using Sci = QsciScintillaBase;

namespace {

constexpr int kPointSize = 11;

const EditorColors kLight{
    .caretLine = {0xf2, 0xf7, 0xfd},
    .margin = {0xfa, 0xfb, 0xfc},
    .guide = {0xd5, 0xd9, 0xde},
    .link = {0x1f, 0x66, 0xb8},
    .keyword = {0x82, 0x50, 0xdf},
    .builtin = {0x82, 0x50, 0xdf},
    .string = {0x0f, 0x7b, 0x3a},
    .comment = {0x5f, 0x69, 0x73},
    .number = {0x05, 0x50, 0xae},
    .className = {0x95, 0x38, 0x00},
    .function = {0x05, 0x50, 0xae},
    .decorator = {0x8a, 0x5a, 0x00},
    .matchedBrace = {0xcf, 0xe3, 0xf8},
    .match = {0xff, 0xe3, 0x8f},
    .error = {0xc2, 0x1f, 0x2e},
};
const EditorColors kDark{
    .caretLine = {0x24, 0x2a, 0x31},
    .margin = {0x20, 0x24, 0x29},
    .guide = {0x3b, 0x41, 0x49},
    .link = {0x79, 0xb8, 0xff},
    .keyword = {0xc6, 0xa0, 0xf6},
    .builtin = {0xc6, 0xa0, 0xf6},
    .string = {0x8f, 0xd1, 0x9e},
    .comment = {0x97, 0xa0, 0xaa},
    .number = {0x79, 0xc0, 0xff},
    .className = {0xff, 0xb3, 0x80},
    .function = {0x79, 0xc0, 0xff},
    .decorator = {0xe3, 0xc0, 0x78},
    .matchedBrace = {0x2c, 0x4a, 0x6b},
    .match = {0x5a, 0x4b, 0x1c},
    .error = {0xff, 0x8a, 0x80},
};

bool IsPrintable(int key)
{
    return key >= Qt::Key_Space && key <= Qt::Key_AsciiTilde;
}

// Control with a character is reserved for the window's menus, except for common editing keys.
bool IsMenuShortcut(int chord)
{
    const int key = chord & ~static_cast<int>(Qt::KeyboardModifierMask);
    const bool isEditing = QStringLiteral("ACVXYZ").contains(QChar(key));
    return (chord & static_cast<int>(Qt::CTRL)) != 0 && IsPrintable(key) && !isEditing;
}

// QScintilla would handle these keys before the menus.
void RemoveMenuShortcuts(QsciScintilla& editor)
{
    for (auto* command : editor.standardCommands()->commands()) {
        if (IsMenuShortcut(command->key())) {
            command->setKey(0);
        }
        if (IsMenuShortcut(command->alternateKey())) {
            command->setAlternateKey(0);
        }
    }
}

// QScintilla's own context menu shows these keys.
void SetRedoKeys(QsciScintilla& editor)
{
    auto* const redo = editor.standardCommands()->find(QsciCommand::Redo);
    redo->setKey(kRedoKeys);
    redo->setAlternateKey(static_cast<int>(Qt::CTRL) | Qt::Key_Y);
}

}  // namespace

const EditorColors& ColorsFor(const QPalette& palette)
{
    return IsDark(palette) ? kDark : kLight;
}

QFont EditorFont()
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    const QString preferred = QStringLiteral("JetBrains Mono");
    // Determined once, because it enumerates all fonts of the system.
    static const bool isInstalled = QFontDatabase::families().contains(preferred);
    if (isInstalled) {
        font.setFamilies({preferred});
    }
    font.setPointSize(kPointSize);
    // QScintilla measures text without the desktop's hint but would paint it with that, so that
    // each font would be loaded twice, and substitutes for missing characters could differ in
    // width.
    font.setStyleHint(QFont::AnyStyle);
    return font;
}

void SetUpEditor(QsciScintilla& editor)
{
    new OnDemandAccessibility(editor);  // The editor owns it.
    editor.setUtf8(true);
    editor.setFrameShape(QFrame::NoFrame);
    editor.setExtraAscent(1);
    editor.setExtraDescent(2);
    editor.setCaretLineVisible(true);
    editor.setWrapMode(QsciScintilla::WrapNone);
    editor.setScrollWidth(1);  // Grows with the lines that are displayed.
    editor.setScrollWidthTracking(true);
    for (int margin = 0; margin < editor.margins(); ++margin) {
        editor.setMarginWidth(margin, 0);
    }
    RemoveMenuShortcuts(editor);
    SetRedoKeys(editor);
    ApplyStyle(editor);
}

void ApplyStyle(QsciScintilla& editor)
{
    const QPalette palette = editor.palette();
    const EditorColors& colors = ColorsFor(palette);
    const QColor text = palette.color(QPalette::Text);
    const QFont font = EditorFont();
    editor.setFont(font);
    editor.setMarginsFont(font);
    editor.setColor(text);
    editor.setPaper(palette.color(QPalette::Base));
    editor.setCaretForegroundColor(text);
    editor.setCaretLineBackgroundColor(colors.caretLine);
    editor.setSelectionForegroundColor(palette.color(QPalette::HighlightedText));
    editor.setSelectionBackgroundColor(palette.color(QPalette::Highlight));
    editor.setMarginsForegroundColor(palette.color(QPalette::PlaceholderText));
    editor.setMarginsBackgroundColor(colors.margin);
    editor.setIndentationGuidesForegroundColor(colors.guide);
    editor.setIndentationGuidesBackgroundColor(colors.guide);
    editor.setMatchedBraceForegroundColor(text);
    editor.setMatchedBraceBackgroundColor(colors.matchedBrace);
    editor.setUnmatchedBraceForegroundColor(colors.error);
    editor.setUnmatchedBraceBackgroundColor(palette.color(QPalette::Base));
}

bool IsControlChord(const QKeyEvent& event)
{
    const auto modifiers = event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier);
    return modifiers == Qt::ControlModifier && !event.text().isEmpty() && event.text()[0].isPrint();
}
