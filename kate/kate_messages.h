#pragma once

#include "host_messages.h"

#include <QPointer>

#include <functional>
#include <map>

namespace KTextEditor {
class MainWindow;
class Message;
}  // namespace KTextEditor

class OutputView;

// Shows messages above the front document, or in the output of commands if there is none. [ui]
class KateMessages final : public HostMessages {
  public:
    // `window` returns the front window, or null. `output` must outlive this object.
    KateMessages(std::function<KTextEditor::MainWindow*()> window, OutputView& output);
    ~KateMessages() override;

    void Report(const QString& message) override;
    void Ask(Topic topic, const QString& question,
             const std::vector<MessageChoice>& choices) override;
    void Withdraw(Topic topic) override;

  private:
    void Show(KTextEditor::Message* message, const QString& text) const;

    std::function<KTextEditor::MainWindow*()> window_;
    OutputView& output_;
    std::map<Topic, QPointer<KTextEditor::Message>> questions_;
};
