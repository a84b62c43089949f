#include "input_field.h"

#include "input_text.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QCompleter>
#include <QLabel>
#include <QTest>

namespace {

class InputFieldTest : public testing::Test {
  protected:
    InputFieldTest()
    {
        QObject::connect(&field, &InputField::Entered, [this](const QString& line) {
            entered.append(line);
            field.Accept();
        });
        field.resize(400, 40);
        field.show();
        field.activateWindow();
        field.setFocus();
        EXPECT_TRUE(WaitUntil([&] { return text().hasFocus(); }));
    }
    InputText& text() { return *field.findChild<InputText*>(); }
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(&text(), key, modifiers);
    }
    void Type(const QString& line) { QTest::keyClicks(&text(), line); }

    InputField field;
    QStringList entered;
};

}  // namespace

TEST_F(InputFieldTest, GrowsAndSendsABlockAsOne)
{
    const int one = text().height();
    Type("if x:");
    Press(Qt::Key_Return, Qt::ShiftModifier);
    Type("y");
    EXPECT_NEAR(text().height(), 2 * one, one / 2);
    Press(Qt::Key_Return);
    EXPECT_EQ(text().height(), one);
    QApplication::clipboard()->setText("a\nb\n" + QString(20, '\n') + "c");
    text().paste();
    EXPECT_LT(text().height(), 7 * one);
    Press(Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(entered, (QStringList{"if x:\n    y", "a\nb\n" + QString(20, '\n') + "c"}));
}

TEST_F(InputFieldTest, UpAndDownWalkTheHistoryFromTheFirstAndLastLine)
{
    field.SetPromptHistory({"1", "two\nlines"});
    for (const auto* const line : {"3", "3", " "}) {
        Type(line);
        Press(Qt::Key_Return);
    }
    EXPECT_EQ(field.promptHistory(), (QStringList{"1", "two\nlines", "3"}));
    EXPECT_EQ(field.PromptHistoryAppendedTo({"1", "two\nlines", "of another field"}),
              (QStringList{"1", "two\nlines", "of another field", "3"}));
    Type("draft");
    const std::pair<Qt::Key, QString> steps[] = {
        {Qt::Key_Up, "3"},   {Qt::Key_Up, "two\nlines"}, {Qt::Key_Up, "two\nlines"},
        {Qt::Key_Up, "1"},   {Qt::Key_Up, "1"},          {Qt::Key_Down, "two\nlines"},
        {Qt::Key_Down, "3"}, {Qt::Key_Down, "draft"},    {Qt::Key_Down, "draft"},
    };
    for (const auto& [key, shown] : steps) {
        Press(key);
        EXPECT_EQ(text().toPlainText(), shown);
    }
    field.ShowInput("a.py");
    Press(Qt::Key_Up);
    EXPECT_EQ(text().toPlainText(), "draft") << "a program's input is taken from the prompt";
}

TEST_F(InputFieldTest, ControlDEndsOnlyTheInputOfAProgramAndOnlyInAnEmptyField)
{
    int ends = 0;
    QObject::connect(&field, &InputField::EndOfInput, [&] { ++ends; });
    Press(Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(ends, 0);
    field.ShowInput("blink.py");
    EXPECT_EQ(field.findChild<QLabel*>()->text(), "Input to blink.py:");
    EXPECT_EQ(text().accessibleName(), "Input to blink.py");
    Type("a");
    Press(Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(ends, 0);
    Press(Qt::Key_Backspace);
    Press(Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(ends, 1);
}

TEST_F(InputFieldTest, TabInsertsTheCommonPrefixAndOffersAList)
{
    QString asked;
    QObject::connect(&field, &InputField::CompletionRequested,
                     [&](const QString& before) { asked = before; });
    Press(Qt::Key_Tab);
    Type("x.a");
    Press(Qt::Key_Tab);
    EXPECT_EQ(asked, "    x.a");
    Type("p");
    field.Complete("a", {"append"});
    EXPECT_EQ(text().toPlainText(), "    x.ap") << "an answer arrived too late";
    Press(Qt::Key_Tab);
    field.Complete("ap", {"append", "appendix", "apply"});
    EXPECT_EQ(text().toPlainText(), "    x.app");
    auto* const list = field.findChild<QCompleter*>()->popup();
    ASSERT_TRUE(list->isVisible());
    QTest::keyClick(list, Qt::Key_L);
    EXPECT_EQ(list->model()->rowCount(), 1);
    QTest::keyClick(list, Qt::Key_Return);
    EXPECT_EQ(text().toPlainText(), "    x.apply");
    EXPECT_FALSE(list->isVisible());
}
