#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

// Output that waits until a text takes it, in blocks, and what is to be done in between. The text
// keeps only the output's end. [ui]
class OutputBacklog {
  public:
    struct Size {
        std::size_t lines = 0, bytes = 0;
    };
    // Output of at most 64 KiB, or else an action.
    struct Block {
        std::string bytes;
        std::size_t lines = 0;
        std::function<void()> action;
    };

    // `capacity` is what the text keeps of a long output.
    explicit OutputBacklog(Size capacity) : capacity_(capacity) {}

    void Append(std::string_view bytes);
    void AppendAction(std::function<void()> action);
    bool IsEmpty() const { return blocks_.empty(); }
    // Removes the oldest block. There must be one.
    Block Take();

    // Whether so much waits that the text would soon drop most of it.
    bool IsExcessive() const;
    // Removes the oldest block if the others suffice to replace the whole text.
    std::optional<Block> TakeSuperfluous();

  private:
    Size capacity_;
    std::deque<Block> blocks_;
    Size size_;
};
