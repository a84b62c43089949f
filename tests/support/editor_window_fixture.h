#pragma once

#include "main_window.h"
#include "path_text.h"
#include "text_editor.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <string>

// A program that prints until it is stopped.
inline constexpr const char* kEndless = "while True:\n    print('round')\n";

// The editor's window with the real plug-in and temporary folders.
class EditorWindow : public testing::Test {
  protected:
    ~EditorWindow() override;

    // Starts the program, which opens the documents of the last session when there are none here.
    void Start(const QStringList& documents = {},
               const std::string& plugin = QUILP_BUNDLE "/quilp.so");
    // Runs an event loop until the window reports that it is closed, then ends the program.
    void EndBy(const std::function<void()>& act);
    void Close()
    {
        EndBy([this] { window_->close(); });
    }

    QString Write(const std::string& name, std::string_view content)
    {
        return PathToText(folder.Write(name, content));
    }
    QString PathOf(const std::string& name) { return QString::fromStdString(folder / name); }
    std::string Read(const std::string& name) { return ReadFile(folder / name); }

    MainWindow& window() { return *window_; }
    TextEditor& editor() { return window_->documents().FrontPage()->editor(); }
    void Type(const QString& text);
    // Presses a key in the widget that has the focus.
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    QAction* Action(const QString& text);
    std::string Sheet() { return window_->worksheet().Content().toStdString(); }
    bool SheetShows(const std::string& text)
    {
        return WaitUntil([&] { return Sheet().find(text) != std::string::npos; });
    }
    // The message above the documents, or an empty string.
    std::string Message();
    bool MessageShows(const std::string& text);
    // Presses a button of the message.
    void Answer(const QString& button);
    bool ControlIsShown();
    // Attaches the virtual board and waits until it is ready.
    void AttachBoard();

    // Answers the next dialog while an event loop runs. The test fails at its end when none opened.
    void WhenAsked(const std::function<void(QWidget& dialog)>& act);
    void WhenAskedPress(int standardButton);

    TemporaryFolder folder;
    EditorPaths places{{folder / "config", folder / "data", folder / "state"},
                       QUILP_BIN "/virtual-board",
                       folder / "board"};

  private:
    void End();

    std::optional<PluginModule> plugin_;
    std::unique_ptr<Runtime> runtime_;
    std::unique_ptr<MainWindow> window_;
    QObject questions_;  // Has a child for each question that was not asked yet.
};
