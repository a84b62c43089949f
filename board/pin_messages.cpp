#include "pin_messages.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <optional>

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kLedOnPico = 25;
constexpr int kMaxAnalog = 65535;

std::string NameOf(std::size_t pin)
{
    return pin == kLedPin ? "LED" : std::to_string(pin);
}

std::optional<std::size_t> PinNamed(const std::string& name)
{
    if (name == "LED") {
        return kLedPin;
    }
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    const bool isNumber = error == std::errc() && end == name.data() + name.size();
    return isNumber && number < kLedPin && name == NameOf(number) ? std::optional(number)
                                                                  : std::nullopt;
}

Json DescribePin(std::size_t number, const PinRecord& pin)
{
    Json line{{"pin", NameOf(number)}};
    switch (pin.mode) {
        case PinMode::Pwm:
            line.update({{"mode", "pwm"}, {"duty", pin.duty}, {"freq", pin.frequency}});
            break;
        case PinMode::Analog: line.update({{"mode", "adc"}, {"u16", pin.analog}}); break;
        case PinMode::Out: line["mode"] = "out"; break;
        case PinMode::OpenDrain: line["mode"] = "open_drain"; break;
        default: line["mode"] = "in"; break;
    }
    if (pin.mode != PinMode::Pwm && pin.mode != PinMode::Analog) {
        line["value"] = LevelOf(pin) ? 1 : 0;
    }
    return line;
}

std::size_t PixelSize(const PinRecord& pin)
{
    return std::clamp<std::size_t>(pin.pixelSize, 3, 4);
}

std::string_view PixelBytes(const PinBlock& block, std::size_t number, const PinRecord& pin)
{
    const std::size_t size = pin.pixelCount * PixelSize(pin);
    return block.pixels(number).substr(0, size);
}

// Most strips receive green, red and blue, and white if there is a fourth byte.
Json DescribePixels(std::size_t number, const PinRecord& pin, std::string_view bytes)
{
    Json pixels = Json::array();
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const std::size_t size = PixelSize(pin);
    for (std::size_t i = 0; i + size <= bytes.size(); i += size) {
        pixels.push_back({at(i + 1), at(i), at(i + 2)});
        if (size == 4) {
            pixels.back().push_back(at(i + 3));
        }
    }
    return {{"neopixel", NameOf(number)}, {"pixels", std::move(pixels)}};
}

// On boards whose LED is a numbered pin, programs use its number.
void ConnectLed(PinBlock::Pins& pins)
{
    const auto& source = pins[kLedOnPico];
    const bool isDriven = source.mode == PinMode::Out || source.mode == PinMode::Pwm;
    if (pins[kLedPin].mode == PinMode::Unused && isDriven) {
        pins[kLedPin] = source;
        pins[kLedPin].pixelCount = 0;
    }
}

std::expected<void, std::string> SetLevel(std::size_t pin, const Json& value, PinBlock& block)
{
    if (value.is_null()) {
        block.SetLevel(pin, std::nullopt);
    } else if (value.is_boolean() || value == 0 || value == 1) {
        block.SetLevel(pin, value != false && value != 0);
    } else {
        return std::unexpected("value is not 0, 1 or null");
    }
    return {};
}

std::expected<void, std::string> SetAnalog(std::size_t pin, const Json& value, PinBlock& block)
{
    if (!value.is_number_integer() || value < 0 || value > kMaxAnalog) {
        return std::unexpected("u16 is not a number from 0 to 65535");
    }
    block.SetAnalog(pin, value.get<std::uint16_t>());
    return {};
}

}  // namespace

const PinLines& PinDescriptions::Update(const PinBlock& block)
{
    PinBlock::Pins pins = block.pins();
    ConnectLed(pins);
    for (std::size_t i = 0; i < pins.size(); ++i) {
        const PinRecord& pin = pins[i];
        if (pin != pins_[i]) {
            const bool isUsed = pin.mode != PinMode::Unused;
            lines_[i] = isUsed ? DescribePin(i, pin).dump() + "\n" : "";
        }
        const std::string_view bytes = PixelBytes(block, i, pin);
        if (bytes != pixels_[i] || pin.pixelSize != pins_[i].pixelSize) {
            pixels_[i] = bytes;
            const bool hasPixels = !bytes.empty();
            lines_[kPinCount + i] =
                hasPixels ? DescribePixels(i, pin, pixels_[i]).dump() + "\n" : "";
        }
    }
    pins_ = pins;
    return lines_;
}

std::expected<void, std::string> PerformPinMessage(std::string_view line, PinBlock& block)
{
    const Json message = Json::parse(line, nullptr, false);
    if (!message.is_object()) {
        return std::unexpected("not a JSON object");
    }
    const auto name = message.find("pin");
    const auto pin = name == message.end()        ? std::nullopt
                     : name->is_string()          ? PinNamed(*name)
                     : name->is_number_unsigned() ? PinNamed(name->dump())
                                                  : std::nullopt;
    if (!pin) {
        return std::unexpected("pin is not the name of a pin");
    }
    const auto value = message.find("value");
    const auto analog = message.find("u16");
    if (value == message.end() && analog == message.end()) {
        return std::unexpected("neither value nor u16");
    }
    if (value != message.end()) {
        if (const auto set = SetLevel(*pin, *value, block); !set) {
            return set;
        }
    }
    return analog == message.end() ? std::expected<void, std::string>()
                                   : SetAnalog(*pin, *analog, block);
}

std::string PinErrorLine(std::string_view error)
{
    return Json{{"error", error}}.dump() + "\n";
}
