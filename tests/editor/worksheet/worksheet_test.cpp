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

constexpr int kLinkIndicator = 8;

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
    // The texts that are drawn as links.
    QStringList Links() const
    {
        QStringList links;
        const auto ask = [&](unsigned message, long at) {
            return Ask(sheet, message, kLinkIndicator, at);
        };
        for (long at = 0; at < Length(sheet);) {
            const long end = ask(QsciScintilla::SCI_INDICATOREND, at);
            if (ask(QsciScintilla::SCI_INDICATORVALUEAT, at) != 0) {
                links.append(TextBetween(sheet, at, end));
            }
            at = end > at ? end : Length(sheet);
        }
        return links;
    }
    QPoint PointOf(long position) const
    {
        return {
            static_cast<int>(Ask(sheet, QsciScintilla::SCI_POINTXFROMPOSITION, 0, position)) + 2,
            static_cast<int>(Ask(sheet, QsciScintilla::SCI_POINTYFROMPOSITION, 0, position)) + 5};
    }

    Worksheet sheet;
};

using namespace std::string_literals;

}  // namespace

TEST_F(WorksheetTest, OutputBecomesTextHoweverItIsCut)
{
    struct Row {
        const char* what;
        std::string bytes;
        QString text;
    };
    const std::vector<Row> rows{
        {"characters", "é€😀\n", QString::fromUtf8("é€😀\n")},
        {"invalid bytes", "a\xff\xC3(b\n", QString::fromUtf8("a\ufffd\ufffd(b\n")},
        {"a NUL", "a\0b\n"s, QString::fromUtf8("a\0b\n", 4)},
        {"line ends", "a\r\nb\r\r\nc", "a\nb\nc"},
        {"progress", "top\n 1%\r 20%\r100%\r\nend", "top\n100%\nend"},
        {"a shorter line in its place", "abcdef\rxy", "xy"},
        {"nothing in its place yet", "abcdef\r", "abcdef"},
        {"colours", "\x1b[1;31mred\x1b[0m \x1b[2K\x1b[?25lend", "red end"},
        {"a sequence that is broken off", "\x1b[31\nend", "\nend"},
        {"a lone escape",
         "a\x1b"
         "b",
         "a\x1b"
         "b"},
    };
    for (const auto& row : rows) {
        sheet.MakeEmpty();
        sheet.Append(row.bytes);
        EXPECT_EQ(sheet.Content(), row.text) << row.what << " at once";
        sheet.MakeEmpty();
        for (const char byte : row.bytes) {
            sheet.Append(std::string_view(&byte, 1));
            sheet.Content();  // Adds it by itself.
        }
        EXPECT_EQ(sheet.Content(), row.text) << row.what << " byte by byte";
    }
}

TEST_F(WorksheetTest, ProgressOnALineThatTheUserHadLeaves)
{
    sheet.Append("10%");
    ASSERT_EQ(sheet.Content(), "10%");
    sheet.setCursorPosition(0, 3);
    QTest::keyClicks(&sheet, "typed");
    sheet.Append("\r20%\n");
    EXPECT_EQ(sheet.Content(), "20%\n");
    sheet.undo();
    EXPECT_EQ(sheet.Content(), "20%\n") << "undo took what is no longer there";
}

TEST_F(WorksheetTest, OutputOfOneTurnComesTogetherAndInParts)
{
    for (int i = 0; i < 1000; ++i) {
        sheet.Append("x\n");
    }
    EXPECT_EQ(Length(sheet), 0) << "not before the next turn";
    ASSERT_TRUE(WaitUntil([&] { return sheet.lines() == 1001; }));
    sheet.MakeEmpty();
    sheet.Append(std::string(1'000'000, '\n'));
    QCoreApplication::processEvents();
    EXPECT_LT(sheet.lines(), 200'000) << "a turn took everything";
    ASSERT_TRUE(WaitUntil([&] { return Length(sheet) > 90'000; }));
    EXPECT_LE(sheet.lines(), Worksheet::kMostLines);
}

TEST_F(WorksheetTest, WhatWaitsIsBounded)
{
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
    sheet.Append(Lines(Worksheet::kMostLines + 50'000));
    const QString text = sheet.Content();
    EXPECT_LE(sheet.lines(), Worksheet::kMostLines);
    EXPECT_GT(sheet.lines(), Worksheet::kMostLines / 2);
    EXPECT_TRUE(text.endsWith("line 149999\n"));
    const auto first = text.first(text.indexOf('\n')).sliced(5).toInt();
    EXPECT_EQ(first, 150'000 - sheet.lines() + 1) << "lines are missing in between";

    const std::string wide(4000, 'x');
    for (long bytes = 0; bytes < Worksheet::kMostBytes + 1'000'000; bytes += 4001) {
        sheet.Append(wide + "\n");
    }
    sheet.Append("the last\n");
    EXPECT_TRUE(sheet.Content().endsWith("x\nthe last\n"));
    EXPECT_LE(Length(sheet), Worksheet::kMostBytes);
    EXPECT_GT(Length(sheet), Worksheet::kMostBytes / 2);
}

TEST_F(WorksheetTest, TheViewFollowsOnlyTheReaderAtTheEnd)
{
    sheet.Append(Lines(1000));
    sheet.Content();
    const auto last = [&] {
        return sheet.firstVisibleLine() + Ask(sheet, QsciScintilla::SCI_LINESONSCREEN);
    };
    EXPECT_GE(last(), sheet.lines()) << "at the end";
    sheet.setFirstVisibleLine(500);
    const auto topText = [&] { return sheet.text(sheet.firstVisibleLine()); };
    sheet.Append(Lines(1000, 1000));
    sheet.Content();
    EXPECT_EQ(topText(), "line 500\n");
    sheet.setFirstVisibleLine(1900);
    sheet.Append(Lines(Worksheet::kMostLines, 2000));
    sheet.Content();
    EXPECT_EQ(topText(), "line " + QString::number(102'001 - sheet.lines()) + "\n")
        << "the line at the top has gone: the oldest one is the nearest";
    sheet.setFirstVisibleLine(50'000);
    const QString before = topText();
    sheet.Append(Lines(10'000));
    sheet.Content();
    EXPECT_EQ(topText(), before) << "lines were dropped in front";
    EXPECT_LT(sheet.firstVisibleLine(), 50'000);
    sheet.setFirstVisibleLine(sheet.lines());
    sheet.Append("more\n");
    sheet.Content();
    EXPECT_GE(last(), sheet.lines()) << "at the end again";
}

TEST_F(WorksheetTest, CaretSelectionUndoAndClipboardAreTheUsers)
{
    QGuiApplication::clipboard()->setText("mine");
    sheet.SetContent("one\ntwo");
    EXPECT_FALSE(sheet.isUndoAvailable());
    QTest::keyClick(&sheet, Qt::Key_End, Qt::ControlModifier);
    QTest::keyClicks(&sheet, "!");
    sheet.Append(" three\n");
    EXPECT_EQ(sheet.Content(), "one\ntwo! three\n");
    QTest::keyClicks(&sheet, "?");
    EXPECT_EQ(sheet.Content(), "one\ntwo!? three\n") << "the caret at the end was moved";
    for (int i = 0; i < 5 && sheet.isUndoAvailable(); ++i) {
        sheet.undo();
    }
    EXPECT_EQ(sheet.Content(), "one\ntwo three\n");
    sheet.redo();
    EXPECT_TRUE(sheet.Content().startsWith("one\ntwo!"));
    sheet.setSelection(0, 1, 1, 2);
    sheet.Append(Lines(10));
    sheet.Content();
    EXPECT_EQ(sheet.selectedText(), "ne\ntw");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "mine");
    sheet.Append(Lines(99'990));
    sheet.setSelection(50'000, 0, 50'000, 4);
    sheet.Content();
    EXPECT_EQ(sheet.selectedText(), "");  // Not there yet when it was chosen.
    sheet.setSelection(50'000, 5, 50'001, 3);
    const QString selected = sheet.selectedText();
    ASSERT_NE(selected, "");
    sheet.Append(Lines(10'000));
    sheet.Content();
    EXPECT_EQ(sheet.selectedText(), selected) << "lines were dropped in front";
}

TEST_F(WorksheetTest, OutputComesIntoAReadOnlySheet)
{
    sheet.setReadOnly(true);
    sheet.Append("text");
    EXPECT_EQ(sheet.Content(), "text");
    EXPECT_TRUE(sheet.isReadOnly());
}

TEST_F(WorksheetTest, TracebackLinesAreLinks)
{
    sheet.Append("ö  Fil");
    sheet.Content();
    sheet.Append("e \"main.py\", li");
    EXPECT_TRUE((sheet.Content(), Links().isEmpty()));
    sheet.Append("ne 12, in f\nFile \"<stdin>\", line 1\nFile \"/a b.py\", line 3\n");
    sheet.Content();
    EXPECT_EQ(Links(), QStringList({"File \"main.py\", line 12", "File \"/a b.py\", line 3"}));
    QSignalSpy chosen(&sheet, &Worksheet::LinkChosen);
    const QPoint link = PointOf(LineStart(sheet, 0) + 12);
    QTest::mouseMove(sheet.viewport(), {500, 250});  // Only a change of place is a move.
    QTest::mouseMove(sheet.viewport(), link);
    EXPECT_TRUE(
        WaitUntil([&] { return sheet.viewport()->cursor().shape() == Qt::PointingHandCursor; }));
    QTest::mouseClick(sheet.viewport(), Qt::LeftButton, {}, link);
    ASSERT_EQ(chosen.count(), 1);
    EXPECT_EQ(chosen[0][0], "main.py");
    EXPECT_EQ(chosen[0][1], 12);
    QTest::mouseClick(sheet.viewport(), Qt::LeftButton, {}, PointOf(LineStart(sheet, 1) + 8));
    EXPECT_EQ(chosen.count(), 1) << "that is no file";
    QTest::mousePress(sheet.viewport(), Qt::LeftButton, {}, link);
    QTest::mouseMove(sheet.viewport(), PointOf(LineStart(sheet, 0) + 20));
    QTest::mouseRelease(sheet.viewport(), Qt::LeftButton, {}, PointOf(LineStart(sheet, 0) + 20));
    EXPECT_EQ(chosen.count(), 1) << "a selection with the mouse is no choice";
    sheet.setCursorPosition(1, 0);
    QTest::keyClicks(&sheet, "File \"typed.py\", line 4 ");
    EXPECT_TRUE(WaitUntil([&] { return Links().size() == 3; }));
    QTest::keyClick(&sheet, Qt::Key_Backspace);
    QTest::keyClick(&sheet, Qt::Key_Backspace);
    EXPECT_TRUE(WaitUntil([&] { return Links().size() == 2; }))
        << "what is no link any more is still drawn as one";
    sheet.SetContent("first\nFile \"m<\nmore than that line\n>.py\", line 3");
    sheet.setSelection(1, 7, 3, 1);
    QTest::keyClick(&sheet, Qt::Key_Delete);
    EXPECT_TRUE(WaitUntil([&] { return Links().size() == 1; })) << sheet.Content().toStdString();
}

TEST_F(WorksheetTest, EveryChangeOfATurnReachesItsLink)
{
    const QString text = "File \"a.py\", line 1\nbetween\nFile \"b.py\", line 2";
    const long last = text.lastIndexOf('F');
    for (const auto& places : {std::pair(last, 0L), std::pair(0L, last - 1)}) {
        sheet.SetContent(text);
        for (const long place : {places.first, places.second}) {
            ReplaceBetween(sheet, place, place + 1, {});
        }
        EXPECT_TRUE(WaitUntil([&] { return Links().isEmpty(); })) << places.first;
    }
}

TEST_F(WorksheetTest, LinksAreWalkedThroughBothWays)
{
    EXPECT_FALSE(sheet.GoToNextLink());
    EXPECT_FALSE(sheet.GoToPreviousLink());
    std::string text = "File \"1.py\", line 1\n";
    text += Lines(100) + "File \"2.py\", line 2\nFile \"3.py\", line 3";
    sheet.Append(text);
    QStringList walked;
    QObject::connect(&sheet, &Worksheet::LinkChosen,
                     [&](const QString& path) { walked.append(path.first(1)); });
    EXPECT_TRUE(sheet.GoToPreviousLink());
    EXPECT_TRUE(sheet.GoToPreviousLink());
    EXPECT_TRUE(sheet.GoToPreviousLink());
    EXPECT_EQ(sheet.selectedText(), "File \"1.py\", line 1");
    EXPECT_EQ(sheet.firstVisibleLine(), 0) << "shown";
    sheet.GoToPreviousLink();
    sheet.GoToNextLink();
    sheet.GoToNextLink();
    sheet.setCursorPosition(50, 0);
    sheet.Append("\nmore\n");
    sheet.GoToNextLink();
    EXPECT_EQ(walked.join(""), "3213123");
    const std::string traceback = "Traceback (most recent call last):\n";
    sheet.Append(traceback + "File \"4.py\", line 4\n" + traceback);
    sheet.Append("File \"5.py\", line 5\nFile \"6.py\", line 6\nValueError\n");
    walked.clear();
    for (int i = 0; i < 3; ++i) {
        sheet.GoToNextLink();
    }
    EXPECT_EQ(walked.join(""), "561") << "the newest traceback comes first";
    sheet.Append("File \"8.py\", line 8\n" + traceback + "File \"<stdin>\", line 1\n");
    sheet.GoToNextLink();
    EXPECT_EQ(walked.last(), "8") << "that traceback leads nowhere";
    sheet.Append("File \"7.py\", line 7\n");
    sheet.GoToPreviousLink();
    EXPECT_EQ(walked.last(), "7");
    EXPECT_EQ(Ask(sheet, QsciScintilla::SCI_GETCURRENTPOS), LineStart(sheet, sheet.lines() - 2))
        << "the start of a long line is in sight";
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

TEST_F(WorksheetTest, ControlReturnAsksForARun)
{
    QShortcut other(QKeySequence(Qt::CTRL | Qt::Key_Return), &sheet);
    QSignalSpy asked(&sheet, &Worksheet::RunRequested);
    sheet.SetContent("ls -l\n  \npwd");
    const auto press = [&] { QTest::keyClick(&sheet, Qt::Key_Return, Qt::ControlModifier); };
    const auto last = [&] { return asked.isEmpty() ? QString() : asked.takeFirst()[0].toString(); };
    sheet.setCursorPosition(0, 2);
    press();
    EXPECT_EQ(last(), "ls -l");
    sheet.setCursorPosition(1, 1);
    press();
    EXPECT_TRUE(asked.isEmpty()) << "a blank line";
    sheet.setCursorPosition(2, 3);
    press();
    EXPECT_EQ(last(), "pwd");
    sheet.setSelection(0, 3, 2, 1);
    press();
    EXPECT_EQ(last(), "-l\n  \np");
    EXPECT_EQ(sheet.Content(), "ls -l\n  \npwd");
}

TEST_F(WorksheetTest, ALineWithoutEndIsBroken)
{
    sheet.Append(std::string(100'000, 'x'));
    sheet.Append("\rlast");
    const QString text = sheet.Content();
    EXPECT_TRUE(text.endsWith("\nlast"));
    EXPECT_GE(text.size(), 90'000);
    for (int line = 0; line < sheet.lines(); ++line) {
        EXPECT_LE(sheet.text(line).size(), OutputText::kLongestLine + 1);
    }
}
