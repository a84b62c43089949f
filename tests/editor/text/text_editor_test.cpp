#include "text_editor.h"

#include "bracket_match.h"
#include "scintilla_text.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QClipboard>
#include <QDropEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QShortcut>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
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

QString ManyLines(int count)
{
    QString text;
    for (int line = 1; line <= count; ++line) {
        text += QString("line %1\n").arg(line);
    }
    return text;
}

}  // namespace

TEST_F(TextEditorTest, EveryCharacterSurvives)
{
    auto text = QString::fromUtf8("a\0b", 3);
    text += QString::fromUtf8("\u00e9\u20ac\U0001F600\u2028\ufeff\tend\r\nlf\ncr\r");
    text += QChar(0);
    editor.SetContent(text);
    EXPECT_EQ(editor.Content(), text);
    editor.ReplaceContent(text + text);
    EXPECT_EQ(editor.Content(), text + text);
    editor.SetContent({});
    EXPECT_EQ(editor.Content(), QString());
}

TEST_F(TextEditorTest, ContentIsAsLoaded)
{
    editor.SetContent("first");
    QTest::keyClicks(&editor, "typed ");
    EXPECT_TRUE(editor.isModified());
    editor.SetContent("second\nthird");
    EXPECT_FALSE(editor.isModified());
    EXPECT_FALSE(editor.isUndoAvailable());
    editor.undo();
    EXPECT_EQ(editor.Content(), "second\nthird") << "undo led behind it";
    EXPECT_EQ(editor.CaretLine(), 1);
    EXPECT_EQ(editor.CaretColumn(), 1);
}

TEST_F(TextEditorTest, AFileThatChangedElsewhereIsTakenInOneStepWhereTheReaderIs)
{
    const QString before = ManyLines(500);
    editor.SetContent(before);
    editor.GoToLine(250);
    const int top = editor.firstVisibleLine();
    ASSERT_GT(top, 0);
    const QString after = before + QString::fromUtf8("\U0001F600 more\n");
    editor.ReplaceContent(after);
    EXPECT_EQ(editor.Content(), after);
    EXPECT_FALSE(editor.isModified());
    EXPECT_EQ(editor.CaretLine(), 250);
    EXPECT_EQ(editor.firstVisibleLine(), top);
    editor.undo();
    EXPECT_EQ(editor.Content(), before);
    EXPECT_TRUE(editor.isModified());
    editor.ReplaceContent("short");
    EXPECT_EQ(editor.CaretLine(), 1);

    editor.SetContent(QString::fromUtf8("abcd"));
    QTest::keyClick(&editor, Qt::Key_End);
    editor.ReplaceContent(QString::fromUtf8("\u20ac\u20ac"));
    QTest::keyClicks(&editor, "x");
    EXPECT_EQ(editor.Content(), QString::fromUtf8("\u20acx\u20ac"))
        << "the caret stood in a character";
}

TEST_F(TextEditorTest, ReturnIndentsAsTheLineBefore)
{
    struct Row {
        QString line;
        QString typed;
    };
    for (const auto& row : {
             Row{"if x:", "    "},
             Row{"    while True:  # for ever", "        "},
             Row{"    x = 1", "    "},
             Row{"x = 1  # as follows:", ""},
             Row{"x = \"\"\"as follows:", ""},
             Row{"x = 'é' if y else {1:", "    "},
             Row{"\tx = 1", "\t"},
             Row{"", ""},
         }) {
        for (const QString ending : {"\n", "\r\n", "\r"}) {
            editor.SetContent("pass" + ending + row.line);
            editor.GoToLine(2);
            QTest::keyClick(&editor, Qt::Key_End);
            QTest::keyClick(&editor, Qt::Key_Return);
            QTest::keyClicks(&editor, "y");
            EXPECT_EQ(editor.Content(), "pass" + ending + row.line + ending + row.typed + "y");
        }
    }
    editor.SetContent("    x");
    QTest::keyClick(&editor, Qt::Key_Return);
    EXPECT_EQ(editor.Content(), "\n    x") << "the line that moved down was indented again";
    editor.SetContent("if x:\n    y\nz");
    editor.GoToLine(3);
    QTest::keyClick(&editor, Qt::Key_End);
    QTest::keyClick(&editor, Qt::Key_Return);
    EXPECT_EQ(editor.Content(), "if x:\n    y\nz\n") << "indented by an earlier block";
}

TEST_F(TextEditorTest, TabsMoveLinesAndBackspaceAnIndent)
{
    editor.SetContent("a\nb\nc");
    editor.setSelection(0, 0, 2, 0);
    QTest::keyClick(&editor, Qt::Key_Tab);
    EXPECT_EQ(editor.Content(), "    a\n    b\nc");
    QTest::keyClick(&editor, Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(editor.Content(), "a\nb\nc");
    editor.SetContent("        x");
    editor.setCursorPosition(0, 8);
    QTest::keyClick(&editor, Qt::Key_Backspace);
    EXPECT_EQ(editor.Content(), "    x");
    QTest::keyClick(&editor, Qt::Key_Tab);
    EXPECT_EQ(editor.Content(), "        x");
}

TEST_F(TextEditorTest, CommentsComeAndGoInOneStep)
{
    struct Row {
        QString before, after;
    };
    for (const auto& row : {
             Row{"a\nb", "# a\n# b"},
             Row{"    a\n\n        b", "    # a\n\n    #     b"},
             Row{"# a\nb", "# # a\n# b"},
             Row{"# a\n\n    #b", "a\n\n    b"},
             Row{"#", ""},
             Row{"  \n\t", "  \n\t"},
             Row{"é\r\nb", "# é\r\n# b"},
         }) {
        editor.SetContent(row.before);
        editor.selectAll();
        editor.ToggleComment();
        EXPECT_EQ(editor.Content(), row.after) << row.before.toStdString();
        editor.undo();
        EXPECT_EQ(editor.Content(), row.before);
    }
}

TEST_F(TextEditorTest, TheSelectionStaysOnWhatIsCommented)
{
    editor.SetContent("a\nb\nc");
    editor.setSelection(0, 0, 1, 0);
    editor.ToggleComment();
    EXPECT_EQ(editor.Content(), "# a\nb\nc") << "nothing of the second line was selected";
    editor.ToggleComment();
    EXPECT_EQ(editor.Content(), "a\nb\nc");
    editor.setCursorPosition(1, 1);
    editor.ToggleComment();
    QTest::keyClicks(&editor, "x");
    EXPECT_EQ(editor.Content(), "a\n# bx\nc");
    editor.SetContent("b");
    editor.ToggleComment();
    QTest::keyClicks(&editor, "x");
    EXPECT_EQ(editor.Content(), "# xb") << "the caret was left before the mark";
}

TEST_F(TextEditorTest, ALineOutOfSightIsShownInTheMiddle)
{
    editor.SetContent(ManyLines(1000));
    editor.clearFocus();
    editor.GoToLine(500);
    EXPECT_EQ(editor.CaretLine(), 500);
    const long visible = Ask(editor, QsciScintilla::SCI_LINESONSCREEN);
    EXPECT_NEAR(editor.firstVisibleLine(), 499 - static_cast<double>(visible) / 2, 2);
    const int top = editor.firstVisibleLine();
    editor.GoToLine(501);
    EXPECT_EQ(editor.firstVisibleLine(), top) << "a line in sight does not move";
    editor.GoToLine(100000);
    EXPECT_EQ(editor.CaretLine(), 1001);
    editor.GoToLine(-3);
    EXPECT_EQ(editor.CaretLine(), 1);
    EXPECT_TRUE(editor.hasFocus());
}

TEST_F(TextEditorTest, ColumnsCountCharacters)
{
    editor.SetContent(QString::fromUtf8("\u00e9\U0001F600x"));
    QTest::keyClick(&editor, Qt::Key_End);
    EXPECT_EQ(editor.CaretColumn(), 4);
}

TEST_F(TextEditorTest, TheNumberMarginFitsTheNumbers)
{
    const auto fits = [&] {
        const auto last = QByteArray::number(editor.lines());
        return editor.marginWidth(0) >=
               editor.SendScintilla(QsciScintilla::SCI_TEXTWIDTH,
                                    static_cast<unsigned long>(QsciScintilla::STYLE_LINENUMBER),
                                    last.constData());
    };
    editor.SetContent(ManyLines(10));
    const int narrow = editor.marginWidth(0);
    editor.SetContent(ManyLines(100'000));
    EXPECT_GT(editor.marginWidth(0), narrow);
    EXPECT_TRUE(fits());
    editor.zoomTo(12);
    EXPECT_TRUE(fits()) << "after the zoom";
    editor.zoomTo(0);
    const QPoint middle(300, 200);
    QWheelEvent wheel(middle, editor.mapToGlobal(middle), {}, {0, 120}, Qt::NoButton,
                      Qt::ControlModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(editor.viewport(), &wheel);
    EXPECT_GT(Ask(editor, QsciScintilla::SCI_GETZOOM), 0) << "Control and the wheel";
}

TEST_F(TextEditorTest, BracketsOfCodeFindTheirPartners)
{
    struct Row {
        const char* text;       // The caret is at "|".
        long bracket, partner;  // -1: none
    };
    for (const Row& row : std::initializer_list<Row>{{"f(a[1]|, {})", 5, 3},
                                                     {"f(|(a), [b])", 1, 10},
                                                     {"|(a)", 0, 2},
                                                     {"(a)|", 2, 0},
                                                     {"(\"a)\")|", 5, 0},
                                                     {"f|(a  # )", 1, -1},
                                                     {"a]|", 1, -1},
                                                     {"x = \"(|\"", -1, -1},
                                                     {"a|b", -1, -1},
                                                     {"|", -1, -1}}) {
        QString text = row.text;
        const auto caret = text.indexOf('|');
        editor.SetContent(text.remove(caret, 1));
        Ask(editor, QsciScintilla::SCI_COLOURISE, 0, -1);
        Ask(editor, QsciScintilla::SCI_GOTOPOS, caret);
        const auto match = MatchBracketAtCaret(editor);
        EXPECT_EQ(match ? match->bracket : -1, row.bracket) << row.text;
        EXPECT_EQ(match ? match->partner.value_or(-1) : -1, row.partner) << row.text;
    }
    editor.SetContent("(a\n)");
    Ask(editor, QsciScintilla::SCI_COLOURISE, 0, 1);
    Ask(editor, QsciScintilla::SCI_GOTOPOS, 0);
    const auto match = MatchBracketAtCaret(editor);
    ASSERT_TRUE(match);
    EXPECT_EQ(match->partner, 3) << "what is not coloured yet may be code";
    editor.SetContent("(" + ManyLines(20'000) + ")");
    Ask(editor, QsciScintilla::SCI_COLOURISE, 0, -1);
    Ask(editor, QsciScintilla::SCI_GOTOPOS, 1);
    EXPECT_FALSE(MatchBracketAtCaret(editor)) << "so far away that a search would be felt";
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
    EXPECT_EQ(changes.count(), 2) << "QScintilla tells assistive programs along with it";
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
    editor.SetContent("text");
    QSignalSpy dropped(&editor, &TextEditor::FilesDropped);
    const auto drop = [&](const QMimeData& data) {
        const QPoint at(100, 5);
        QDragEnterEvent enter(at, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        enter.ignore();
        QCoreApplication::sendEvent(editor.viewport(), &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDropEvent event(at, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        event.setDropAction(Qt::MoveAction);
        event.ignore();
        QCoreApplication::sendEvent(editor.viewport(), &event);
        EXPECT_TRUE(event.isAccepted());
        return event.dropAction();
    };
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile("/a b/ä.py"), QUrl("https://example.org/x")});
    files.setText("file:///a%20b");
    EXPECT_EQ(drop(files), Qt::CopyAction) << "a file manager removes what it believes was moved";
    ASSERT_EQ(dropped.count(), 1);
    EXPECT_EQ(dropped[0][0].toStringList(), QStringList("/a b/ä.py"));
    EXPECT_EQ(editor.Content(), "text");
    QMimeData text;
    text.setText("new");
    drop(text);
    EXPECT_EQ(dropped.count(), 1);
    EXPECT_TRUE(editor.Content().contains("new"));
}

TEST_F(TextEditorTest, CodeIsReadableInLightAndDark)
{
    editor.SetContent("x = 1  # why\ndef f(): return 'a'\nplain\n");
    const auto contrast = [&](long style) {
        const auto luminance = [&](unsigned message) {
            const auto rgb = Ask(editor, message, style);
            const QColor color(rgb & 0xff, (rgb >> 8) & 0xff, (rgb >> 16) & 0xff);
            const auto linear = [](double c) {
                return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
            };
            return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
                   0.0722 * linear(color.blueF()) + 0.05;
        };
        const double a = luminance(QsciScintilla::SCI_STYLEGETFORE);
        const double b = luminance(QsciScintilla::SCI_STYLEGETBACK);
        return std::max(a, b) / std::min(a, b);
    };
    for (const auto& [text, window] :
         {std::pair(QColor(0x1f, 0x23, 0x28), QColor(Qt::white)),
          std::pair(QColor(0xe3, 0xe6, 0xea), QColor(0x1c, 0x1f, 0x23))}) {
        QPalette palette;
        for (const auto role : {QPalette::WindowText, QPalette::Text}) {
            palette.setColor(role, text);
        }
        for (const auto role : {QPalette::Window, QPalette::Base}) {
            palette.setColor(role, window);
        }
        editor.setPalette(palette);
        for (long style = QsciLexerPython::Default; style <= QsciLexerPython::Decorator; ++style) {
            EXPECT_GT(contrast(style), 4.5) << window.name().toStdString() << " style " << style;
        }
        const auto paper = editor.viewport()->grab().toImage().pixelColor(550, 350);
        EXPECT_EQ(paper, window);
    }
}
