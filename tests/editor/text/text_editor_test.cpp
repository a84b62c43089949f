#include "text_editor.h"

#include "bracket_match.h"
#include "scintilla_text.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QDropEvent>
#include <QMimeData>
#include <QShortcut>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace {

class TextEditorTest : public testing::Test {
  protected:
    TextEditorTest()
    {
        editor.resize(600, 400);
        editor.SetLanguage(TextEditor::Language::Python);
        editor.show();
        editor.activateWindow();
        editor.setFocus();
        EXPECT_TRUE(WaitUntil([&] { return editor.hasFocus(); }));
    }

    TextEditor editor;
};

}  // namespace

TEST_F(TextEditorTest, EveryCharacterSurvives)
{
    const auto text = QString::fromUtf8("a\0b", 3) + "é€😀\u2028\ufeff\tend\r\nlf\ncr\r" + QChar(0);
    editor.SetContent(text);
    EXPECT_EQ(editor.Content(), text);
    editor.ReplaceContent(text + text);
    EXPECT_EQ(editor.Content(), text + text);
    editor.SetContent({});
    EXPECT_EQ(editor.Content(), QString());
}

TEST_F(TextEditorTest, ALoadedTextIsUnmodifiedAndCannotBeUndone)
{
    QTest::keyClicks(&editor, "typed ");
    EXPECT_TRUE(editor.isModified());
    editor.SetContent("second\nthird");
    EXPECT_FALSE(editor.isModified());
    EXPECT_FALSE(editor.isUndoAvailable());
    editor.undo();
    EXPECT_EQ(editor.Content(), "second\nthird");
}

TEST_F(TextEditorTest, AReloadedFileIsOneUndoStepAndKeepsThePosition)
{
    const QString before = QString("line\n").repeated(500);
    editor.SetContent(before);
    editor.GoToLine(250);
    const int top = editor.firstVisibleLine();
    ASSERT_GT(top, 0);
    editor.ReplaceContent(before + "😀 more\n");
    EXPECT_EQ(editor.Content(), before + "😀 more\n");
    EXPECT_FALSE(editor.isModified());
    EXPECT_EQ(editor.CaretLine(), 250);
    EXPECT_EQ(editor.firstVisibleLine(), top);
    editor.undo();
    EXPECT_EQ(editor.Content(), before);
    EXPECT_TRUE(editor.isModified());

    editor.SetContent("abcd");
    QTest::keyClick(&editor, Qt::Key_End);
    editor.ReplaceContent("€€");
    QTest::keyClicks(&editor, "x");
    EXPECT_EQ(editor.Content(), "€x€") << "the caret was inside a character";
}

TEST_F(TextEditorTest, KeysIndentAndComment)
{
    using Act = void (*)(TextEditor&);
    const Act kReturn = [](TextEditor& e) { QTest::keyClick(&e, Qt::Key_Return); };
    const Act kTab = [](TextEditor& e) { QTest::keyClick(&e, Qt::Key_Tab); };
    const Act kBackspace = [](TextEditor& e) { QTest::keyClick(&e, Qt::Key_Backspace); };
    const Act kComment = [](TextEditor& e) { e.ToggleComment(); };
    const struct {
        const char* name;
        Act act;
        const char *before, *after;  // The selection is between "<" and ">", the caret at "|".
    } rows[] = {
        {"a block with CR LF", kReturn, "pass\r\nif x:|", "pass\r\nif x:\r\n    |"},
        {"a comment after it", kReturn, "    while 1:  # ever|", "    while 1:  # ever\n        |"},
        {"a statement with a tab", kReturn, "\tx = 1|", "\tx = 1\n\t|"},
        {"a colon in a string", kReturn, "x = \"\"\"as:|", "x = \"\"\"as:\n|"},
        {"a line that moves down", kReturn, "|    x", "\n|    x"},
        {"the end of a block", kReturn, "if x:\r\n  for y in z:\r\n\r\n    return (1)  # (|",
         "if x:\r\n  for y in z:\r\n\r\n    return (1)  # (\r\n  |"},
        {"an open bracket", kReturn, "if x:\n    return (1,|", "if x:\n    return (1,\n    |"},
        {"an open string", kReturn, "if x:\n  raise \"\"\"a|", "if x:\n  raise \"\"\"a\n  |"},
        {"the middle of a line", kReturn, "if x:\n  pass|;y", "if x:\n  pass\n  |;y"},
        {"another word", kReturn, "if x:\n  passed = 1|", "if x:\n  passed = 1\n  |"},
        {"lines", kTab, "<a\nb\n>c", "    a\n    b\nc"},
        {"an indent back", kBackspace, "        |x", "    |x"},
        {"comments", kComment, "<    é\r\n\r\n        b>", "    # é\r\n\r\n    #     b"},
        {"one of two", kComment, "<# a\nb>", "# # a\n# b"},
        {"no comment", kComment, "<# a\n\n    #b>", "a\n\n    b"},
    };
    const auto take = [](QString& text, QChar mark) {
        const auto at = text.indexOf(mark);
        return at < 0 ? -1 : (text.remove(at, 1), text.first(at).toUtf8().size());
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.name) + ": " + row.before);
        QString text = row.before;
        const auto caret = take(text, '|');
        const auto start = take(text, '<');
        const auto end = take(text, '>');
        editor.SetContent(text);
        SelectBetween(editor, std::max(caret, start), std::max(caret, end));
        row.act(editor);
        if (caret >= 0) {
            QTest::keyClicks(&editor, "|");
        }
        EXPECT_EQ(editor.Content(), row.after);
        if (row.act == kComment) {
            editor.undo();
            EXPECT_EQ(editor.Content(), text) << "it takes more than one step";
        }
    }
}

TEST_F(TextEditorTest, GoToLineShowsTheLineAndSetsTheFocus)
{
    editor.SetContent(QString("line\n").repeated(1000));
    editor.clearFocus();
    editor.GoToLine(500);
    EXPECT_NEAR(editor.firstVisibleLine(), 488, 9) << "the line is not near the middle";
    EXPECT_TRUE(editor.hasFocus());
    for (const auto& [line, shown] : {std::pair(500, 500), {100'000, 1001}, {-3, 1}}) {
        editor.GoToLine(line);
        EXPECT_EQ(editor.CaretLine(), shown);
    }
}

TEST_F(TextEditorTest, BracketsOfCodeAreMatched)
{
    const auto match = [&](QString text) {  // The caret is at "|".
        const auto caret = text.indexOf('|');
        editor.SetContent(text.remove(caret, 1));
        Send(editor, QsciScintilla::SCI_COLOURISE, 0, -1);
        Send(editor, QsciScintilla::SCI_GOTOPOS, caret);
        return MatchBracketAtCaret(editor);
    };
    const struct {
        const char* text;
        long bracket, partner;  // -1: none
    } rows[] = {
        {"f(a[1]|, {})", 5, 3}, {"f(|(a), [b])", 1, 10}, {"(\"a)\")|", 5, 0},
        {"f|(a  # )", 1, -1},   {"x = \"(|\"", -1, -1},  {"|", -1, -1},
    };
    for (const auto& row : rows) {
        const auto found = match(row.text);
        EXPECT_EQ(found ? found->bracket : -1, row.bracket) << row.text;
        EXPECT_EQ(found ? found->partner.value_or(-1) : -1, row.partner) << row.text;
    }
    EXPECT_FALSE(match("(|" + QString("line\n").repeated(21'000) + ")")) << "slow at each key";
}

TEST_F(TextEditorTest, ADistantPartIsColouredInStepsAndAsItsBeginningRequires)
{
    const QString code = "x = 1\n";
    const QString quotes = "'''";
    editor.SetContent(code + quotes + "\n" + code.repeated(60'000) + quotes + "\n" + code);
    const auto styleInside = [&] {  // Of the last "1" between the quotes.
        return Send(editor, QsciScintilla::SCI_GETSTYLEAT, Length(editor) - 12);
    };
    editor.GoToLine(editor.lines());
    editor.viewport()->repaint();
    EXPECT_NE(styleInside(), QsciLexerPython::TripleSingleQuotedString) << "this takes too long";
    QCoreApplication::processEvents();
    editor.GoToLine(2);  // What the user changes meanwhile counts.
    QTest::keyClick(&editor, Qt::Key_End);
    QTest::keyClicks(&editor, quotes);
    QCoreApplication::processEvents();
    editor.GoToLine(editor.lines());
    EXPECT_TRUE(WaitUntil([&] { return styleInside() == QsciLexerPython::Number; }));
    editor.undo();
    editor.GoToLine(editor.lines());
    EXPECT_TRUE(
        WaitUntil([&] { return styleInside() == QsciLexerPython::TripleSingleQuotedString; }));
}

TEST_F(TextEditorTest, AnAssistiveProgramThatStartsLaterReadsTheText)
{
    const auto text = [&] {
        return QAccessible::queryAccessibleInterface(&editor)->textInterface();
    };
    EXPECT_EQ(text(), nullptr) << "it would count all characters at each key";
    QAccessible::setActive(true);
    ASSERT_NE(text(), nullptr);
    QTest::keyClicks(&editor, "ab");
    EXPECT_EQ(text()->text(0, 2), "ab");
    EXPECT_TRUE(WaitUntil([&] { return text()->cursorPosition() == 2; }));
    QAccessible::setActive(false);
    EXPECT_EQ(text(), nullptr);
}

TEST_F(TextEditorTest, ShortcutsOfMenusDoNotEditTheText)
{
    editor.SetContent("one\ntwo\nthree");
    editor.setCursorPosition(1, 1);
    for (const char* keys : {"Ctrl+D", "Ctrl+L", "Ctrl+T", "Ctrl+U", "Ctrl+Return"}) {
        QShortcut shortcut(QKeySequence(QString(keys)), &editor);
        QSignalSpy chosen(&shortcut, &QShortcut::activated);
        QTest::keySequence(&editor, shortcut.key());
        EXPECT_EQ(chosen.count(), 1) << keys;
        shortcut.setEnabled(false);
        QTest::keySequence(&editor, shortcut.key());
        EXPECT_EQ(editor.Content(), "one\ntwo\nthree") << keys << " without a menu";
    }
}

TEST_F(TextEditorTest, DroppedFilesAreNotInsertedAsText)
{
    QSignalSpy dropped(&editor, &TextEditor::FilesDropped);
    QMimeData data;
    data.setText("new");
    data.setUrls({QUrl::fromLocalFile("/a b/ä.py"), QUrl("https://example.org/x")});
    const auto offered = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter(QPoint(100, 5), offered, &data, Qt::LeftButton, {});
    QDropEvent drop(QPoint(100, 5), offered, &data, Qt::LeftButton, {});
    drop.setDropAction(Qt::MoveAction);
    QCoreApplication::sendEvent(editor.viewport(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QCoreApplication::sendEvent(editor.viewport(), &drop);
    EXPECT_EQ(drop.dropAction(), Qt::CopyAction) << "a file manager deletes a file that was moved";
    ASSERT_EQ(dropped.count(), 1);
    EXPECT_EQ(dropped[0][0].toStringList(), QStringList("/a b/ä.py"));
    EXPECT_EQ(editor.Content(), QString());
}
