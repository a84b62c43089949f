#pragma once

// The host's plain font, in some size. A copyable value.
class BFont {
  public:
    // For the framework: in the host's own size.
    constexpr BFont() = default;

    // In the points of printing: 72 to an inch of the screen.
    void SetSize(double size) { size_ = size; }

    // For the framework. 0 is the host's own.
    double Size() const { return size_; }

  private:
    double size_ = 0;
};

// Lives for ever.
extern const BFont* const be_plain_font;
