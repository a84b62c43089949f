#pragma once

#include "virtual_board.h"

#include <QObject>
#include <QString>
#include <QTimer>

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

    // Becomes the board as soon as it is ready, or Failed is emitted.
    void AttachVirtualBoard();
    // Also while it starts.
    bool HasVirtualBoard() const { return virtualBoard_.has_value(); }
    // As if its plug was pulled.
    void UnplugVirtualBoard();

    // The first node of a board on USB, as far as its name tells; empty when there is none.
    static std::string FindRealBoard();

  Q_SIGNALS:
    void Changed();
    // A sentence for the user.
    void Failed(const QString& error);

  private:
    bool IsStarting() const { return startTimer_.isActive(); }
    void Look();
    void LookAtStart();
    void Fail(const std::string& error);

    std::string program_;
    std::string boardFolder_;
    std::optional<VirtualBoard> virtualBoard_;
    Board board_;
    QTimer timer_;
    QTimer startTimer_;
};
