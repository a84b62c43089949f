#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

// Output that waits until a text takes it, in blocks. The text keeps only its end. [ui]
class OutputBacklog {
  public:
    struct Size {
        std::size_t lines = 0, bytes = 0;
    };

    // `capacity` is what the text keeps of a long output.
    explicit OutputBacklog(Size capacity) : capacity_(capacity) {}

    void Append(std::string_view bytes);
    bool IsEmpty() const { return blocks_.empty(); }
    // Removes the oldest block, of at most 64 KiB. There must be one.
    std::string Take();
    void Clear();

    // Whether so much waits that the text would soon drop most of it.
    bool IsExcessive() const;
    // Removes the oldest block if the others suffice to replace the whole text.
    std::optional<std::string> TakeSuperfluous();

  private:
    struct Block {
        std::string bytes;
        std::size_t lines = 0;
    };

    Size capacity_;
    std::deque<Block> blocks_;
    Size size_;
};
