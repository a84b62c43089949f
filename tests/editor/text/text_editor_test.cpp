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
#include <QWheelEvent>

#include <algorithm>
#include <cstdlib>
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
    EXPECT_EQ(editor.CaretLine(), 1);
    EXPECT_EQ(editor.CaretColumn(), 1);
}

TEST_F(TextEditorTest, AFileThatChangedElsewhereIsLoadedInOneStepWhereTheReaderIs)
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
    editor.ReplaceContent("short");
    EXPECT_EQ(editor.CaretLine(), 1);

    editor.SetContent("abcd");
    QTest::keyClick(&editor, Qt::Key_End);
    editor.ReplaceContent("€€");
    QTest::keyClicks(&editor, "x");
    EXPECT_EQ(editor.Content(), "€x€") << "the caret stood in a character";
}

TEST_F(TextEditorTest, KeysIndentAndComment)
{
    using Act = void (*)(TextEditor&);
    const Act kReturn = [](TextEditor& e) { QTest::keyClick(&e, Qt::Key_Return); };
    const Act kTab = [](TextEditor& e) { QTest::keyClick(&e, Qt::Key_Tab); };
    const Act kBacktab = [](TextEditor& e) {
        QTest::keyClick(&e, Qt::Key_Backtab, Qt::ShiftModifier);
    };
    const Act kBackspace = [](TextEditor& e) { QTest::keyClick(&e, Qt::Key_Backspace); };
    const Act kComment = [](TextEditor& e) { e.ToggleComment(); };
    const struct {
        const char* name;
        Act act;
        const char *before, *after;  // The selection is between "<" and ">", the caret at "|".
    } rows[] = {
        {"a block", kReturn, "pass\nif x:|", "pass\nif x:\n    |"},
        {"a block with CR LF", kReturn, "pass\r\nif x:|", "pass\r\nif x:\r\n    |"},
        {"a block with CR", kReturn, "pass\rif x:|", "pass\rif x:\r    |"},
        {"a comment after it", kReturn, "    while 1:  # ever|", "    while 1:  # ever\n        |"},
        {"a statement in a block", kReturn, "    x = 1|", "    x = 1\n    |"},
        {"a tab", kReturn, "\tx = 1|", "\tx = 1\n\t|"},
        {"a colon in a comment", kReturn, "x = 1  # as:|", "x = 1  # as:\n|"},
        {"a colon in a string", kReturn, "x = \"\"\"as:|", "x = \"\"\"as:\n|"},
        {"a colon in braces", kReturn, "x = 'é' if y else {1:|", "x = 'é' if y else {1:\n    |"},
        {"an empty line", kReturn, "|", "\n|"},
        {"a line that moves down", kReturn, "|    x", "\n|    x"},
        {"after a block", kReturn, "if x:\n    y\nz|", "if x:\n    y\nz\n|"},
        {"lines", kTab, "<a\nb\n>c", "    a\n    b\nc"},
        {"lines back", kBacktab, "<    a\n    b\n>c", "a\nb\nc"},
        {"an indent", kTab, "    |x", "        |x"},
        {"an indent back", kBackspace, "        |x", "    |x"},
        {"a comment", kComment, "<a\nb>", "# a\n# b"},
        {"the smallest indent", kComment, "<    a\n\n        b>", "    # a\n\n    #     b"},
        {"one of two", kComment, "<# a\nb>", "# # a\n# b"},
        {"the other of two", kComment, "<a\n# b>", "# a\n# # b"},
        {"no comment", kComment, "<# a\n\n    #b>", "a\n\n    b"},
        {"an empty comment", kComment, "<#>", ""},
        {"spaces", kComment, "<  \n\t>", "  \n\t"},
        {"CR LF", kComment, "<é\r\nb>", "# é\r\n# b"},
        {"nothing of the second line", kComment, "<a\n>b\nc", "# a\nb\nc"},
        {"at the line's end", kComment, "a\nb|\nc", "a\n# b|\nc"},
        {"before the mark", kComment, "|b", "# |b"},
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
        if (row.act == kComment && caret < 0) {
            editor.undo();
            EXPECT_EQ(editor.Content(), text) << "in one step";
        }
    }
}

TEST_F(TextEditorTest, ALineOutOfSightIsShownInTheMiddle)
{
    editor.SetContent(QString("line\n").repeated(1000));
    editor.clearFocus();
    editor.GoToLine(500);
    EXPECT_EQ(editor.CaretLine(), 500);
    const auto visible = static_cast<double>(Send(editor, QsciScintilla::SCI_LINESONSCREEN));
    EXPECT_NEAR(editor.firstVisibleLine(), 499 - visible / 2, 2);
    const int top = editor.firstVisibleLine();
    editor.GoToLine(501);
    EXPECT_EQ(editor.firstVisibleLine(), top) << "a line in sight does not move";
    editor.GoToLine(100000);
    EXPECT_EQ(editor.CaretLine(), 1001);
    editor.GoToLine(-3);
    EXPECT_EQ(editor.CaretLine(), 1);
    EXPECT_TRUE(editor.hasFocus());
    editor.SetContent("é😀x");
    QTest::keyClick(&editor, Qt::Key_End);
    EXPECT_EQ(editor.CaretColumn(), 4) << "columns count characters";
}

TEST_F(TextEditorTest, TheNumberMarginFitsTheNumbers)
{
    const auto fits = [&](const char* number) {
        return editor.marginWidth(0) >=
               editor.SendScintilla(QsciScintilla::SCI_TEXTWIDTH,
                                    static_cast<unsigned long>(QsciScintilla::STYLE_LINENUMBER),
                                    number);
    };
    editor.SetContent(QString("\n").repeated(10));
    EXPECT_TRUE(fits("10") && !fits("100000"));
    editor.SetContent(QString("\n").repeated(100'000));
    EXPECT_TRUE(fits("100000"));
    const QPoint middle(300, 200);
    QWheelEvent wheel(middle, editor.mapToGlobal(middle), {}, {0, 1200}, Qt::NoButton,
                      Qt::ControlModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(editor.viewport(), &wheel);
    EXPECT_GT(Send(editor, QsciScintilla::SCI_GETZOOM), 0) << "Control and the wheel";
    EXPECT_TRUE(fits("100000")) << "after the zoom";
}

TEST_F(TextEditorTest, BracketsOfCodeFindTheirPartners)
{
    const auto match = [&](QString text, long styledTo) {  // The caret is at "|".
        const auto caret = text.indexOf('|');
        editor.SetContent(text.remove(caret, 1));
        Send(editor, QsciScintilla::SCI_COLOURISE, 0, styledTo);
        Send(editor, QsciScintilla::SCI_GOTOPOS, caret);
        return MatchBracketAtCaret(editor);
    };
    const struct {
        const char* text;
        long bracket, partner;  // -1: none
    } rows[] = {
        {"f(a[1]|, {})", 5, 3}, {"f(|(a), [b])", 1, 10}, {"|(a)", 0, 2}, {"(a)|", 2, 0},
        {"(\"a)\")|", 5, 0},    {"f|(a  # )", 1, -1},    {"a]|", 1, -1}, {"x = \"(|\"", -1, -1},
        {"a|b", -1, -1},        {"|", -1, -1},
    };
    for (const auto& row : rows) {
        const auto found = match(row.text, -1);
        EXPECT_EQ(found ? found->bracket : -1, row.bracket) << row.text;
        EXPECT_EQ(found ? found->partner.value_or(-1) : -1, row.partner) << row.text;
    }
    const auto unstyled = match("|(a\n)", 1);
    EXPECT_TRUE(unstyled && unstyled->partner == 3) << "what is not yet styled may be code";
    EXPECT_FALSE(match("(|" + QString("line\n").repeated(21'000) + ")", -1))
        << "too far for each key";
}

TEST_F(TextEditorTest, AnAssistiveProgramThatComesLaterReadsTheText)
{
    const auto text = [&] {
        return QAccessible::queryAccessibleInterface(&editor)->textInterface();
    };
    EXPECT_EQ(text(), nullptr) << "it counts all characters at each key";
    QSignalSpy changes(&editor, &QsciScintilla::textChanged);
    QAccessible::setActive(true);
    ASSERT_NE(text(), nullptr);
    QTest::keyClicks(&editor, "ab");
    EXPECT_EQ(text()->text(0, 2), "ab");
    EXPECT_TRUE(WaitUntil([&] { return text()->cursorPosition() == 2; }));
    EXPECT_EQ(changes.count(), 2) << "QScintilla notifies assistive programs along with it";
    TextEditor later;
    EXPECT_NE(QAccessible::queryAccessibleInterface(&later)->textInterface(), nullptr);
    QAccessible::setActive(false);
    EXPECT_EQ(text(), nullptr);
}

TEST_F(TextEditorTest, ChordsOfTheMenusReachThem)
{
    editor.SetContent("one\ntwo\nthree");
    editor.setCursorPosition(1, 1);
    for (const char* chord : {"Ctrl+D", "Ctrl+L", "Ctrl+Shift+L", "Ctrl+T", "Ctrl+Shift+T",
                              "Ctrl+U", "Ctrl+/", "Ctrl+Return", "Ctrl+S", "Ctrl+=", "Ctrl+-"}) {
        QShortcut shortcut(QKeySequence(QString(chord)), &editor);
        QSignalSpy chosen(&shortcut, &QShortcut::activated);
        QTest::keySequence(&editor, shortcut.key());
        EXPECT_EQ(chosen.count(), 1) << chord;
        shortcut.setEnabled(false);
        QTest::keySequence(&editor, shortcut.key());
        EXPECT_EQ(editor.Content(), "one\ntwo\nthree") << chord << " without a menu";
    }
}

TEST_F(TextEditorTest, FilesThatAreDroppedAreNotText)
{
    QSignalSpy dropped(&editor, &TextEditor::FilesDropped);
    const auto drop = [&](const QMimeData& data) {
        const auto offered = Qt::CopyAction | Qt::MoveAction;
        QDragEnterEvent enter(QPoint(100, 5), offered, &data, Qt::LeftButton, {});
        QDropEvent event(QPoint(100, 5), offered, &data, Qt::LeftButton, {});
        event.setDropAction(Qt::MoveAction);
        for (QDropEvent* one : {static_cast<QDropEvent*>(&enter), &event}) {
            one->ignore();
            QCoreApplication::sendEvent(editor.viewport(), one);
            EXPECT_TRUE(one->isAccepted());
        }
        return event.dropAction();
    };
    QMimeData data;
    data.setText("new");
    drop(data);
    EXPECT_EQ(dropped.count(), 0);
    EXPECT_EQ(editor.Content(), "new");
    data.setUrls({QUrl::fromLocalFile("/a b/ä.py"), QUrl("https://example.org/x")});
    EXPECT_EQ(drop(data), Qt::CopyAction) << "a file manager removes what it believes was moved";
    ASSERT_EQ(dropped.count(), 1);
    EXPECT_EQ(dropped[0][0].toStringList(), QStringList("/a b/ä.py"));
    EXPECT_EQ(editor.Content(), "new");
}

TEST_F(TextEditorTest, CodeIsReadableInLightAndDark)
{
    const auto grey = [&](unsigned message, long style) {
        const auto color = Send(editor, message, style);
        return qGray(color & 0xff, (color >> 8) & 0xff, (color >> 16) & 0xff);
    };
    const struct {
        QColor text, paper;
        int distance;  // Of grey levels; about a contrast of 4.5.
    } rows[] = {{QColor(0x1f, 0x23, 0x28), QColor(Qt::white), 135},
                {QColor(0xe3, 0xe6, 0xea), QColor(0x1c, 0x1f, 0x23), 100}};
    for (const auto& [text, paper, distance] : rows) {
        editor.setPalette(QPalette(text, paper, paper, paper, paper, text, text, paper, paper));
        for (long style = QsciLexerPython::Default; style <= QsciLexerPython::Decorator; ++style) {
            EXPECT_GT(std::abs(grey(QsciScintilla::SCI_STYLEGETFORE, style) -
                               grey(QsciScintilla::SCI_STYLEGETBACK, style)),
                      distance)
                << paper.name().toStdString() << " style " << style;
        }
        EXPECT_EQ(editor.viewport()->grab().toImage().pixelColor(550, 350), paper);
    }
}
