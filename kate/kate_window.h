#pragma once

#include <KTextEditor/MainWindow>
#include <KXMLGUIClient>

#include <QKeySequence>
#include <QPointer>

#include <functional>
#include <string>

class BoardMenu;
class BoardPrompt;
class InputField;
class KateHost;
class OutputPane;

// The plug-in in a window of Kate: its actions and its tool view. [ui]
class KateWindow final : public QObject, public KXMLGUIClient {
    Q_OBJECT

  public:
    // `host` must outlive this object. Kate destroys it with its window, or when the plug-in is
    // unloaded.
    KateWindow(KateHost& host, KTextEditor::Plugin& plugin, KTextEditor::MainWindow& mainWindow);
    ~KateWindow() override;

    KTextEditor::MainWindow& mainWindow() const { return mainWindow_; }
    // The keys of one of the plug-in's commands.
    QKeySequence Shortcut(const std::string& command) const;
    // Shows the tool view with the output. The document keeps the focus.
    void ShowOutput();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void KeepPromptHistory();
    void MakeToolView(KTextEditor::Plugin& plugin);
    void MakeBoardView(KTextEditor::Plugin& plugin);
    void MakeBoardMenu(QWidget& parent);
    void ConnectInput();
    QAction* Add(const QString& name, const QString& text, const std::function<void()>& perform);
    void AddCommands();
    void AddActions();
    void ShowState();
    void FocusDocument();
    void RunSelection();
    void ShowColors();

    KateHost& host_;
    KTextEditor::MainWindow& mainWindow_;
    QPointer<QWidget> toolView_;  // Kate may have destroyed it, with the pane and the field.
    QPointer<QWidget> boardView_;
    BoardMenu* boardMenu_ = nullptr;
    OutputPane* pane_ = nullptr;
    InputField* field_ = nullptr;
    BoardPrompt* prompt_ = nullptr;
    QList<QAction*> commandActions_;
};
