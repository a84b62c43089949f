#pragma once

#include <string_view>

// How programs want a part of their output to look. [any]
struct TextStyle {
    static constexpr int kColors = 16;

    int color = -1;  // In the order of the escape sequences, bright ones from 8; -1 for none.
    bool isBold = false;

    bool operator==(const TextStyle&) const = default;
};

// The style after a control sequence "ESC [ parameters m". What a worksheet does not show, such as
// backgrounds and colours beyond the 16 basic ones, is ignored.
TextStyle ApplyParameters(TextStyle style, std::string_view parameters);
