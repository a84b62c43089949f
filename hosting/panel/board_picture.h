#pragma once

#include "board_drawing.h"
#include "board_state.h"

#include <QPixmap>
#include <QWidget>

#include <map>

class InputButton;

// A picture of the virtual board with its LED, the pins in use, and a button. It is as wide as its
// place, and repainted only where it changes. [ui]
class BoardPicture final : public QWidget {
    Q_OBJECT

  public:
    explicit BoardPicture(QWidget* parent);

    void ShowPin(const QString& pin, const PinState& state);
    // Shows the board at power-on.
    void Clear();
    InputButton& button() { return *button_; }
    // Connects the button with another one; null for none.
    void SetOtherButton(InputButton* other);

    QSize sizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    double Scale() const;
    // In pixels of this widget.
    QRect Place(const QRectF& rect) const;
    void RenderBoard();

    std::map<QString, double> levels_;  // Of the pins in use, from 0 to 1.
    QPixmap board_;                     // Without what changes.
    InputButton* button_;
};
