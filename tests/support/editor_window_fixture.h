#pragma once

#include "main_window.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <string>

// The editor's window with the real plug-in, and folders of the test's own.
class EditorWindow : public testing::Test {
  protected:
    EditorWindow();
    ~EditorWindow() override;

    // Starts the program. Without documents it opens those of the last time.
    void Start(const QStringList& documents = {},
               const std::string& plugin = QUILP_BUNDLE "/quilp.so");
    // Closes the window and ends everything. False when the window stays open.
    bool Close();
    // Runs an event loop until the window reports that the program may end, then ends everything.
    void EndBy(const std::function<void()>& act);
    // Ends everything without a question.
    void End();

    QString Write(const std::string& name, std::string_view content);
    QString PathOf(const std::string& name) { return QString::fromStdString(folder / name); }
    std::string Read(const std::string& name) { return ReadFile(folder / name); }

    MainWindow& window() { return *window_; }
    TextEditor& editor();
    // Types into the front document.
    void Type(const QString& text);
    // Presses a key in the widget that has the keyboard.
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    QAction* Action(const QString& text);
    std::string Sheet() { return window_->worksheet().Content().toStdString(); }
    bool SheetShows(const std::string& text);
    // The message above the documents; empty when there is none.
    std::string Message();
    bool MessageShows(const std::string& text);
    // Presses a button, by its text, of a message that is shown.
    void Answer(const QString& button);
    QStringList Controls();
    // Waits until the virtual board is ready.
    void AttachBoard();
    bool WaitForIdle();

    // Has the next dialog answered while an event loop runs. Fails the test at its end when none
    // came.
    void WhenAsked(const std::function<void(QWidget& dialog)>& act);
    void WhenAskedPress(int standardButton);

    TemporaryFolder folder;
    EditorPaths places;

  private:
    std::optional<PluginModule> plugin_;
    std::unique_ptr<Runtime> runtime_;
    std::unique_ptr<MainWindow> window_;
    QObject questions_;  // Has a child for each that was not asked yet.
};
