#pragma once

// The host's plain font at a given size. A copyable value. [any]
class BFont {
  public:
    // For the framework only: the font at the host's default size.
    constexpr BFont() = default;

    // The size is in typographic points, 72 to an inch of the screen.
    void SetSize(double size) { size_ = size; }

    // For the framework only. 0 means the host's default size.
    double Size() const { return size_; }

  private:
    double size_ = 0;
};

// The host's plain font at its default size. It is never destroyed.
extern const BFont* const be_plain_font;
