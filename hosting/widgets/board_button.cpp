#include "board_button.h"

#include "action_icons.h"
#include "board_monitor.h"
#include "painted_icon_engine.h"
#include "pins_client.h"

#include <QPainter>
#include <QStyle>

#include <chrono>
#include <utility>

namespace {

// Assistive technology hears of the LED when it has not changed for this long.
constexpr std::chrono::seconds kRest{1};
// The LED is small: showing each of many changes costs more than it tells.
constexpr std::chrono::milliseconds kUpdateInterval{50};

// More than the space around the icon.
constexpr int kIconSpace = 16;  // pixels

// The icon of the board with its LED.
class BoardIconEngine final : public PaintedIconEngine {
  public:
    explicit BoardIconEngine(std::shared_ptr<const double> brightness)
        : board_(ActionIcon(Action::Board)), brightness_(std::move(brightness))
    {
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        board_.paint(painter, rect, Qt::AlignCenter, mode, state);
        if (*brightness_ <= 0) {
            return;
        }
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setOpacity(*brightness_);
        painter->setPen(QPen(QColor(0x14, 0x7a, 0x3d), rect.width() / 16.0));
        painter->setBrush(QColor(0x3d, 0xe0, 0x7f));
        const double radius = rect.width() * 0.17;
        painter->drawEllipse(QRectF(rect).center(), radius, radius);
        painter->restore();
    }

    QIconEngine* clone() const override { return new BoardIconEngine(brightness_); }

  private:
    QIcon board_;
    std::shared_ptr<const double> brightness_;
};

}  // namespace

BoardButton::BoardButton(const BoardMonitor& board, QMenu* menu, QWidget* parent)
    : QToolButton(parent), brightness_(std::make_shared<double>(0))
{
    setObjectName("board");
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus);
    setPopupMode(QToolButton::InstantPopup);
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setIcon(QIcon(new BoardIconEngine(brightness_)));
    setMenu(menu);
    connect(&board, &BoardMonitor::Changed, this, [this, &board] { ShowBoard(board); });
    ShowBoard(board);
    updateTimer_.setSingleShot(true);
    updateTimer_.setInterval(kUpdateInterval);
    connect(&updateTimer_, &QTimer::timeout, this, [this] {
        const QRect icon(0, 0, iconSize().width() + kIconSpace, height());
        update(QStyle::visualRect(layoutDirection(), rect(), icon));
    });
    restTimer_.setSingleShot(true);
    restTimer_.setInterval(kRest);
}

void BoardButton::ShowLedOf(const PinsClient& pins)
{
    connect(&pins, &PinsClient::Changed, this, [this, &pins] { ShowLed(pins); });
    connect(&pins, &PinsClient::BoardChanged, this, [this] { setAccessibleDescription({}); });
    connect(&restTimer_, &QTimer::timeout, this, [this, &pins] {
        const QString text = *brightness_ > 0 ? tr("The LED is on") : tr("The LED is off");
        setAccessibleDescription(pins.hasBoard() ? text : QString());
    });
}

void BoardButton::ShowLed(const PinsClient& pins)
{
    const double brightness = pins.state().LedBrightness();
    if (std::exchange(*brightness_, brightness) == brightness) {
        return;
    }
    if (!updateTimer_.isActive()) {
        updateTimer_.start();
    }
    if (!restTimer_.isActive()) {
        setAccessibleDescription({});
    }
    restTimer_.start();
}

void BoardButton::ShowBoard(const BoardMonitor& monitor)
{
    using Kind = BoardMonitor::Kind;
    const auto& [kind, port] = monitor.board();
    const QString node = QString::fromStdString(port.node);
    const QString text = kind == Kind::Real      ? tr("Board on %1").arg(node)
                         : kind == Kind::Virtual ? tr("Virtual board")
                         : kind == Kind::Missing ? tr("Board %1 is not attached").arg(node)
                                                 : tr("No board");
    QStringList tip{port.node.empty() ? text : DescribePort(port)};
    if (!monitor.firmware().isEmpty()) {
        tip.append(monitor.firmware());
    }
    setText(QString(text).replace('&', "&&"));
    setAccessibleName(text);
    setToolTip(tip.join('\n'));
}
