#pragma once

#include <string_view>

// The view that shows the output of commands. Texts are UTF-8 (see OutputText). [ui]
class OutputView {
  public:
    virtual ~OutputView() = default;

    virtual void Append(std::string_view utf8) = 0;
    // Appends lines, beginning with a new one.
    virtual void AppendLines(std::string_view utf8) = 0;
    // A command starts, and its output will be appended.
    virtual void BeginCommand() = 0;
    virtual void EndCommand() = 0;
    // Scrolls to the end, and follows it.
    virtual void FollowEnd() = 0;
};
