#include "worksheet.h"

#include "appearance.h"
#include "editor_style.h"
#include "output_colors.h"
#include "scintilla_text.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <functional>

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
        sheet.Content();  // Appends the pending output.
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
        {"characters", "é€😀 a\xff\xC3(b\0\n"s, QString::fromUtf8("é€😀 a\ufffd\ufffd(b\0\n"s)},
        {"line ends", "a\r\nb\r\r\nc", "a\nb\nc"},
        {"progress", "top\n 1%\r 20%\r100%\r\nend", "top\n100%\nend"},
        {"colours", "\x1b[1;31mred\x1b[0m \x1b[2K\x1b[?25lend", "red end"},
        {"titles", "\x1b]0;a title\x07one \x1b]8;;x\x1b\\two\x1b]2;\nend", "one two\nend"},
        {"a character set, strings", "\x1b(Ba\x1bP1$r\x1b\\b\x1b]x\x1b[31mc", "abc"},
        {"a colour after a line end", "100%\r\x1b[0m\r\n", "100%\n"},
        {"an incomplete sequence", "\x1b[31\nend \x1b?", "\nend \x1b?"},
    };
    for (const auto& row : rows) {
        sheet.ClearAll();
        sheet.Append(row.bytes);
        EXPECT_EQ(sheet.Content(), row.text) << row.name << " at once";
        sheet.ClearAll();
        for (const char byte : row.bytes) {
            Append({byte});
        }
        EXPECT_EQ(sheet.Content(), row.text) << row.name << " byte by byte";
    }
}

TEST_F(WorksheetTest, OutputHasTheColoursOfItsSequencesHoweverItIsSplit)
{
    using Style = std::pair<QColor, bool>;
    const QColor plain = sheet.palette().color(QPalette::Text);
    const auto& colors = ColorsFor(sheet.palette());
    const auto& output = OutputColors(sheet.palette().color(QPalette::Base));
    const struct {
        std::string bytes;
        std::string text;  // Of the part in this style.
        Style style;
    } rows[] = {
        {"a\x1b[31mred\x1b[mb", "red", {output[1], false}},
        {"\x1b[1;94mé\x1b[22m-\x1b[0m", "é", {output[12], true}},
        {"\x1b[1mbold\x1b[22m-", "bold", {plain, true}},
        {"\x1b[38;5;2mg\x1b[48;5;1;32mg\x1b[38;2;1;2;3;36mc", "gg", {output[2], false}},
        {"10%\r\x1b[33m20%\x1b[39m!", "20%", {output[3], false}},
        {"\x1b[31m\x1b[38;5;200mplain\x1b[-1;3;99999999999m!", "plain!", {plain, false}},
        {"x\nTraceback (most recent call last):\n  File \"a.py\", line 1, in f\nOSError: 2\nend",
         "Traceback (most recent call last):  File \"a.py\", line 1, in fOSError: 2",
         {colors.error, false}},
        {"Traceback (most recent call last):\n  File\nno exception",
         "no exception",
         {plain, false}},
    };
    const auto styleAt = [&](long at) -> Style {
        const auto number = Send(sheet, QsciScintilla::SCI_GETSTYLEAT, at);
        const auto color = Send(sheet, QsciScintilla::SCI_STYLEGETFORE, number);
        return {QColor(color & 0xff, (color >> 8) & 0xff, (color >> 16) & 0xff),
                std::abs(Send(sheet, QsciScintilla::SCI_STYLEGETWEIGHT, number)) >= QFont::Bold};
    };
    for (const auto& row : rows) {
        for (const bool isSplit : {false, true}) {
            sheet.ClearAll();
            sheet.Append(isSplit ? "" : row.bytes);
            for (const char byte : isSplit ? row.bytes : "") {
                Append({byte});
            }
            const auto bytes = sheet.Content().toUtf8();
            std::string found;
            for (int at = 0; at < bytes.size(); ++at) {
                if (bytes[at] != '\n' && styleAt(at) == row.style) {
                    found += bytes[at];
                }
            }
            EXPECT_EQ(found, row.text) << row.bytes << (isSplit ? " byte by byte" : " at once");
        }
    }
    sheet.ClearAll();
    sheet.Append("\x1b[31mstopped \x1b]0;");
    sheet.EndOutput();
    Append("next");
    EXPECT_EQ(styleAt(Length(sheet) - 1), Style(plain, false)) << "the next program is red, too";
}

TEST_F(WorksheetTest, EveryColourOfOutputIsLegible)
{
    const auto luminance = [](const QColor& color) {
        const auto part = [](double value) {
            return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) +
               0.0722 * part(color.blueF());
    };
    for (const auto appearance : {Appearance::Light, Appearance::Dark}) {
        SetAppearance(appearance);
        const auto palette = QApplication::palette();
        const auto& colors = ColorsFor(palette);
        const auto& output = OutputColors(palette.color(QPalette::Base));
        std::vector<QColor> all(output.begin(), output.end());
        all.push_back(colors.error);
        for (const auto& color : all) {
            for (const auto& paper : {palette.color(QPalette::Base), colors.caretLine}) {
                const auto [dark, light] = std::minmax({luminance(color), luminance(paper)});
                EXPECT_GE((light + 0.05) / (dark + 0.05), 4.5)
                    << color.name().toStdString() << " on " << paper.name().toStdString();
            }
        }
    }
}

TEST_F(WorksheetTest, ProgressReplacesALineThatTheUserEdited)
{
    Append("10%");
    sheet.setCursorPosition(0, 3);
    QTest::keyClicks(&sheet, "typed");
    sheet.Append("\r20%\n");
    EXPECT_EQ(sheet.Content(), "20%\n");
    sheet.undo();
    EXPECT_EQ(sheet.Content(), "20%\n") << "undo removed text that no longer exists";
}

TEST_F(WorksheetTest, LargeOutputIsAppendedInPartsOfLimitedSize)
{
    sheet.Append(std::string(1'000'000, '\n'));
    QCoreApplication::processEvents();
    EXPECT_LT(sheet.lines(), 200'000) << "one turn appended everything";
    ASSERT_TRUE(WaitUntil([&] { return Length(sheet) > 90'000; }));
    EXPECT_LE(sheet.lines(), Worksheet::kMaxLines);
}

TEST_F(WorksheetTest, AFloodLeavesItsLastLinesInTheColourThatItSet)
{
    sheet.BeginCommand();
    // Blocks of output end anywhere, also in the sequences and in the characters.
    std::string flood = "\x1b[31m";
    for (int line = 0; line < 4 * Worksheet::kMaxLines; ++line) {
        flood += "\x1b[1mö\x1b[22m " + std::to_string(line) + "\n";
    }
    sheet.Append(flood + "the end");
    EXPECT_LT(sheet.lines(), Worksheet::kMaxLines / 2)
        << "lines that will be removed were appended";
    const auto lines = sheet.Content().split('\n');
    ASSERT_LE(lines.size(), Worksheet::kMaxLines);
    ASSERT_GT(lines.size(), Worksheet::kMaxLines / 2);
    EXPECT_EQ(lines.back(), "the end");
    for (qsizetype i = 0; i + 1 < lines.size(); ++i) {
        const auto number = 4 * Worksheet::kMaxLines + 1 - lines.size() + i;
        ASSERT_EQ(lines[i], "ö " + QString::number(number));
    }
    Append("\x1b[m.");
    const auto styleAt = [&](long at) { return Send(sheet, QsciScintilla::SCI_GETSTYLEAT, at); };
    EXPECT_NE(styleAt(Length(sheet) - 2), styleAt(Length(sheet) - 1))
        << "the first colour was lost";
    EXPECT_EQ(sheet.markerFindNext(0, ~0U), -1) << "a line is marked as the beginning";
}

TEST_F(WorksheetTest, ACommandThatStartsDuringAFloodDoesNotWaitForIt)
{
    sheet.Append(Lines(90'000));
    sheet.BeginCommand();
    sheet.FollowEnd();
    sheet.Append("output");
    sheet.EndCommand();
    sheet.AppendLines("next");
    EXPECT_LT(sheet.lines(), 90'000) << "everything was appended at once";
    EXPECT_TRUE(sheet.Content().endsWith("line 89999\noutput\nnext"));
    EXPECT_EQ(sheet.markerFindNext(0, 1U << 2), 90'000);
    const auto caret = Send(sheet, QsciScintilla::SCI_GETCURRENTPOS);
    EXPECT_EQ(LineAt(sheet, caret), 90'001);
    sheet.Append(Lines(90'000));
    sheet.BeginCommand();
    sheet.ClearAll();
    Append("output of the command");
    EXPECT_EQ(sheet.markerFindNext(0, 1U << 2), 0) << "the command was forgotten, too";
}

TEST_F(WorksheetTest, TheOldestLinesAreRemoved)
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

TEST_F(WorksheetTest, AVeryLongLineIsSplit)
{
    sheet.Append(std::string(100'000, 'x'));
    Append("\rlast");
    EXPECT_TRUE(sheet.Content().endsWith("\nlast"));
    EXPECT_GE(Length(sheet), 90'000);
    for (int line = 0; line < sheet.lines(); ++line) {
        EXPECT_LE(sheet.text(line).size(), OutputText::kMaxLineLength + 1);
    }
}

TEST_F(WorksheetTest, TheViewFollowsTheOutputOnlyAtTheEnd)
{
    const auto topText = [&] { return sheet.text(sheet.firstVisibleLine()); };
    Append(Lines(1000));
    EXPECT_GE(sheet.firstVisibleLine() + Send(sheet, QsciScintilla::SCI_LINESONSCREEN),
              sheet.lines());
    sheet.setFirstVisibleLine(500);
    Append(Lines(Worksheet::kMaxLines - 2000, 1000));
    EXPECT_EQ(topText(), "line 500\n");
    sheet.setFirstVisibleLine(50'000);
    const QString before = topText();
    Append(Lines(10'000));
    EXPECT_EQ(topText(), before) << "the oldest lines were removed";

    sheet.ClearAll();
    sheet.SetWraps(true);
    for (int i = 0; i < 3; ++i) {
        Append(Lines(100) + std::string(3000, 'x') + "\n");
        QCoreApplication::processEvents();
        sheet.resize(600 - 100 * i, 300);
        QCoreApplication::processEvents();
        const auto last = Send(sheet, QsciScintilla::SCI_POINTYFROMPOSITION, 0, Length(sheet));
        EXPECT_LT(last, sheet.height()) << "lines that are wrapped are not followed";
    }
}

TEST_F(WorksheetTest, OnlyTheUsersScrollingEndsFollowing)
{
    const auto isEndVisible = [&] {
        return Send(sheet, QsciScintilla::SCI_POINTYFROMPOSITION, 0, Length(sheet)) <
               sheet.viewport()->height();
    };
    for (const bool wraps : {false, true}) {
        SCOPED_TRACE(wraps ? "wrapped" : "not wrapped");
        sheet.ClearAll();
        sheet.SetWraps(wraps);
        Append(Lines(100) + std::string(400, 'x') + "\n");
        const std::function<void()> changes[] = {
            [&] { sheet.resize(600, 120); }, [&] { sheet.resize(200, 300); },
            [&] { sheet.zoomTo(8); },        [&] { sheet.zoomTo(-2); },
            [&] { sheet.zoomTo(0); },        [&] { sheet.resize(600, 300); }};
        for (const auto& change : changes) {
            change();
            QCoreApplication::processEvents();
            EXPECT_TRUE(isEndVisible());
            Append("more\n");
            EXPECT_TRUE(isEndVisible());
        }
        QTest::keyClick(&sheet, Qt::Key_Home, Qt::ControlModifier);
        QTest::keyClick(&sheet, Qt::Key_PageDown);
        sheet.resize(600, 3000);  // The end comes into sight.
        sheet.resize(600, 300);
        Append("more\n");
        EXPECT_FALSE(isEndVisible());
        sheet.verticalScrollBar()->triggerAction(QAbstractSlider::SliderToMaximum);
        Append("more\n");
        EXPECT_TRUE(isEndVisible());
        sheet.verticalScrollBar()->triggerAction(QAbstractSlider::SliderSingleStepSub);
        Append("more\n");
        EXPECT_FALSE(isEndVisible());
        sheet.FollowEnd();
        EXPECT_TRUE(isEndVisible());
    }
}

TEST_F(WorksheetTest, MarksWhereOutputBeginsAndMovesACaretThatWasLeftAlone)
{
    const auto command = [&](
                             const std::string& output, const std::function<void()>& act = [] {}) {
        sheet.BeginCommand();
        Append(output);
        act();
        sheet.EndCommand();
    };
    const auto marks = [&] {
        QList<int> lines;
        for (int line = 0; (line = sheet.markerFindNext(line, 1U << 2)) >= 0; ++line) {
            lines.append(line);
        }
        return lines;
    };
    const auto caret = [&] { return Send(sheet, QsciScintilla::SCI_GETCURRENTPOS); };
    command("one\n10%\r20%");
    EXPECT_EQ(sheet.Content(), "one\n20%\n");
    EXPECT_EQ(caret(), Length(sheet));
    command("");
    command("two\n");
    EXPECT_EQ(marks(), (QList<int>{0, 2}));
    sheet.setCursorPosition(0, 1);
    command("three\n");
    EXPECT_EQ(caret(), Length(sheet));
    command("four\n", [&] { sheet.setCursorPosition(1, 2); });
    EXPECT_EQ(caret(), 6) << "the user has moved it";
    sheet.selectAll();
    command("five\n");
    EXPECT_TRUE(sheet.hasSelectedText());
    sheet.setCursorPosition(2, 0);
    command(Lines(Worksheet::kMaxLines + 10));
    EXPECT_EQ(marks(), QList<int>()) << "marks of lines that were removed";
    EXPECT_EQ(caret(), Length(sheet));
}

TEST_F(WorksheetTest, OutputKeepsTheCaretTheSelectionAndTheUndoHistory)
{
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
    Append(Lines(99'990));
    sheet.setSelection(50'000, 5, 50'001, 3);
    const QString selected = sheet.selectedText();
    ASSERT_NE(selected, "");
    Append(Lines(10'000));
    EXPECT_EQ(sheet.selectedText(), selected) << "the oldest lines were removed";
}

TEST_F(WorksheetTest, TracebackLinesAreLinks)
{
    Append("ö  Fil");
    Append("e \"main.py\", li");
    EXPECT_TRUE(Links().isEmpty());
    Append("ne 12, in f\nFile \"<stdin>\", line 1\nFile \"/a b.py\", line 3\n");
    EXPECT_EQ(Links(), QStringList({"File \"main.py\", line 12", "File \"/a b.py\", line 3"}));
    QSignalSpy chosen(&sheet, &Worksheet::LinkChosen);
    const long at = LineStart(sheet, 0) + 12;
    const auto x = Send(sheet, QsciScintilla::SCI_POINTXFROMPOSITION, 0, at);
    const auto y = Send(sheet, QsciScintilla::SCI_POINTYFROMPOSITION, 0, at);
    QTest::mouseClick(sheet.viewport(), Qt::LeftButton, {},
                      {static_cast<int>(x) + 2, static_cast<int>(y) + 5});
    ASSERT_EQ(chosen.count(), 1);
    EXPECT_EQ(chosen[0], (QVariantList{"main.py", 12}));
    EXPECT_EQ(sheet.selectedText(), "ö  File \"main.py\", line 12, in f") << "not the whole line";
}

TEST_F(WorksheetTest, LinksFollowEveryChangeOfTheText)
{
    const auto hasLinks = [&](int count) {
        return WaitUntil([&] { return Links().size() == count; });
    };
    QTest::keyClicks(&sheet, "File \"typed.py\", line 4");
    EXPECT_TRUE(hasLinks(1));
    QTest::keyClick(&sheet, Qt::Key_Backspace);
    EXPECT_TRUE(hasLinks(0)) << "text that is no longer a link is still drawn as one";
}

TEST_F(WorksheetTest, GoToLinkStartsWithTheNewestTraceback)
{
    EXPECT_FALSE(sheet.GoToNextLink() || sheet.GoToPreviousLink());
    const auto link = [](char number) {
        return "File \""s + number + ".py\", line " + number + "\n";
    };
    QString visited;
    QObject::connect(&sheet, &Worksheet::LinkChosen,
                     [&](const QString& path) { visited += path.first(1); });
    sheet.Append(link('1') + Lines(100) + link('2') + link('3'));
    for (int i = 0; i < 4; ++i) {
        EXPECT_TRUE(sheet.GoToPreviousLink());
    }
    EXPECT_EQ(visited, "3213");
    const std::string traceback = "Traceback (most recent call last):\n";
    sheet.Append(traceback + link('4') + traceback + link('5') + link('6') + "ValueError\n");
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(sheet.GoToNextLink());
    }
    EXPECT_EQ(visited, "3213561");
    EXPECT_EQ(sheet.firstVisibleLine(), 0) << "the link is not visible";
}

TEST_F(WorksheetTest, ASavedTextIsRestoredUnchanged)
{
    const QString text = QString(100'000, u'x') + "\r\n\x1b[31m\tred\nFile \"a.py\", line 1";
    sheet.SetContent(text);
    EXPECT_EQ(sheet.Content(), text);
    EXPECT_EQ(Links().size(), 1);
    sheet.Append(" and more");
    EXPECT_EQ(sheet.Content(), text + " and more");
}

TEST_F(WorksheetTest, ControlReturnRunsTheLineOrTheSelection)
{
    QStringList requested;
    QObject::connect(&sheet, &Worksheet::RunRequested,
                     [&](const QString& line) { requested.append(line); });
    const QString text = "ls -l\n  \npwd";
    sheet.SetContent(text);
    const int selections[][4] = {{0, 2, 0, 2}, {1, 1, 1, 1}, {0, 3, 2, 1}};
    for (const auto& [line, column, endLine, endColumn] : selections) {
        sheet.setSelection(line, column, endLine, endColumn);
        QTest::keyClick(&sheet, Qt::Key_Return, Qt::ControlModifier);
    }
    EXPECT_EQ(requested, (QStringList{"ls -l", "-l\n  \np"})) << "a line of spaces is not run";
    EXPECT_EQ(sheet.Content(), text);
}
