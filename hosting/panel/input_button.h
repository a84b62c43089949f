#pragma once

#include "board_state.h"

#include <QAbstractButton>
#include <QPointer>
#include <QTimer>

#include <optional>

// A push-button at an input pin of the board. While it is held it drives the pin to the level
// opposite to the one at rest; with Shift, or by Return, it remains so until it is pressed again.
// It releases the pin when it is destroyed. [ui]
class InputButton final : public QAbstractButton {
    Q_OBJECT

  public:
    explicit InputButton(QWidget* parent);
    ~InputButton() override;

    // Without a pin or another button the button is disabled.
    void SetPin(const QString& pin);
    // Makes this a second place for the mouse to press another button; null for none.
    void SetOther(InputButton* other);
    const QString& pin() const { return pin_; }
    void ShowLevel(int level) { level_ = level; }

    QSize sizeHint() const override { return {30, 30}; }

  Q_SIGNALS:
    // Without a level, the pin is no longer driven.
    void Driven(const QString& pin, std::optional<bool> isHigh);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void Press();
    void Release();
    void Drive(bool isPressed);

    QString pin_;
    int level_ = 0;  // As the board reports it.
    QPointer<InputButton> other_;
    bool isHeld_ = false;
    bool isPressed_ = false;
    bool isLocked_ = false;
    QTimer releaseTimer_;  // A short click lasts until a program has certainly seen it.
};
