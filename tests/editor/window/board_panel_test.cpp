// The board panel and the LED in the corner, with the examples on the virtual board.

#include "editor_window_fixture.h"

#include "board_button.h"
#include "board_drawing.h"
#include "board_panel.h"
#include "board_picture.h"
#include "input_button.h"
#include "pin_row.h"

#include <QImage>
#include <QPushButton>
#include <QSlider>
#include <QSplitter>
#include <QTest>

namespace {

const QString kExamples = QUILP_SOURCE "/examples/";

bool IsGreen(const QColor& color)
{
    return color.green() > color.red() + 60 && color.green() > color.blue() + 40;
}

}  // namespace

class BoardPanelTest : public EditorWindow {
  protected:
    void StartWith(const QString& example)
    {
        Start({kExamples + example});
        AttachBoard();
        Press(Qt::Key_F9);
        Press(Qt::Key_F5);
    }
    template <typename Part>
    Part* Find()
    {
        return window().findChild<BoardPanel*>()->findChild<Part*>();
    }
    PinRow* Row(const QString& pin)
    {
        const auto rows = window().findChildren<PinRow*>();
        const auto found = std::ranges::find(rows, pin, &PinRow::pin);
        return found != rows.end() ? *found : nullptr;
    }
    template <typename Control>
    Control* ControlAt(const QString& pin)
    {
        Control* control = nullptr;
        EXPECT_TRUE(WaitUntil([&] {
            auto* const row = Row(pin);
            control = row != nullptr ? row->findChild<Control*>() : nullptr;
            return control != nullptr;
        })) << pin.toStdString();
        return control;
    }
    bool IsLedLit()
    {
        auto& picture = *Find<BoardPicture>();
        const auto place = kLedCenter * picture.width() / kBoardSize.width();
        return picture.grab().toImage().pixelColor(place.toPoint()).green() > 220;
    }
    bool IsCornerLit()
    {
        const QImage image = window().findChild<BoardButton*>()->grab().toImage();
        int green = 0;
        for (int i = 0; i < image.width() * image.height(); ++i) {
            green += IsGreen(image.pixelColor(i % image.width(), i / image.width())) ? 1 : 0;
        }
        return green > 4;
    }
    bool BecomesLit(bool isLit)
    {
        return WaitUntil([&] { return IsLedLit() == isLit && IsCornerLit() == isLit; });
    }
};

TEST_F(BoardPanelTest, BlinksUntilTheProgramIsStoppedOrTheBoardDetached)
{
    StartWith("blink.py");
    for (const bool isLit : {true, false, true}) {
        EXPECT_TRUE(BecomesLit(isLit)) << isLit;
    }
    EXPECT_EQ(Row("LED")->accessibleName(), "Pin LED, Output") << "it changes all the time";
    Press(Qt::Key_F5, Qt::ShiftModifier);
    EXPECT_TRUE(BecomesLit(false));
    EXPECT_TRUE(WaitUntil([&] { return Row("LED") == nullptr; })) << "the pins at power-on";
    const auto* const corner = window().findChild<BoardButton*>();
    EXPECT_TRUE(WaitUntil([&] { return corner->accessibleDescription() == "The LED is off"; }));

    Press(Qt::Key_F5);
    EXPECT_TRUE(BecomesLit(true));
    window().board().DetachVirtualBoard();
    EXPECT_TRUE(BecomesLit(false));
    EXPECT_EQ(Row("LED"), nullptr);
    Answer("Attach Virtual Board");
    EXPECT_TRUE(WaitUntil([&] { return window().board().board().IsAttached(); }));
    Press(Qt::Key_F5);
    EXPECT_TRUE(BecomesLit(true)) << "of the board that was attached again";
}

TEST_F(BoardPanelTest, ProgramsSeeTheButtonPressedByMouseAndKeyboard)
{
    StartWith("button.py");
    auto* const button = ControlAt<InputButton>("14");
    ASSERT_TRUE(SheetShows("Press the button"));
    ASSERT_TRUE(WaitUntil([&] { return Row("14")->state().value == 1; })) << "the pull-up";
    auto& onBoard = Find<BoardPicture>()->button();
    QTest::mousePress(&onBoard, Qt::LeftButton);
    EXPECT_TRUE(SheetShows("pressed 1"));
    EXPECT_TRUE(BecomesLit(true));
    QTest::mouseRelease(&onBoard, Qt::LeftButton);
    EXPECT_TRUE(BecomesLit(false));

    button->setFocus();
    Press(Qt::Key_Return);
    EXPECT_TRUE(SheetShows("pressed 2"));
    Press(Qt::Key_F5);
    EXPECT_TRUE(WaitUntil([&] { return Sheet().ends_with("pressed 1\n"); }))
        << "it stays pressed for the next run";
    EXPECT_TRUE(BecomesLit(true));
    EXPECT_EQ(ControlAt<InputButton>("14"), button) << "with the focus";
    Press(Qt::Key_Return);
    EXPECT_TRUE(BecomesLit(false));
    EXPECT_TRUE(WaitUntil([&] { return Row("14")->state().value == 1; }));
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_TRUE(WaitUntil([&] { return Sheet().ends_with("pressed 2\n"); })) << "a short click";
}

TEST_F(BoardPanelTest, DrivesAnAnalogInputByKeys)
{
    StartWith("adc.py");
    auto* const slider = ControlAt<QSlider>("26");
    slider->setFocus();
    Press(Qt::Key_End);
    EXPECT_TRUE(SheetShows("3.30 V"));
    EXPECT_TRUE(WaitUntil([&] {
        auto* const light = Row("15");
        return light != nullptr && light->accessibleName() == "Pin 15, PWM, 100 %";
    }));
    Press(Qt::Key_Home);
    EXPECT_TRUE(SheetShows("0.00 V"));
    Press(Qt::Key_F9);
    EXPECT_TRUE(window().findChild<BoardPanel*>()->isHidden());
    EXPECT_TRUE(editor().hasFocus());
}

TEST_F(BoardPanelTest, ASliderKeepsTheUsersStepsUntilTheBoardReportsThem)
{
    PinRow row("26", nullptr);
    PinState state{.mode = PinState::Mode::Adc};
    const auto report = [&](int analog) {
        state.analog = analog;
        row.Show(state);
        return row.findChild<QSlider*>()->value();
    };
    report(0);
    int driven = 0;
    QObject::connect(&row, &PinRow::AnalogDriven,
                     [&](const QString&, int value) { driven = value; });
    auto* const slider = row.findChild<QSlider*>();
    for (int i = 1; i <= 3; ++i) {
        QTest::keyClick(slider, Qt::Key_Right);
        EXPECT_EQ(report(slider->singleStep() * (i - 1)), slider->singleStep() * i);
    }
    EXPECT_EQ(driven, slider->singleStep() * 3);
    report(driven);
    EXPECT_EQ(report(7), 7) << "by another client";
    QTest::keyClick(slider, Qt::Key_Home);
    report(8);
    EXPECT_TRUE(WaitUntil([&] { return slider->value() == 8; })) << "The step was lost.";
}

TEST_F(BoardPanelTest, IsRememberedWithItsWidth)
{
    Start();
    Press(Qt::Key_F9);
    auto& columns = dynamic_cast<QSplitter&>(*window().centralWidget());
    columns.setSizes({600, 400});
    QCoreApplication::processEvents();
    const auto sizes = columns.sizes();
    Close();
    Start();
    EXPECT_FALSE(window().findChild<BoardPanel*>()->isHidden());
    EXPECT_EQ(dynamic_cast<QSplitter&>(*window().centralWidget()).sizes(), sizes);
}
