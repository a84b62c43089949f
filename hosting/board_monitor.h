#pragma once

#include "virtual_board.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <optional>
#include <string>

// Monitors which board the tool would use: the virtual board if it is attached, otherwise a real
// one. [ui]
class BoardMonitor final : public QObject {
    Q_OBJECT

  public:
    enum class Kind { None, Real, Virtual };

    struct Board {
        Kind kind = Kind::None;
        std::string node;  // The device node of a real board.
        bool operator==(const Board&) const = default;
    };

    // `program` is the virtual board's program, `boardFolder` contains its files.
    BoardMonitor(std::string program, std::string boardFolder, QObject* parent);

    const Board& board() const { return board_; }
    const std::string& boardFolder() const { return boardFolder_; }

    // The virtual board becomes the board when it is ready. If it cannot be started, Failed is
    // emitted.
    void AttachVirtualBoard();
    // True also while the virtual board is starting.
    bool HasVirtualBoard() const { return virtualBoard_.has_value(); }
    // Simulates unplugging the board.
    void DetachVirtualBoard();

    // The first device node with the name of a USB serial device; empty if there is none.
    static std::string FindRealBoard();

  Q_SIGNALS:
    void Changed();
    // A message for the user.
    void Failed(const QString& error);

  private:
    bool IsStarting() const { return startTimer_.isActive(); }
    void Poll();
    void PollStart();
    void Fail(const std::string& error);

    std::string program_;
    std::string boardFolder_;
    std::optional<VirtualBoard> virtualBoard_;
    Board board_;
    QTimer timer_;
    QTimer startTimer_;
};
