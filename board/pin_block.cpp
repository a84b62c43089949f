#include "pin_block.h"

#include "descriptors.h"

#include <sys/mman.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace {

constexpr std::uint16_t kFloatingAnalog = 32768;  // Half of the range.
constexpr std::uint8_t kLow = 1;
constexpr std::uint8_t kHigh = 2;
constexpr std::uint8_t kPullUp = 1;

}  // namespace

bool LevelOf(const PinRecord& pin)
{
    const bool isOpenDrain = pin.mode == PinMode::OpenDrain;
    if (pin.mode == PinMode::Out || (isOpenDrain && pin.output == 0)) {
        return pin.output != 0;
    }
    return pin.drive != 0 ? pin.drive == kHigh : isOpenDrain || pin.pull == kPullUp;
}

std::expected<PinBlock, std::string> PinBlock::Create()
{
    PinBlock block;
    block.fd_ = MakeSharedMemory(sizeof(Memory));
    void* memory = mmap(nullptr, sizeof(Memory), PROT_READ | PROT_WRITE, MAP_SHARED, block.fd_, 0);
    if (memory == MAP_FAILED) {
        return std::unexpected(std::string("cannot share memory: ") + std::strerror(errno));
    }
    block.memory_ = static_cast<Memory*>(memory);
    for (auto& pin : block.memory_->pins) {
        pin.analog = kFloatingAnalog;
    }
    return block;
}

PinBlock::PinBlock(PinBlock&& other) noexcept
    : fd_(std::exchange(other.fd_, -1)),
      memory_(std::exchange(other.memory_, nullptr)),
      resets_(other.resets_)
{
}

PinBlock::~PinBlock()
{
    if (memory_ != nullptr) {
        munmap(memory_, sizeof(Memory));
    }
    CloseDescriptor(fd_);
}

void PinBlock::Reset(ResetCause cause)
{
    memory_->cause = cause;
    memory_->interrupt = 0;
    memory_->hasEvents = 0;
    for (auto& pin : memory_->pins) {
        const PinRecord before = pin;
        pin = {};
        pin.drive = before.drive;
        pin.analog = before.analog;
    }
    ++resets_;
}

void PinBlock::SetLevel(std::size_t pin, std::optional<bool> level)
{
    auto& record = memory_->pins[pin];
    const bool before = LevelOf(record);
    record.drive = !level ? 0 : *level ? kHigh : kLow;
    const bool after = LevelOf(record);
    if (after != before) {
        ++(after ? record.rising : record.falling);
    }
}
