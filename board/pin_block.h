#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>

// The pins of the board: numbers 0 to 48, and the LED.
constexpr std::size_t kPinCount = 50;
constexpr std::size_t kLedPin = kPinCount - 1;
constexpr std::size_t kPixelBytes = 4096;  // of the pixels that one pin can drive

// Why the board was reset; the values of machine.reset_cause.
enum class ResetCause : std::uint8_t {
    PowerOn = 1,
    Hard = 2,
    Watchdog = 3,
    DeepSleep = 4,
    Soft = 5,
};

enum class PinMode : std::uint8_t { Unused, In, Out, OpenDrain, Pwm, Analog };

// A pin, as it lies in the memory that the interpreter shares. hardware.py has the same layout.
struct PinRecord {
    PinMode mode;
    std::uint8_t output;     // The level that the program has set.
    std::uint8_t drive;      // From outside: 0 nothing, 1 low, 2 high.
    std::uint8_t pull;       // 1 up, 2 down.
    std::uint8_t rising;     // The number of edges from outside, modulo 256.
    std::uint8_t falling;    // Likewise.
    std::uint8_t pixelSize;  // bytes
    std::uint8_t unused;
    std::uint16_t duty;  // 0 to 65535
    std::uint16_t analog;
    std::uint32_t frequency;   // Hz
    std::uint16_t pixelCount;  // 0 if there are no pixels.
    std::uint16_t unused2;

    bool operator==(const PinRecord&) const = default;
};
static_assert(sizeof(PinRecord) == 20);

// The level of a pin's line.
bool LevelOf(const PinRecord& pin);

// The memory that the board shares with its interpreters, one after the other: the program writes
// its pins without a system call, and the board reads them when somebody wants to know. A value
// that is read during a change may be mixed; the next one is right. Owned by the board and used on
// its thread.
class PinBlock {
  public:
    using Pins = std::array<PinRecord, kPinCount>;

    // The error is a sentence.
    static std::expected<PinBlock, std::string> Create();
    PinBlock(PinBlock&& other) noexcept;
    PinBlock& operator=(PinBlock&&) = delete;
    ~PinBlock();

    // To be inherited by an interpreter.
    int fd() const { return fd_; }

    // For a new interpreter: the state at power-on. Levels from outside remain.
    void Reset(ResetCause cause);
    // Changes with each reset, also when a program that is stopped resets its pins.
    unsigned resets() const { return resets_ + memory_->programResets; }

    Pins pins() const { return memory_->pins; }
    // The bytes of its pixels, and of unused ones.
    std::string_view pixels(std::size_t pin) const
    {
        return {memory_->pixels[pin].data(), kPixelBytes};
    }

    // Sets the level from outside; nullopt for none.
    void SetLevel(std::size_t pin, std::optional<bool> level);
    void SetAnalog(std::size_t pin, std::uint16_t value) { memory_->pins[pin].analog = value; }

    // Whether the program has timers or interrupts, and so must get SIGALRM when a pin changes.
    bool hasEvents() const { return memory_->hasEvents != 0; }
    // Makes the handler of SIGALRM raise KeyboardInterrupt.
    void RequestInterrupt() { memory_->interrupt = 1; }
    void CancelInterrupt() { memory_->interrupt = 0; }

  private:
    struct Memory {
        volatile std::uint8_t interrupt;
        volatile std::uint8_t hasEvents;
        volatile std::uint8_t programResets;
        ResetCause cause;
        std::array<std::uint8_t, 60> unused;
        Pins pins;
        std::array<std::uint8_t, 984> unused2;
        std::array<std::array<char, kPixelBytes>, kPinCount> pixels;
    };
    static_assert(offsetof(Memory, pixels) == 2048);

    PinBlock() = default;

    int fd_ = -1;
    Memory* memory_ = nullptr;
    unsigned resets_ = 0;
};
