#pragma once

#include "virtual_board.h"

#include <QObject>
#include <QTimer>

#include <expected>
#include <optional>
#include <string>

// Which board the tool would choose: the virtual one when it is attached, else a real one. Used on
// the user-interface thread.
class BoardMonitor final : public QObject {
    Q_OBJECT

  public:
    enum class Kind { None, Real, Virtual };

    struct Board {
        Kind kind = Kind::None;
        std::string node;  // A real board's.
        bool operator==(const Board&) const = default;
    };

    // `program` is the virtual board's, `boardFolder` where it keeps its files.
    BoardMonitor(std::string program, std::string boardFolder, QObject* parent);

    const Board& board() const { return board_; }
    const std::string& boardFolder() const { return boardFolder_; }

    // Waits until the virtual board is ready. The error is a sentence.
    std::expected<void, std::string> AttachVirtualBoard();
    // As if its plug was pulled.
    void UnplugVirtualBoard();

    // The first node of a board on USB, as far as its name tells; empty when there is none.
    static std::string FindRealBoard();

  Q_SIGNALS:
    void Changed();

  private:
    void Look();

    std::string program_;
    std::string boardFolder_;
    std::optional<VirtualBoard> virtualBoard_;
    Board board_;
    QTimer timer_;
};
