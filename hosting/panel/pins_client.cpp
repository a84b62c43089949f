#include "pins_client.h"

#include "board_monitor.h"
#include "descriptors.h"
#include "local_socket.h"
#include "path_text.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <chrono>
#include <utility>

namespace {

constexpr std::chrono::milliseconds kRetryInterval{250};
constexpr int kMaxAttempts = 40;   // Ten seconds.
constexpr int kMaxLine = 1 << 20;  // bytes

}  // namespace

PinsClient::PinsClient(QObject* parent) : QObject(parent)
{
    retryTimer_.setSingleShot(true);
    retryTimer_.setInterval(kRetryInterval);
    connect(&retryTimer_, &QTimer::timeout, this, &PinsClient::Connect);
}

PinsClient::~PinsClient()
{
    Disconnect();
}

void PinsClient::Follow(const BoardMonitor& board)
{
    connect(&board, &BoardMonitor::Changed, this, [this, &board] { SetPath(board.pinsPath()); });
    SetPath(board.pinsPath());
}

void PinsClient::SetPath(const std::string& path)
{
    if (std::exchange(path_, path) == path) {
        return;
    }
    Disconnect();
    attempts_ = 0;
    problem_.clear();
    Reset();
    Q_EMIT BoardChanged();
    if (hasBoard()) {
        Connect();
    }
}

void PinsClient::Connect()
{
    fd_ = ConnectToLocalSocket(path_);
    if (fd_ < 0) {
        return TryLater();
    }
    notifier_ = std::make_unique<QSocketNotifier>(fd_, QSocketNotifier::Read);
    connect(notifier_.get(), &QSocketNotifier::activated, this, [this] { Read(); });
}

void PinsClient::TryLater()
{
    if (!CanBeSocketPath(path_)) {
        GiveUp(tr("the path %1 is too long for a socket"));
    } else if (++attempts_ >= kMaxAttempts) {
        GiveUp(tr("they cannot be reached at %1"));
    } else {
        retryTimer_.start();
    }
}

void PinsClient::GiveUp(const QString& reason)
{
    problem_ = tr("The pins of this virtual board cannot be shown: %1.")
                   .arg(reason.arg(PathToText(path_)));
    Q_EMIT BoardChanged();
}

void PinsClient::Disconnect()
{
    retryTimer_.stop();
    if (notifier_) {
        // It may be the one that reports the end.
        notifier_->setEnabled(false);
        notifier_.release()->deleteLater();
    }
    CloseDescriptor(std::exchange(fd_, -1));
    received_.clear();
}

// The board has gone, or does not read what is sent.
void PinsClient::Break()
{
    Disconnect();
    Reset();
    TryLater();
}

void PinsClient::Reset()
{
    Q_EMIT Changed(state_.Apply(R"({"reset":true})"));
}

void PinsClient::Read()
{
    const std::string bytes = ReadAvailable(fd_);
    received_.append(bytes.data(), static_cast<int>(bytes.size()));
    if (bytes.empty() || (received_.size() > kMaxLine && !received_.contains('\n'))) {
        return Break();
    }
    attempts_ = 0;
    const auto end = received_.lastIndexOf('\n') + 1;
    const auto lines = received_.left(end).split('\n');
    received_.remove(0, end);
    for (const auto& line : lines) {
        if (fd_ < 0) {
            return;  // What the last change caused could not be sent.
        }
        const auto change = state_.Apply(line);
        if (change.kind != BoardState::Change::Kind::None) {
            Q_EMIT Changed(change);
        }
    }
}

void PinsClient::SetLevel(const QString& pin, std::optional<bool> isHigh)
{
    Send(pin, "value", isHigh ? QJsonValue(*isHigh ? 1 : 0) : QJsonValue());
}

void PinsClient::SetAnalog(const QString& pin, int value)
{
    Send(pin, "u16", value);
}

void PinsClient::Send(const QString& pin, const char* key, const QJsonValue& value)
{
    const QJsonObject object{{"pin", pin}, {QLatin1String(key), value}};
    const auto line = QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
    if (fd_ >= 0 && !SendToSocket(fd_, {line.constData(), static_cast<std::size_t>(line.size())})) {
        Break();
    }
}
