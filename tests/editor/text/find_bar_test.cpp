#include "find_bar.h"

#include "scintilla_text.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
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
        for (auto* widget : bar->findChildren<Widget*>()) {
            if (widget->accessibleName() == name) {
                return widget;
            }
        }
        return nullptr;
    }

    QLineEdit* words() const { return Named<QLineEdit>("Find"); }
    QString message() const { return Named<QLabel>("Result of the search")->text(); }

    template <typename Button>
    void Press(const QString& text) const
    {
        for (auto* button : bar->findChildren<Button*>()) {
            if (button->text() == text) {
                button->click();
                return;
            }
        }
        ADD_FAILURE() << "no " << text.toStdString();
    }
    void Choose(const QString& option) const { Press<QCheckBox>(option); }

    // What is selected, as "START-END" in bytes.
    std::string selection() const
    {
        return std::to_string(Ask(*editor, QsciScintilla::SCI_GETSELECTIONSTART)) + "-" +
               std::to_string(Ask(*editor, QsciScintilla::SCI_GETSELECTIONEND));
    }

    QWidget window;
    QsciScintilla* editor = new QsciScintilla;
    FindBar* bar = new FindBar;
};

}  // namespace

TEST_F(FindBarTest, TypingFindsAndReturnGoesOnAndRound)
{
    editor->setText(QString::fromUtf8("\U0001F600 one two One\nONE twone"));
    bar->OpenForFind();
    EXPECT_TRUE(words()->hasFocus());
    QTest::keyClicks(words(), "one");
    EXPECT_EQ(selection(), "5-8");
    QTest::keyClick(words(), Qt::Key_Return);
    EXPECT_EQ(selection(), "13-16");
    QTest::keyClick(words(), Qt::Key_Return);
    QTest::keyClick(words(), Qt::Key_Return);
    EXPECT_EQ(selection(), "23-26");
    EXPECT_EQ(message(), "");
    QTest::keyClick(words(), Qt::Key_Return);
    EXPECT_EQ(selection(), "5-8");
    EXPECT_EQ(message(), "Went on at the other end");
    QTest::keyClick(words(), Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(selection(), "23-26");
    EXPECT_EQ(message(), "Went on at the other end");
    QTest::keyClick(words(), Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(selection(), "17-20");
    EXPECT_EQ(message(), "");
    Choose("&Match case");
    EXPECT_EQ(selection(), "23-26");
    Choose("Whole w&ords");
    EXPECT_EQ(selection(), "5-8");
    QTest::keyClicks(words(), "x");
    EXPECT_EQ(message(), "No match");
    EXPECT_EQ(selection(), "5-8") << "the selection went with the match";
}

TEST_F(FindBarTest, WordsAreNotPatternsUnlessAsked)
{
    editor->setText("aab a.b\r\nÄb");
    bar->OpenForFind();
    QTest::keyClicks(words(), "a.b");
    EXPECT_EQ(selection(), "4-7");
    Choose("Re&gular expression");
    bar->FindNext();
    EXPECT_EQ(selection(), "0-3");
    words()->setText("b$");
    bar->FindNext();
    EXPECT_EQ(selection(), "6-7") << "the end of a line with two characters";
    words()->setText("äb");
    bar->FindNext();
    EXPECT_EQ(selection(), "9-12");
}

TEST_F(FindBarTest, AFaultyExpressionIsSaidAndChangesNothing)
{
    editor->setText("a(b");
    editor->setModified(false);
    Choose("Re&gular expression");
    bar->OpenForReplace();
    QTest::keyClicks(words(), "(b");
    for (const char* button : {"Ne&xt", "Previo&us", "Rep&lace", "Replace &all"}) {
        Press<QPushButton>(button);
        EXPECT_TRUE(message().startsWith("No regular expression: ")) << button;
    }
    EXPECT_FALSE(editor->isModified());
}

TEST_F(FindBarTest, AnExpressionWithTooManyWaysIsNoMissingMatch)
{
    const QString text = "hit\n" + (QString(30, 'a') + "\n").repeated(50) + "hit\n";
    editor->setText(text);
    Choose("Re&gular expression");
    bar->OpenForReplace();
    for (const auto& [button, caret] :
         {std::pair("Ne&xt", 4L), std::pair("Ne&xt", Length(*editor)),
          std::pair("Previo&us", Length(*editor)), std::pair("Replace &all", 0L)}) {
        Ask(*editor, QsciScintilla::SCI_GOTOPOS, caret);
        words()->setText(caret == 4 ? "hit|(a+)+c" : "hit!|(a+)+c");
        Press<QPushButton>(button);
        EXPECT_EQ(message(), "Too hard an expression for this text") << button << " at " << caret;
        EXPECT_EQ(editor->text(), text) << button;
    }
    words()->setText("hit|(a+)+c");
    Press<QPushButton>("Previo&us");
    EXPECT_EQ(message(), "Too hard an expression for this text") << "a nearer match was missed";
}

TEST_F(FindBarTest, ReplacingAllIsOneStepAndSaysHowMany)
{
    struct Row {
        QString before, words, with, after;
        bool isExpression;
        QString message;
    };
    Choose("Re&gular expression");
    bool isExpression = true;
    for (const auto& row : {
             Row{"a a\na", "a", "aa", "aa aa\naa", false, "3 replaced"},
             Row{"é😀é", "é", "", "😀", false, "2 replaced"},
             Row{"a1 b2", "(\\w)(\\d)", "\\2\\1\\\\\\0", "1a\\a1 2b\\b2", true, "2 replaced"},
             Row{"a\\1", "a", "\\1", "\\1\\1", false, "1 replaced"},
             Row{"a😀b", "x*", "-", "-a-😀-b-", true, "4 replaced"},
             Row{"a\nb", "^", "> ", "> a\n> b", true, "2 replaced"},
             Row{"a;b", ";", "\\n\\t", "a\n\tb", true, "1 replaced"},
             Row{"a", "b", "c", "a", false, "No match"},
         }) {
        if (row.isExpression != isExpression) {
            Choose("Re&gular expression");
            isExpression = row.isExpression;
        }
        editor->setText(row.before);
        bar->OpenForReplace();
        words()->setText(row.words);
        Named<QLineEdit>("Replace with")->setText(row.with);
        Press<QPushButton>("Replace &all");
        EXPECT_EQ(TextOf(*editor), row.after);
        EXPECT_EQ(message(), row.message) << row.words.toStdString();
        if (row.before != row.after) {
            editor->undo();
            EXPECT_EQ(TextOf(*editor), row.before) << "more than one step";
        }
    }
}

TEST_F(FindBarTest, ReplaceTakesTheMatchThatIsSelectedAndGoesOn)
{
    editor->setText("one two one");
    bar->OpenForReplace();
    words()->setText("one");
    Named<QLineEdit>("Replace with")->setText("ones");
    Press<QPushButton>("Rep&lace");
    EXPECT_EQ(editor->text(), "one two one") << "replaced what was not shown yet";
    Press<QPushButton>("Rep&lace");
    EXPECT_EQ(editor->text(), "ones two one");
    EXPECT_EQ(selection(), "9-12");
    editor->setReadOnly(true);
    Press<QPushButton>("Rep&lace");
    Press<QPushButton>("Replace &all");
    EXPECT_EQ(editor->text(), "ones two one");
    EXPECT_EQ(message(), "The text cannot be changed");
}

TEST_F(FindBarTest, MatchesOfNothingAreWalkedThrough)
{
    editor->setText("a\nb\nc");
    Choose("Re&gular expression");
    bar->OpenForFind();
    words()->setText("^");
    for (const char* at : {"2-2", "4-4", "0-0"}) {
        bar->FindNext();
        EXPECT_EQ(selection(), at);
    }
    for (const char* at : {"4-4", "2-2", "0-0"}) {
        bar->FindPrevious();
        EXPECT_EQ(selection(), at);
    }
}

TEST_F(FindBarTest, ClosedItGoesOnWithTheLastWords)
{
    editor->setText("one two one");
    bar->OpenForFind();
    QTest::keyClicks(words(), "one");
    QTest::keyClick(words(), Qt::Key_Escape);
    EXPECT_FALSE(bar->isVisible());
    EXPECT_TRUE(editor->hasFocus());
    bar->FindNext();
    EXPECT_EQ(selection(), "8-11");
    EXPECT_TRUE(editor->hasFocus());
    EXPECT_FALSE(bar->isVisible());
    editor->setText("nothing");
    bar->FindNext();
    EXPECT_TRUE(bar->isVisible()) << "nobody could see that there is no match";
    EXPECT_TRUE(editor->hasFocus());
}

TEST_F(FindBarTest, TakesWordsOfOneLineOnly)
{
    editor->setText("one two\nthree");
    editor->setSelection(0, 4, 0, 7);
    bar->OpenForFind();
    EXPECT_EQ(words()->text(), "two");
    editor->setSelection(0, 4, 1, 2);
    bar->OpenForReplace();
    EXPECT_EQ(words()->text(), "two");
}

TEST_F(FindBarTest, ManagesWithoutAnEditor)
{
    bar->OpenForReplace();
    words()->setText("one");
    delete editor;
    for (const char* button : {"Ne&xt", "Previo&us", "Rep&lace", "Replace &all"}) {
        Press<QPushButton>(button);
    }
    bar->OpenForFind();
    QTest::keyClick(words(), Qt::Key_Escape);
    EXPECT_FALSE(bar->isVisible());
}

TEST_F(FindBarTest, EveryControlIsReachedByTab)
{
    bar->OpenForReplace();
    QSet<QWidget*> left;
    for (auto* control : bar->findChildren<QWidget*>()) {
        if (control->focusPolicy() != Qt::NoFocus && control->isVisible()) {
            left.insert(control);
            const auto* button = qobject_cast<QAbstractButton*>(control);
            EXPECT_TRUE(!control->accessibleName().isEmpty() ||
                        (button && button->text().contains('&')))
                << control->metaObject()->className();
        }
    }
    ASSERT_EQ(left.size(), 10);
    for (int i = 0; i < 10; ++i) {
        left.remove(QApplication::focusWidget());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_TRUE(left.isEmpty());
}

TEST_F(FindBarTest, ANearMatchOfALongTextIsFoundBackwards)
{
    editor->setText("x " + QString("aaaaaaa\n").repeated(100'000) + " x");
    bar->OpenForFind();
    words()->setText("x");
    bar->FindPrevious();
    EXPECT_EQ(selection(), "800003-800004");
    bar->FindPrevious();
    EXPECT_EQ(selection(), "0-1") << "the one far before";
}
