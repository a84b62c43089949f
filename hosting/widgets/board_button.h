#pragma once

#include <QTimer>
#include <QToolButton>

#include <memory>

class BoardMonitor;
class PinsClient;

// Shows which board is used, and opens a menu. [ui]
class BoardButton final : public QToolButton {
    Q_OBJECT

  public:
    // `menu` is not owned. `board` must outlive the button.
    BoardButton(const BoardMonitor& board, QMenu* menu, QWidget* parent);

    // Shows the virtual board's LED in the icon. `pins` must outlive the button.
    void ShowLedOf(const PinsClient& pins);

  private:
    void ShowBoard(const BoardMonitor& monitor);
    void ShowLed(const PinsClient& pins);

    std::shared_ptr<double> brightness_;  // Of the LED, from 0 to 1. Shared with the icon.
    QTimer updateTimer_;                  // Until the LED is drawn.
    QTimer restTimer_;                    // Until it counts as at rest.
};
