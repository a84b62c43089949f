#pragma once

#include "board_state.h"

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <memory>
#include <optional>
#include <string>

class BoardMonitor;
class QJsonValue;

// A connection to the pins of a virtual board: it reports what the program does with them, and
// drives the inputs. It connects again when the connection breaks, until nobody has answered for
// some seconds. [ui]
class PinsClient final : public QObject {
    Q_OBJECT

  public:
    explicit PinsClient(QObject* parent = nullptr);
    ~PinsClient() override;

    // Connects whenever the virtual board is attached. `board` must outlive this object.
    void Follow(const BoardMonitor& board);
    // The path of the board's socket; empty for no board.
    void SetPath(const std::string& path);
    bool hasBoard() const { return !path_.empty(); }
    // Why the board's pins cannot be reached, as a message for the user; empty while they can, or
    // could be soon.
    const QString& problem() const { return problem_; }
    const BoardState& state() const { return state_; }

    // Drives an input from outside: with a level, or with none, so that its pull resistor
    // determines the level. Without a connection these do nothing.
    void SetLevel(const QString& pin, std::optional<bool> isHigh);
    void SetAnalog(const QString& pin, int value);  // 0 to PinState::kMax

  Q_SIGNALS:
    // A board was attached or detached, or its pins cannot be reached.
    void BoardChanged();
    void Changed(const BoardState::Change& change);

  private:
    void Connect();
    void TryLater();
    void GiveUp(const QString& reason);
    void Disconnect();
    void Break();
    void Read();
    void Send(const QString& pin, const char* key, const QJsonValue& value);
    void Reset();

    std::string path_;
    int fd_ = -1;
    std::unique_ptr<QSocketNotifier> notifier_;
    QTimer retryTimer_;
    int attempts_ = 0;  // To connect since the board sent something.
    QString problem_;
    QByteArray received_;  // The start of a line.
    BoardState state_;
};
