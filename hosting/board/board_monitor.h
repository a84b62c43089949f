#pragma once

#include "board_ports.h"
#include "virtual_board.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>
#include <optional>
#include <string>
#include <vector>

// Monitors which board the tool uses, and lets the user choose it: the virtual board if it is
// attached, otherwise the real one that was chosen, otherwise the first real one. A virtual board
// that the environment names counts as attached while its link exists. The tool's launcher is told
// by the environment, so that a command never goes to another board. [ui]
class BoardMonitor final : public QObject {
    Q_OBJECT

  public:
    enum class Kind {
        None,
        Missing,  // The board that was chosen is not attached.
        Real,
        Virtual
    };

    struct Board {
        Kind kind = Kind::None;
        // Of a real board; the last known one if it is missing. Its node is the link of a virtual
        // board that the environment names.
        BoardPort port;

        bool IsAttached() const { return kind == Kind::Real || kind == Kind::Virtual; }
        // Whether both are the same board, at whatever port.
        bool IsSame(const Board& other) const;
        bool operator==(const Board&) const = default;
    };

    using FindPorts = std::function<std::vector<BoardPort>()>;

    // `program` is the virtual board's program, `boardFolder` contains its files.
    BoardMonitor(std::string program, std::string boardFolder, FindPorts findPorts,
                 QObject* parent);
    ~BoardMonitor() override;

    const Board& board() const { return board_; }
    const std::vector<BoardPort>& ports() const { return ports_; }
    const std::string& boardFolder() const { return boardFolder_; }

    // The chosen board: a real one, or none in particular. Until the user chooses, one that the
    // environment names takes precedence over the choice of an earlier session.
    const std::optional<BoardPort>& choice() const { return choice_; }
    bool isChosenByEnvironment() const { return isChosenByEnvironment_; }
    // What the user chose in this or an earlier session, to be kept for the next one.
    const std::optional<BoardPort>& userChoice() const { return userChoice_; }
    // Detaches the virtual board.
    void Choose(std::optional<BoardPort> port);
    // What the user chose in an earlier session. The virtual board remains attached.
    void RestoreChoice(BoardPort port);

    // The virtual board becomes the board when it is ready. If it cannot be started, Failed is
    // emitted.
    void AttachVirtualBoard();
    // True also while the virtual board is starting.
    bool HasVirtualBoard() const { return virtualBoard_ || board_.kind == Kind::Virtual; }
    // Simulates unplugging the board.
    void DetachVirtualBoard();

    // The socket of the virtual board's pins; empty while it is not the board.
    std::string pinsPath() const;

    // The firmware of the board, once it is known; empty until then.
    const QString& firmware() const { return firmware_; }
    void SetFirmware(const QString& firmware);

  Q_SIGNALS:
    void Changed();
    // Several real boards are attached, and the user has chosen none. Emitted once.
    void ChoiceNeeded();
    // A message for the user.
    void Failed(const QString& error);

  private:
    bool IsStarting() const { return startTimer_.isActive(); }
    void Poll();
    void PollStart();
    Board FindBoard();
    void NameBoard();
    void Fail(const std::string& error);

    std::string program_;
    std::string boardFolder_;
    FindPorts findPorts_;
    std::vector<BoardPort> ports_;
    std::optional<BoardPort> choice_;
    std::optional<BoardPort> userChoice_;
    bool isChosenByEnvironment_ = false;
    bool hasAsked_ = false;
    bool isBoardNamed_ = false;  // In the environment.
    std::optional<VirtualBoard> virtualBoard_;
    Board board_;
    QString firmware_;
    QTimer timer_;
    QTimer startTimer_;
};
