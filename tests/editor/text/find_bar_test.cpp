#include "find_bar.h"

#include "scintilla_text.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QVBoxLayout>

namespace {

class FindBarTest : public testing::Test {
  protected:
    FindBarTest()
    {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(editor);
        layout->addWidget(bar);
        editor->setUtf8(true);
        bar->SetEditor(editor);
        window.resize(800, 400);
        window.show();
        window.activateWindow();
        editor->setFocus();
        EXPECT_TRUE(WaitUntil([&] { return editor->hasFocus(); }));
    }

    template <typename Widget>
    Widget* Named(const QString& name) const
    {
        const auto widgets = bar->findChildren<Widget*>();
        const auto found = std::ranges::find(widgets, name, &Widget::accessibleName);
        return found != widgets.end() ? *found : nullptr;
    }
    QLineEdit* words() const { return Named<QLineEdit>("Find"); }
    std::string message() const { return Named<QLabel>("Search result")->text().toStdString(); }

    // Presses a button, or changes an option, by its text without the mnemonic.
    void Press(const QString& text) const
    {
        for (auto* button : bar->findChildren<QAbstractButton*>()) {
            if (button->text().remove('&') == text) {
                return button->click();
            }
        }
        ADD_FAILURE() << "no " << text.toStdString();
    }

    // The selection as "START-END" in bytes.
    std::string selection() const
    {
        return std::to_string(Send(*editor, QsciScintilla::SCI_GETSELECTIONSTART)) + "-" +
               std::to_string(Send(*editor, QsciScintilla::SCI_GETSELECTIONEND));
    }

    void SetText(const QString& text) const
    {
        editor->setText(text);
        editor->setCursorPosition(0, 0);  // QScintilla 2.14 leaves it at the end.
    }

    // Searches a text step by step, each by entered words ("=words"), Return or a button.
    struct Step {
        std::string act, selection, message = {};
    };
    void Search(const QString& text, const std::vector<Step>& steps) const
    {
        SetText(text);
        bar->OpenForFind();
        for (const auto& step : steps) {
            SCOPED_TRACE(step.act);
            if (step.act.starts_with('=')) {
                words()->clear();
                words()->insert(QString::fromStdString(step.act.substr(1)));
            } else if (step.act == "Return") {
                QTest::keyClick(words(), Qt::Key_Return);
            } else {
                Press(QString::fromStdString(step.act));
            }
            EXPECT_EQ(selection(), step.selection);
            EXPECT_TRUE(WaitUntil([&] { return message() == step.message; })) << message();
        }
    }

    QWidget window;
    QsciScintilla* editor = new QsciScintilla;
    FindBar* bar = new FindBar;
};

}  // namespace

TEST_F(FindBarTest, TypingAndReturnFindAndWrapAround)
{
    Search("😀 one two One\nONE twone", {{"=one", "5-8", "1 of 4"},
                                        {"Return", "13-16", "2 of 4"},
                                        {"Previous", "5-8", "1 of 4"},
                                        {"Previous", "23-26", "4 of 4, wrapped around"},
                                        {"Return", "5-8", "1 of 4, wrapped around"},
                                        {"Match case", "5-8", "1 of 2"},
                                        {"Return", "23-26", "2 of 2"},
                                        {"Whole words", "5-8", "1 of 1, wrapped around"},
                                        {"=onex", "5-8", "No match"}});
}

TEST_F(FindBarTest, AllMatchesOfALargeTextAreMarkedAndCountedInParts)
{
    const auto isMarked = [&](long at) {
        constexpr int kIndicator = 9;
        return Send(*editor, QsciScintilla::SCI_INDICATORVALUEAT, kIndicator, at) != 0;
    };
    const auto shows = [&](const std::string& text) {
        EXPECT_TRUE(WaitUntil([&] { return message() == text; })) << message();
    };
    QString text;
    for (int i = 0; i < 200'000; ++i) {
        text += QString::number(i) + "é\n";
    }
    SetText(text);
    bar->OpenForFind();
    Press("Regular expression");
    words()->insert("7é\\n");  // Some matches are divided by the end of a part.
    EXPECT_EQ(message(), "") << "one turn searched everything";
    shows("1 of 20,000");
    EXPECT_TRUE(isMarked(Length(*editor) - 22) && !isMarked(Length(*editor) - 18));
    editor->setCursorPosition(0, 0);
    editor->insert("7é\n");
    shows("20,001 matches");
    bar->OpenForFind();
    words()->insert("(?s)^7é.*199999");  // Does not fit into a part.
    shows("1 of 1");
    words()->selectAll();
    words()->insert("[0-9]");
    shows("1 of over 100,000");
    words()->selectAll();
    words()->insert("7é\\n");
    QCoreApplication::processEvents();
    Send(*editor, QsciScintilla::SCI_SETMODEVENTMASK, 0);
    SetText("7é\n7é\n");  // As output in a worksheet, while the old text is searched.
    shows("2 matches");
    QTest::keyClick(words(), Qt::Key_Escape);
    EXPECT_FALSE(isMarked(1)) << "the bar is closed";
}

TEST_F(FindBarTest, TabGoesToTheReplacementAndAResultMovesNothing)
{
    window.resize(500, 300);
    bar->OpenForReplace();
    QCoreApplication::processEvents();
    EXPECT_EQ(window.width(), 500) << "the bar does not fit";
    auto* const replacement = Named<QLineEdit>("Replace with");
    QTest::keyClick(words(), Qt::Key_Tab);
    EXPECT_TRUE(replacement->hasFocus());
    EXPECT_EQ(words()->x(), replacement->x());
    EXPECT_GT(words()->width(), 100);
    const QRect before = words()->geometry();
    Press("Regular expression");
    words()->setText("(");
    Press("Next");
    ASSERT_NE(message(), "");
    QCoreApplication::processEvents();
    EXPECT_EQ(words()->geometry(), before);
    EXPECT_EQ(window.width(), 500);
}

TEST_F(FindBarTest, RegularExpressionsAndTheirEmptyMatchesAreFound)
{
    Search("aab a.b\r\nÄb", {{"=a.b", "4-7", "1 of 1"}, {"=äb", "9-12", "1 of 1"}});
    Press("Regular expression");
    Search("aab a.b\r\nÄb", {{"=a.b", "0-3", "1 of 2"}, {"=b$", "6-7", "1 of 2"}});
    Search("a\nb\nc", {{"=^", "2-2", "2 of 3"},
                       {"Next", "4-4", "3 of 3"},
                       {"Previous", "2-2", "2 of 3"},
                       {"Previous", "0-0", "1 of 3"}});
    Search("😀b", {{"=(?=.)", "4-4", "2 of 2"},
                  {"Next", "0-0", "1 of 2, wrapped around"}});  // Not inside a character.
}

TEST_F(FindBarTest, AnExpressionThatFailsIsReportedAndChangesNothing)
{
    const QString hard = "hit\n" + (QString(30, 'a') + "\n").repeated(50) + "hit\n";
    const std::string tooComplex = "The expression is too complex for this text";
    const struct {
        QString text, words, button;
        qsizetype caret;
        std::string message;
    } rows[] = {
        {"a(b", "(b", "Next", 0, "Invalid regular expression: "},
        {hard, "hit|(a+)+c", "Next", 4, tooComplex},
        {hard, "hit|(a+)+c", "Previous", hard.size(), tooComplex},  // May have missed a match.
        {hard, "hit!|(a+)+c", "Replace all", 0, tooComplex},
    };
    Press("Regular expression");
    bar->OpenForReplace();
    for (const auto& row : rows) {
        SetText(row.text);
        Send(*editor, QsciScintilla::SCI_GOTOPOS, row.caret);
        words()->setText(row.words);
        Press(row.button);
        EXPECT_TRUE(message().starts_with(row.message)) << message();
        EXPECT_EQ(editor->text(), row.text) << row.button.toStdString();
    }
}

TEST_F(FindBarTest, ReplaceAllIsOneUndoStepAndReportsTheNumber)
{
    const struct {
        QString before, words, with, after;
        std::string message;
        bool isExpression = false;
    } rows[] = {
        {"a a\na", "a", "aa", "aa aa\naa", "3 matches replaced"},
        {"é😀é", "é", "", "😀", "2 matches replaced"},
        {"a\\1", "a", "\\1", "\\1\\1", "1 match replaced"},
        {"a1 b2", "(\\w)(\\d)", "\\2\\1\\\\\\0", "1a\\a1 2b\\b2", "2 matches replaced", true},
        {"a😀b", "x*", "-", "-a-😀-b-", "4 matches replaced", true},
        {"a;b", ";", "\\n\\t", "a\n\tb", "1 match replaced", true},
    };
    for (bool isExpression = false; const auto& row : rows) {
        if (std::exchange(isExpression, row.isExpression) != row.isExpression) {
            Press("Regular expression");
        }
        SetText(row.before);
        bar->OpenForReplace();
        words()->setText(row.words);
        Named<QLineEdit>("Replace with")->setText(row.with);
        Press("Replace all");
        EXPECT_EQ(TextOf(*editor), row.after);
        EXPECT_EQ(message(), row.message) << row.words.toStdString();
        editor->undo();
        EXPECT_EQ(TextOf(*editor), row.before) << "more than one step";
    }
}

TEST_F(FindBarTest, ReplaceChangesTheSelectedMatchAndFindsTheNext)
{
    SetText("one two one");
    bar->OpenForReplace();
    words()->setText("one");
    Named<QLineEdit>("Replace with")->setText("ones");
    Press("Replace");
    EXPECT_EQ(editor->text(), "one two one") << "replaced a match that was not selected";
    Press("Replace");
    EXPECT_EQ(editor->text(), "ones two one");
    EXPECT_EQ(selection(), "9-12");
    editor->setReadOnly(true);
    Press("Replace all");
    EXPECT_EQ(editor->text(), "ones two one");
    EXPECT_EQ(message(), "The text is read-only");
}

TEST_F(FindBarTest, FindNextWorksWhileTheBarIsClosed)
{
    Search("one two one", {{"=one", "0-3", "1 of 2"}});
    QTest::keyClick(words(), Qt::Key_Escape);
    EXPECT_TRUE(editor->hasFocus());
    bar->FindNext();
    EXPECT_EQ(selection(), "8-11");
    EXPECT_FALSE(bar->isVisible());
}

TEST_F(FindBarTest, SearchesForTheSelectionAndWorksAfterItsEditorIsDestroyed)
{
    SetText("one two\nthree");
    editor->setSelection(0, 4, 0, 7);
    bar->OpenForReplace();
    EXPECT_EQ(words()->text(), "two");
    delete editor;
    for (const char* button : {"Next", "Previous", "Replace", "Replace all"}) {
        Press(button);
    }
    QTest::keyClick(words(), Qt::Key_Escape);
    EXPECT_FALSE(bar->isVisible());
}
