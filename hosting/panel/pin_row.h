#pragma once

#include "board_state.h"
#include "card.h"

#include <QTimer>

#include <optional>

class InputButton;
class QSlider;

// One pin that the program uses: what it is for, its state, and for an input the control that
// drives it. [ui]
class PinRow final : public Card {
    Q_OBJECT

  public:
    PinRow(const QString& pin, QWidget* parent);
    ~PinRow() override;

    void Show(const PinState& state);
    const PinState& state() const { return state_; }
    // Of an input, otherwise null.
    InputButton* button() const { return button_; }

    QSize sizeHint() const override { return {250, kLine}; }

  Q_SIGNALS:
    // Without a level, the pin is no longer driven.
    void LevelDriven(const QString& pin, std::optional<bool> isHigh);
    void AnalogDriven(const QString& pin, int value);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void MakeControl();
    void PlaceControl();
    void ShowInControl();
    void Drive(int value);
    void Describe();
    QRect ValueRect() const;
    QRect MeterRect() const;
    void DrawLevel(QPainter& painter) const;
    void DrawDuty(QPainter& painter) const;

    PinState state_;
    InputButton* button_ = nullptr;
    QSlider* slider_ = nullptr;  // Of an ADC, otherwise null.
    std::optional<int> driven_;  // The slider's value, until the board reports it.
    QTimer restTimer_;           // Until the state counts as at rest.
};
