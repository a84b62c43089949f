#pragma once

#include "board_actions.h"
#include "board_monitor.h"
#include "board_questions.h"
#include "board_tool.h"
#include "command_monitor.h"
#include "installation.h"
#include "kate_messages.h"
#include "kate_settings.h"
#include "output_document.h"
#include "pins_client.h"
#include "plugin_actions.h"
#include "plugin_host.h"

class KateWindow;

namespace KTextEditor {
class Document;
class MainWindow;
}  // namespace KTextEditor

// The host of the plug-in in a process of Kate. It is the same for all windows; the window that was
// used last is the front one. [ui]
class KateHost final : public QObject {
    Q_OBJECT

  public:
    KateHost(PluginModule module, const Installation& installation);
    // Stops what runs on the board. The windows must be destroyed before.
    ~KateHost() override;

    // The error is a message for the user.
    std::expected<void, std::string> Start();

    // Makes the window the front one.
    void Use(KateWindow& window);
    void Remove(const KateWindow& window);

    // Saves the front document, and the target if it is open, because the plug-in reads the file
    // from the disk. Returns false if a command must not act on it.
    bool SaveFront();
    // Makes the front document the one that commands act on when no Python document is in front; if
    // it is that already, removes it.
    void ToggleTarget();
    // Opens the file that a traceback names.
    void FollowLink(const QString& path, int line);
    void ShowHelp();

    Runtime& runtime() { return runtime_; }
    const std::vector<RegisteredCommand>& commandList() const { return host_.commands(); }
    OutputDocument& output() { return output_; }
    KateMessages& messages() { return messages_; }
    KConfigGroup& settings() { return settings_.group(); }
    BoardTool& tool() { return tool_; }
    CommandMonitor& monitor() { return monitor_; }
    BoardMonitor& board() { return board_; }
    PluginActions& commands() { return commands_; }
    BoardActions& boardActions() { return boardActions_; }
    PinsClient& pins() { return pins_; }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    KTextEditor::MainWindow* FrontWindow() const;
    KTextEditor::Document* FrontDocument() const;
    BoardActions::Parts BoardParts();
    void ConnectRuntime();
    void ShowOutput();
    void RestoreBoard();
    void SaveBoard();
    void SaveSettings();
    void ShowDocument();
    bool Save(KTextEditor::Document& document);
    QString ProjectFolder() const;

    PluginModule module_;
    KateWindow* front_ = nullptr;
    OutputDocument output_;
    KateSettings settings_;
    KateMessages messages_;
    Runtime runtime_;
    PluginHost host_;
    BoardTool tool_;
    CommandMonitor monitor_;
    BoardMonitor board_;
    PluginActions commands_;
    BoardActions boardActions_;
    BoardQuestions questions_;
    PinsClient pins_;
    QString target_;
};
