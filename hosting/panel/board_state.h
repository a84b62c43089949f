#pragma once

#include <QByteArray>
#include <QColor>
#include <QString>

#include <map>
#include <vector>

// What a program does with a pin.
struct PinState {
    enum class Mode { In, Out, OpenDrain, Pwm, Adc };

    Mode mode = Mode::In;
    int value = 0;         // The level, 0 or 1.
    int duty = 0;          // Of PWM, 0 to 65535.
    double frequency = 0;  // Of PWM, in Hz.
    int analog = 0;        // What an ADC reads, 0 to 65535.

    static constexpr int kMax = 65535;
    // How bright a light at this pin is, from 0 to 1.
    double Brightness() const;
    bool operator==(const PinState&) const = default;
};

// Orders names of pins: those that are no numbers, such as "LED", before numbers.
struct PinOrder {
    bool operator()(const QString& a, const QString& b) const;
};

// The pins of the virtual board that the program uses, as the board reports them: one JSON object
// in each line. What is malformed, unknown or too much is ignored. [any]
class BoardState {
  public:
    using Pins = std::map<QString, PinState, PinOrder>;
    using Pixels = std::map<QString, std::vector<QColor>, PinOrder>;

    struct Change {
        enum class Kind { None, Pin, Pixels, Reset };
        Kind kind = Kind::None;
        QString pin;
    };

    // Applies a line and returns what it has changed.
    Change Apply(const QByteArray& line);

    const Pins& pins() const { return pins_; }
    // The NeoPixels at each pin.
    const Pixels& pixels() const { return pixels_; }
    // Of the board's own LED, from 0 to 1.
    double LedBrightness() const;

  private:
    Pins pins_;
    Pixels pixels_;
};

// The name of the board's own LED.
inline const QString kLedPin = QStringLiteral("LED");
