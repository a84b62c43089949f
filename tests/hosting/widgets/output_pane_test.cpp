#include "output_pane.h"

#include "output_document.h"
#include "wait.h"

#include <QElapsedTimer>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>

#include <gtest/gtest.h>

namespace {

// A pane of about ten lines.
struct Shown {
    OutputDocument output;
    OutputPane pane{output, nullptr};

    Shown()
    {
        pane.resize(400, 10 * pane.fontMetrics().lineSpacing());
        pane.show();
    }

    void Append(const std::string& text)
    {
        const auto last = QString::fromStdString(text).section('\n', -2, -2);
        output.AppendLines(text);
        EXPECT_TRUE(WaitUntil([&] { return output.lastBlock().previous().text() == last; }));
    }
    bool IsAtEnd() const
    {
        return pane.verticalScrollBar()->value() == pane.verticalScrollBar()->maximum();
    }
    QString FirstLine() const { return pane.cursorForPosition({1, 1}).block().text(); }
};

std::string Lines(int first, int last)
{
    std::string lines;
    for (int i = first; i <= last; ++i) {
        lines += "line " + std::to_string(i) + "\n";
    }
    return lines;
}

}  // namespace

TEST(OutputPane, FollowsTheEndUntilTheUserScrollsAway)
{
    Shown shown;
    shown.Append(Lines(1, 100));
    EXPECT_TRUE(shown.IsAtEnd());
    shown.pane.verticalScrollBar()->setValue(20);
    shown.Append(Lines(101, OutputDocument::kMaxLines - 1000));
    EXPECT_EQ(shown.FirstLine().toStdString(), "line 21");
    shown.pane.verticalScrollBar()->setValue(OutputDocument::kMaxLines / 2);
    const QString read = shown.FirstLine();
    shown.Append(Lines(1, 2000));
    EXPECT_LT(shown.output.blockCount(), OutputDocument::kMaxLines);
    EXPECT_EQ(shown.FirstLine().toStdString(), read.toStdString())
        << "The lines that are read move when the oldest are removed.";
    shown.output.FollowEnd();
    EXPECT_TRUE(shown.IsAtEnd());
}

TEST(OutputPane, ClickingATracebackReportsItsFileAndLine)
{
    Shown shown;
    shown.Append("x\n\x1b[31mred\x1b[m 10%\r20%\n  File \"/a b.py\", line 7, in f\n");
    EXPECT_EQ(shown.output.toPlainText(), "x\n20%\n  File \"/a b.py\", line 7, in f\n");
    QSignalSpy chosen(&shown.pane, &OutputPane::LinkChosen);
    const struct {
        QString before;  // Where the click goes.
        int links;
    } rows[] = {
        {"  Fil", 1}, {"  File \"/a b.py\", line ", 2}, {"  File \"/a b.py\", line 7, in", 2}};
    for (const auto& [before, links] : rows) {
        QTextCursor cursor(shown.output.findBlockByNumber(2));
        cursor.movePosition(QTextCursor::Right, QTextCursor::MoveAnchor,
                            static_cast<int>(before.size()));
        QTest::mouseClick(shown.pane.viewport(), Qt::LeftButton, {},
                          shown.pane.cursorRect(cursor).center() + QPoint(2, 0));
        ASSERT_EQ(chosen.size(), links) << before.toStdString();
    }
    EXPECT_EQ(chosen.at(0), (QVariantList{"/a b.py", 7}));
}

TEST(OutputPane, StaysResponsiveInAFloodOfColouredLines)
{
    Shown shown;
    std::string flood;
    for (int i = 0; i < 400'000; ++i) {
        flood += "\x1b[3" + std::to_string(i % 8) + "mflood\x1b[m " + std::to_string(i) + "\n";
    }
    shown.output.Append(flood);
    QElapsedTimer turn;
    qint64 longest = 0;
    const bool hasArrived = WaitUntil([&] {
        longest = std::max(longest, turn.isValid() ? turn.restart() : (turn.start(), 0));
        return shown.output.lastBlock().previous().text() == "flood 399999";
    });
    EXPECT_TRUE(hasArrived);
    EXPECT_LT(longest, 1000);
}
