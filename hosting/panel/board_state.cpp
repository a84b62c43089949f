#include "board_state.h"

#include "qt_version.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>

namespace {

using Kind = BoardState::Change::Kind;
using Mode = PinState::Mode;

// Far more than any board has.
constexpr std::size_t kMaxPins = 128;
constexpr std::size_t kMaxStrips = 16;
constexpr int kMaxPixels = 4096;
constexpr int kMaxName = 16;

constexpr std::array<std::pair<const char*, Mode>, 5> kModes{{{"in", Mode::In},
                                                              {"out", Mode::Out},
                                                              {"open_drain", Mode::OpenDrain},
                                                              {"pwm", Mode::Pwm},
                                                              {"adc", Mode::Adc}}};

std::optional<Mode> ParseMode(const QString& name)
{
    const auto* const found = std::ranges::find_if(
        kModes, [&](const auto& mode) { return name == QLatin1String(mode.first); });
    return found != kModes.end() ? std::optional(found->second) : std::nullopt;
}

int IntIn(const QJsonValue& value, int max)
{
    const double number = value.isBool() ? (value.toBool() ? 1 : 0) : value.toDouble();
    return static_cast<int>(std::clamp(number, 0.0, static_cast<double>(max)));
}

std::vector<QColor> ParsePixels(const QJsonArray& values)
{
    std::vector<QColor> pixels;
    const auto count = std::min<QtSize>(values.size(), kMaxPixels);
    pixels.reserve(static_cast<std::size_t>(count));
    for (QtSize i = 0; i < count; ++i) {
        const auto rgb = values.at(i).toArray();
        const int white = IntIn(rgb.at(3), 255);  // Some have a white light, too.
        const auto light = [&](int color) {
            return std::min(IntIn(rgb.at(color), 255) + white, 255);
        };
        pixels.emplace_back(light(0), light(1), light(2));
    }
    return pixels;
}

bool IsName(const QString& name)
{
    return !name.isEmpty() && name.size() <= kMaxName;
}

// Sets an element, and returns whether that has changed the map.
template <typename Map, typename Value>
bool Set(Map& map, const QString& name, Value value, std::size_t maxCount)
{
    const auto found = map.find(name);
    if (found == map.end()) {
        return map.size() < maxCount && map.emplace(name, std::move(value)).second;
    }
    const bool isNew = found->second != value;
    found->second = std::move(value);
    return isNew;
}

}  // namespace

double PinState::Brightness() const
{
    return mode == Mode::Pwm ? static_cast<double>(duty) / kMax : value;
}

bool PinOrder::operator()(const QString& a, const QString& b) const
{
    const auto key = [](const QString& name) {
        bool isNumber = false;
        const int number = name.toInt(&isNumber);
        return std::tuple(isNumber, number, name);
    };
    return key(a) < key(b);
}

BoardState::Change BoardState::Apply(const QByteArray& line)
{
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    if (object.value("reset").toBool()) {
        pins_.clear();
        pixels_.clear();
        return {Kind::Reset, {}};
    }
    if (const auto name = object.value("neopixel").toString(); IsName(name)) {
        const bool isNew =
            Set(pixels_, name, ParsePixels(object.value("pixels").toArray()), kMaxStrips);
        return isNew ? Change{Kind::Pixels, name} : Change();
    }
    const auto name = object.value("pin").toString();
    const auto mode = ParseMode(object.value("mode").toString());
    if (!IsName(name) || !mode) {
        return {};
    }
    const double frequency = std::clamp(object.value("freq").toDouble(), 0.0, 1e9);
    const PinState state{*mode, IntIn(object.value("value"), 1),
                         IntIn(object.value("duty"), PinState::kMax), frequency,
                         IntIn(object.value("u16"), PinState::kMax)};
    return Set(pins_, name, state, kMaxPins) ? Change{Kind::Pin, name} : Change();
}

double BoardState::LedBrightness() const
{
    const auto led = pins_.find(kLedPin);
    return led != pins_.end() ? led->second.Brightness() : 0;
}
