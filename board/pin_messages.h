#pragma once

#include "pin_block.h"

#include <array>
#include <expected>
#include <string>
#include <string_view>

// The messages about pins: JSON objects, each on a line. docs/virtual-board.md describes them.

// A line for each pin and then one for the pixels of each pin; empty if it is not used.
using PinLines = std::array<std::string, 2 * kPinCount>;

// Describes the present state; only what has changed is formatted again.
class PinDescriptions {
  public:
    const PinLines& Update(const PinBlock& block);

  private:
    PinBlock::Pins pins_{};
    std::array<std::string, kPinCount> pixels_;  // Their bytes.
    PinLines lines_;
};

// Performs a client's message. The error is an answer to it.
std::expected<void, std::string> PerformPinMessage(std::string_view line, PinBlock& block);

// A message that reports an error.
std::string PinErrorLine(std::string_view error);

constexpr std::string_view kPinResetLine = "{\"reset\":true}\n";
