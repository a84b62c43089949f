#include "board_panel.h"

#include "board_picture.h"
#include "pin_row.h"
#include "pins_client.h"
#include "pixel_strip.h"

#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <iterator>

namespace {

using Kind = BoardState::Change::Kind;

// The board is reset before each run. Parts that the next program uses again remain, with the
// focus.
constexpr std::chrono::milliseconds kRemoveDelay{2000};

constexpr int kSpacing = 8;

QVBoxLayout* AddColumn(QVBoxLayout& column)
{
    auto* const inner = new QVBoxLayout;
    inner->setSpacing(kSpacing);
    column.addLayout(inner);
    return inner;
}

}  // namespace

BoardPanel::BoardPanel(PinsClient& pins, QWidget* parent) : QWidget(parent), pins_(pins)
{
    MakeContents();
    removeTimer_.setSingleShot(true);
    removeTimer_.setInterval(kRemoveDelay);
    connect(&removeTimer_, &QTimer::timeout, this, [this] { RemoveUnused(); });
    connect(&pins_, &PinsClient::BoardChanged, this, &BoardPanel::ShowBoard);
    connect(&pins_, &PinsClient::Changed, this, &BoardPanel::Show);
    for (const auto& [pin, state] : pins_.state().pins()) {
        ShowPin(pin, state);
    }
    for (const auto& [pin, pixels] : pins_.state().pixels()) {
        ShowPixels(pin);
    }
    ShowBoard();
}

void BoardPanel::MakeContents()
{
    auto* const contents = new QWidget;
    auto* const column = new QVBoxLayout(contents);
    column->setContentsMargins(12, 12, 12, 12);
    column->setSpacing(kSpacing);
    picture_ = new BoardPicture(contents);
    column->addWidget(picture_);
    strips_ = AddColumn(*column);
    rows_ = AddColumn(*column);
    hint_ = new QLabel(contents);
    hint_->setWordWrap(true);
    hint_->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    column->addWidget(hint_);
    attach_ = new QPushButton(tr("Attach Virtual Board"), contents);
    column->addWidget(attach_, 0, Qt::AlignHCenter);
    column->addStretch(1);

    auto* const scroll = new QScrollArea(this);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidget(contents);
    auto* const outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(scroll);
    setMinimumWidth(260);
    connect(attach_, &QPushButton::clicked, this, &BoardPanel::AttachRequested);
}

void BoardPanel::ShowBoard()
{
    picture_->setEnabled(pins_.hasBoard() && pins_.problem().isEmpty());
    attach_->setVisible(!pins_.hasBoard());
    if (!pins_.hasBoard()) {
        RemoveUnused();
    }
    ShowHint();
}

void BoardPanel::ShowHint()
{
    const bool isEmpty = rowOf_.empty() && stripOf_.empty();
    hint_->setText(!pins_.problem().isEmpty() ? pins_.problem()
                   : pins_.hasBoard()
                       ? tr("Run a program that uses the pins, such as examples/blink.py. Its LED, "
                            "NeoPixels and pins appear here, and you can press its buttons.")
                       : tr("The virtual board shows its LED and its pins here. A real board "
                            "cannot show them."));
    hint_->setVisible(isEmpty);
}

void BoardPanel::Show(const BoardState::Change& change)
{
    switch (change.kind) {
        case Kind::Pin: return ShowPin(change.pin, pins_.state().pins().at(change.pin));
        case Kind::Pixels: return ShowPixels(change.pin);
        case Kind::Reset: return ShowReset();
        case Kind::None: return;
    }
}

void BoardPanel::ShowReset()
{
    picture_->Clear();
    for (const auto& [pin, row] : rowOf_) {
        row->SetUsed(false);
    }
    for (const auto& [pin, strip] : stripOf_) {
        strip->SetUsed(false);
    }
    removeTimer_.start();
}

// New parts are inserted in the order of the pins.
template <typename Part>
Part* BoardPanel::PartFor(Parts<Part>& parts, QVBoxLayout& column, const QString& pin)
{
    const auto [place, isNew] = parts.try_emplace(pin, nullptr);
    if (isNew) {
        place->second = new Part(pin, picture_->parentWidget());
        column.insertWidget(static_cast<int>(std::distance(parts.begin(), place)), place->second);
        ShowHint();
    }
    return place->second;
}

void BoardPanel::ShowPin(const QString& pin, const PinState& state)
{
    picture_->ShowPin(pin, state);
    if (stripOf_.count(pin) != 0) {
        return;  // Its level is that of the data for the NeoPixels.
    }
    const auto count = rowOf_.size();
    auto* const row = PartFor(rowOf_, *rows_, pin);
    const bool isOther = rowOf_.size() != count || row->state().mode != state.mode;
    if (rowOf_.size() != count) {
        connect(row, &PinRow::LevelDriven, &pins_, &PinsClient::SetLevel);
        connect(row, &PinRow::AnalogDriven, &pins_, &PinsClient::SetAnalog);
    }
    row->Show(state);
    if (isOther) {
        ShowButton();
    }
}

void BoardPanel::ShowPixels(const QString& pin)
{
    PartFor(stripOf_, *strips_, pin)->Show(pins_.state().pixels().at(pin));
    if (const auto row = rowOf_.find(pin); row != rowOf_.end()) {
        delete row->second;
        rowOf_.erase(row);
        ShowButton();
    }
}

// The button on the board is that of the first input.
void BoardPanel::ShowButton()
{
    const auto input = std::ranges::find_if(
        rowOf_, [](const auto& row) { return row.second->button() != nullptr; });
    picture_->SetOtherButton(input != rowOf_.end() ? input->second->button() : nullptr);
}

template <typename Part, typename States>
void BoardPanel::RemoveUnused(Parts<Part>& parts, const States& states)
{
    std::erase_if(parts, [&](const auto& part) {
        const bool isUnused = states.find(part.first) == states.end();
        if (isUnused) {
            delete part.second;
        }
        return isUnused;
    });
}

void BoardPanel::RemoveUnused()
{
    RemoveUnused(rowOf_, pins_.state().pins());
    RemoveUnused(stripOf_, pins_.state().pixels());
    ShowButton();
    ShowHint();
}
