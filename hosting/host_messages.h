#pragma once

#include <QString>

#include <functional>
#include <vector>

// A button of a message.
struct MessageChoice {
    QString label;
    std::function<void()> action;
};

// The host's own way of showing messages, which must not take the focus. [ui]
class HostMessages {
  public:
    // A question replaces the previous one of the same topic.
    enum class Topic { Upload, Board };

    virtual ~HostMessages() = default;

    // Shows a message until the user dismisses it.
    virtual void Report(const QString& message) = 0;
    // Shows a question until the user answers it by one of the choices, or it is withdrawn.
    virtual void Ask(Topic topic, const QString& question,
                     const std::vector<MessageChoice>& choices) = 0;
    virtual void Withdraw(Topic topic) = 0;
};
