#pragma once

#include "board_state.h"

#include <QTimer>
#include <QWidget>

#include <map>

class BoardPicture;
class PinRow;
class PinsClient;
class PixelStrip;
class QLabel;
class QPushButton;
class QVBoxLayout;

// Shows the virtual board, its LED, and the pins and NeoPixels that the program uses. Inputs can be
// driven with the mouse and the keyboard. Without a virtual board it offers one. [ui]
class BoardPanel final : public QWidget {
    Q_OBJECT

  public:
    // `pins` must outlive the panel.
    explicit BoardPanel(PinsClient& pins, QWidget* parent = nullptr);

    QSize sizeHint() const override { return {330, 500}; }

  Q_SIGNALS:
    // The user wants to attach the virtual board.
    void AttachRequested();

  private:
    template <typename Part>
    using Parts = std::map<QString, Part*, PinOrder>;

    void MakeContents();
    void ShowBoard();
    void Show(const BoardState::Change& change);
    void ShowReset();
    void ShowPin(const QString& pin, const PinState& state);
    void ShowPixels(const QString& pin);
    void ShowButton();
    void ShowHint();
    void RemoveUnused();
    template <typename Part, typename States>
    void RemoveUnused(Parts<Part>& parts, const States& states);
    template <typename Part>
    Part* PartFor(Parts<Part>& parts, QVBoxLayout& column, const QString& pin);

    PinsClient& pins_;
    BoardPicture* picture_;
    QVBoxLayout* strips_;
    QVBoxLayout* rows_;
    QLabel* hint_;
    QPushButton* attach_;
    Parts<PinRow> rowOf_;
    Parts<PixelStrip> stripOf_;
    QTimer removeTimer_;  // After a reset, until the parts of unused pins are removed.
};
