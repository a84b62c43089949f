#include "worksheet.h"

#include "scintilla_text.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QShortcut>
#include <QSignalSpy>
#include <QTest>

namespace {

using namespace std::string_literals;

class WorksheetTest : public testing::Test {
  protected:
    WorksheetTest()
    {
        sheet.resize(600, 300);
        sheet.show();
        sheet.activateWindow();
        sheet.setFocus();
        EXPECT_TRUE(WaitUntil([&] { return sheet.hasFocus(); }));
    }

    static std::string Lines(int count, int from = 0)
    {
        std::string text;
        for (int i = from; i < from + count; ++i) {
            text += "line " + std::to_string(i) + "\n";
        }
        return text;
    }
    void Append(const std::string& bytes)
    {
        sheet.Append(bytes);
        sheet.Content();  // Adds it by itself.
    }
    // The texts that are drawn as links.
    QStringList Links() const
    {
        constexpr int kLinkIndicator = 8;
        QStringList links;
        for (long at = 0, end = 0; at < Length(sheet); at = std::max(end, at + 1)) {
            end = Send(sheet, QsciScintilla::SCI_INDICATOREND, kLinkIndicator, at);
            if (Send(sheet, QsciScintilla::SCI_INDICATORVALUEAT, kLinkIndicator, at) != 0) {
                links.append(TextBetween(sheet, at, end));
            }
        }
        return links;
    }
    QPoint PointOf(int line, int column) const
    {
        const auto ask = [&](unsigned message) {
            return static_cast<int>(Send(sheet, message, 0, LineStart(sheet, line) + column));
        };
        return {ask(QsciScintilla::SCI_POINTXFROMPOSITION) + 2,
                ask(QsciScintilla::SCI_POINTYFROMPOSITION) + 5};
    }

    Worksheet sheet;
};

}  // namespace

TEST_F(WorksheetTest, OutputBecomesTextHoweverItIsSplit)
{
    const struct {
        const char* name;
        std::string bytes;
        QString text;
    } rows[] = {
        {"characters", "é€😀\n", "é€😀\n"},
        {"invalid bytes", "a\xff\xC3(b\n", "a\ufffd\ufffd(b\n"},
        {"a NUL", "a\0b\n"s, QString::fromUtf8("a\0b\n", 4)},
        {"line ends", "a\r\nb\r\r\nc", "a\nb\nc"},
        {"progress", "top\n 1%\r 20%\r100%\r\nend", "top\n100%\nend"},
        {"a shorter line in its place", "abcdef\rxy", "xy"},
        {"nothing in its place yet", "abcdef\r", "abcdef"},
        {"colours", "\x1b[1;31mred\x1b[0m \x1b[2K\x1b[?25lend", "red end"},
        {"a sequence that is broken off", "\x1b[31\nend", "\nend"},
        {"a lone escape", "a\x1b?", "a\x1b?"},
    };
    for (const auto& row : rows) {
        sheet.Clear();
        sheet.Append(row.bytes);
        EXPECT_EQ(sheet.Content(), row.text) << row.name << " at once";
        sheet.Clear();
        for (const char byte : row.bytes) {
            Append({byte});
        }
        EXPECT_EQ(sheet.Content(), row.text) << row.name << " byte by byte";
    }
}

TEST_F(WorksheetTest, ProgressOnALineThatTheUserEditedReplacesIt)
{
    Append("10%");
    sheet.setCursorPosition(0, 3);
    QTest::keyClicks(&sheet, "typed");
    sheet.setReadOnly(true);
    sheet.Append("\r20%\n");
    EXPECT_EQ(sheet.Content(), "20%\n");
    EXPECT_TRUE(sheet.isReadOnly());
    sheet.setReadOnly(false);
    sheet.undo();
    EXPECT_EQ(sheet.Content(), "20%\n") << "undo took what is no longer there";
}

TEST_F(WorksheetTest, OutputOfOneTurnComesTogetherInPartsAndWithABound)
{
    sheet.Append("x\n");
    sheet.Append("y\n");
    EXPECT_EQ(Length(sheet), 0) << "not before the next turn";
    ASSERT_TRUE(WaitUntil([&] { return sheet.lines() == 3; }));
    sheet.Clear();
    sheet.Append(std::string(1'000'000, '\n'));
    QCoreApplication::processEvents();
    EXPECT_LT(sheet.lines(), 200'000) << "a turn took everything";
    ASSERT_TRUE(WaitUntil([&] { return Length(sheet) > 90'000; }));
    EXPECT_LE(sheet.lines(), Worksheet::kMaxLines);
    sheet.Clear();
    const std::string megabyte = Lines(80'000);
    for (int i = 0; i < 30; ++i) {
        sheet.Append(megabyte);
    }
    EXPECT_GT(Length(sheet), 0) << "everything waits";
    sheet.Append("the end");
    EXPECT_TRUE(sheet.Content().endsWith("line 79999\nthe end"));
}

TEST_F(WorksheetTest, TheOldestLinesGo)
{
    Append(Lines(Worksheet::kMaxLines + 50'000));
    EXPECT_LE(sheet.lines(), Worksheet::kMaxLines);
    EXPECT_GT(sheet.lines(), Worksheet::kMaxLines / 2);
    EXPECT_TRUE(sheet.Content().endsWith("line 149999\n"));
    EXPECT_EQ(sheet.text(0), "line " + QString::number(150'001 - sheet.lines()) + "\n")
        << "lines are missing in between";

    for (int i = 0; i < Worksheet::kMaxBytes / 4000 + 250; ++i) {
        sheet.Append(std::string(4000, 'x') + "\n");
    }
    sheet.Append("the last\n");
    EXPECT_TRUE(sheet.Content().endsWith("x\nthe last\n"));
    EXPECT_LE(Length(sheet), Worksheet::kMaxBytes);
    EXPECT_GT(Length(sheet), Worksheet::kMaxBytes / 2);
}

TEST_F(WorksheetTest, ALineWithoutEndIsBroken)
{
    sheet.Append(std::string(100'000, 'x'));
    Append("\rlast");
    EXPECT_TRUE(sheet.Content().endsWith("\nlast"));
    EXPECT_GE(Length(sheet), 90'000);
    for (int line = 0; line < sheet.lines(); ++line) {
        EXPECT_LE(sheet.text(line).size(), OutputText::kMaxLineLength + 1);
    }
}

TEST_F(WorksheetTest, TheViewFollowsOnlyTheReaderAtTheEnd)
{
    const auto topText = [&] { return sheet.text(sheet.firstVisibleLine()); };
    const auto isAtEnd = [&] {
        return sheet.firstVisibleLine() + Send(sheet, QsciScintilla::SCI_LINESONSCREEN) >=
               sheet.lines();
    };
    Append(Lines(1000));
    EXPECT_TRUE(isAtEnd());
    sheet.setFirstVisibleLine(500);
    Append(Lines(1000, 1000));
    EXPECT_EQ(topText(), "line 500\n");
    sheet.setFirstVisibleLine(1900);
    Append(Lines(Worksheet::kMaxLines, 2000));
    EXPECT_EQ(topText(), "line " + QString::number(102'001 - sheet.lines()) + "\n")
        << "the line at the top has gone: the oldest one is the nearest";
    sheet.setFirstVisibleLine(50'000);
    const QString before = topText();
    Append(Lines(10'000));
    EXPECT_EQ(topText(), before) << "lines were dropped in front";
    EXPECT_LT(sheet.firstVisibleLine(), 50'000);
    sheet.setFirstVisibleLine(sheet.lines());
    Append("more\n");
    EXPECT_TRUE(isAtEnd()) << "at the end again";
}

TEST_F(WorksheetTest, CaretSelectionUndoAndClipboardAreTheUsers)
{
    QGuiApplication::clipboard()->setText("mine");
    sheet.SetContent("one\ntwo");
    EXPECT_FALSE(sheet.isUndoAvailable());
    QTest::keyClick(&sheet, Qt::Key_End, Qt::ControlModifier);
    QTest::keyClicks(&sheet, "!");
    Append(" three\n");
    QTest::keyClicks(&sheet, "?");
    EXPECT_EQ(sheet.Content(), "one\ntwo!? three\n") << "the caret at the end was moved";
    while (sheet.isUndoAvailable()) {
        sheet.undo();
    }
    EXPECT_EQ(sheet.Content(), "one\ntwo three\n");
    sheet.redo();
    EXPECT_TRUE(sheet.Content().startsWith("one\ntwo!"));
    sheet.setSelection(0, 1, 1, 2);
    Append(Lines(99'990));
    EXPECT_EQ(sheet.selectedText(), "ne\ntw");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "mine");
    sheet.setSelection(50'000, 5, 50'001, 3);
    const QString selected = sheet.selectedText();
    ASSERT_NE(selected, "");
    Append(Lines(10'000));
    EXPECT_EQ(sheet.selectedText(), selected) << "lines were dropped in front";
}

TEST_F(WorksheetTest, TracebackLinesAreLinks)
{
    Append("ö  Fil");
    Append("e \"main.py\", li");
    EXPECT_TRUE(Links().isEmpty());
    Append("ne 12, in f\nFile \"<stdin>\", line 1\nFile \"/a b.py\", line 3\n");
    EXPECT_EQ(Links(), QStringList({"File \"main.py\", line 12", "File \"/a b.py\", line 3"}));
    QSignalSpy chosen(&sheet, &Worksheet::LinkChosen);
    const QPoint link = PointOf(0, 12);
    QTest::mouseMove(sheet.viewport(), {500, 250});  // Only a change of place is a move.
    QTest::mouseMove(sheet.viewport(), link);
    EXPECT_TRUE(
        WaitUntil([&] { return sheet.viewport()->cursor().shape() == Qt::PointingHandCursor; }));
    QTest::mouseClick(sheet.viewport(), Qt::LeftButton, {}, link);
    ASSERT_EQ(chosen.count(), 1);
    EXPECT_EQ(chosen[0], (QVariantList{"main.py", 12}));
    QTest::mouseClick(sheet.viewport(), Qt::LeftButton, {}, PointOf(1, 8));
    EXPECT_EQ(chosen.count(), 1) << "that is no file";
    QTest::mousePress(sheet.viewport(), Qt::LeftButton, {}, link);
    QTest::mouseMove(sheet.viewport(), PointOf(0, 20));
    QTest::mouseRelease(sheet.viewport(), Qt::LeftButton, {}, PointOf(0, 20));
    EXPECT_EQ(chosen.count(), 1) << "a selection with the mouse is no choice";
}

TEST_F(WorksheetTest, LinksFollowEveryChangeOfTheText)
{
    const auto hasLinks = [&](int count) {
        return WaitUntil([&] { return Links().size() == count; });
    };
    QTest::keyClicks(&sheet, "File \"typed.py\", line 4");
    EXPECT_TRUE(hasLinks(1));
    QTest::keyClick(&sheet, Qt::Key_Backspace);
    EXPECT_TRUE(hasLinks(0)) << "what is no link any more is still drawn as one";
    const QString text = "File \"a.py\", line 1\nbetween\nFile \"b.py\", line 2";
    const long last = text.lastIndexOf('F');
    for (const auto& [first, second] : {std::pair(last, 0L), std::pair(0L, last - 1)}) {
        sheet.SetContent(text);
        EXPECT_EQ(Links().size(), 2);
        ReplaceBetween(sheet, first, first + 1, {});  // Both in one turn.
        ReplaceBetween(sheet, second, second + 1, {});
        EXPECT_TRUE(hasLinks(0)) << first;
    }
    sheet.SetContent("first\nFile \"m<\nmore than that line\n>.py\", line 3");
    sheet.setSelection(1, 7, 3, 1);
    QTest::keyClick(&sheet, Qt::Key_Delete);
    EXPECT_TRUE(hasLinks(1)) << sheet.Content().toStdString();
}

TEST_F(WorksheetTest, LinksAreWalkedThroughBothWays)
{
    EXPECT_FALSE(sheet.GoToNextLink());
    EXPECT_FALSE(sheet.GoToPreviousLink());
    const auto link = [](char number) {
        return "File \""s + number + ".py\", line " + number + "\n";
    };
    QString walked;
    QObject::connect(&sheet, &Worksheet::LinkChosen,
                     [&](const QString& path) { walked += path.first(1); });
    const std::string traceback = "Traceback (most recent call last):\n";
    const struct {
        const char* name;
        std::string appended;
        const char *moves, *walked;  // To the next (n) and the previous link (p).
    } steps[] = {
        {"the last is the first", link('1') + Lines(100) + link('2') + link('3'), "ppp", "321"},
        {"round and back", "", "pnn", "312"},
        {"after more output", "more\n", "n", "3"},
        {"the newest traceback first",
         traceback + link('4') + traceback + link('5') + link('6') + "ValueError\n", "nnn", "561"},
        {"a traceback without links", link('8') + traceback + "File \"<stdin>\", line 1\n", "n",
         "8"},
        {"the newest line", link('7'), "p", "7"},
    };
    for (const auto& step : steps) {
        sheet.Append(step.appended);
        walked.clear();
        for (const char move : std::string(step.moves)) {
            EXPECT_TRUE(move == 'n' ? sheet.GoToNextLink() : sheet.GoToPreviousLink());
            sheet.setCursorPosition(50, 0);
        }
        EXPECT_EQ(walked, step.walked) << step.name;
    }
    sheet.GoToNextLink();
    EXPECT_EQ(sheet.selectedText() + "\n", QString::fromStdString(link('1')));
    EXPECT_EQ(sheet.firstVisibleLine(), 0) << "shown";
    EXPECT_EQ(Send(sheet, QsciScintilla::SCI_GETCURRENTPOS), 0) << "a long line's start is shown";
}

TEST_F(WorksheetTest, ASavedTextComesBackAsItWas)
{
    const QString text = QString(100'000, u'x') + "\r\n\x1b[31m\tred\nFile \"a.py\", line 1";
    sheet.SetContent(text);
    EXPECT_EQ(sheet.Content(), text);
    EXPECT_EQ(Links().size(), 1);
    sheet.Append(" and more");
    EXPECT_EQ(sheet.Content(), text + " and more");
}

TEST_F(WorksheetTest, ControlReturnAsksForARunOfTheLineOrTheSelection)
{
    QShortcut other(QKeySequence(Qt::CTRL | Qt::Key_Return), &sheet);
    QStringList asked;
    QObject::connect(&sheet, &Worksheet::RunRequested,
                     [&](const QString& line) { asked.append(line); });
    const QString text = "ls -l\n  \npwd";
    sheet.SetContent(text);
    const int selections[][4] = {{0, 2, 0, 2}, {1, 1, 1, 1}, {2, 3, 2, 3}, {0, 3, 2, 1}};
    for (const auto& [line, column, endLine, endColumn] : selections) {
        sheet.setSelection(line, column, endLine, endColumn);
        QTest::keyClick(&sheet, Qt::Key_Return, Qt::ControlModifier);
    }
    EXPECT_EQ(asked, (QStringList{"ls -l", "pwd", "-l\n  \np"})) << "and no line of spaces";
    EXPECT_EQ(sheet.Content(), text);
}
