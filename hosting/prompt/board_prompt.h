#pragma once

#include "runtime.h"

#include <QObject>
#include <QStringList>
#include <QTimer>

#include <string>

class BoardTool;
class CommandMonitor;
class HostMessages;
class InputField;
class OutputView;

// Connects the input field with the board: runs what is entered at the prompt, sends input to the
// program that runs, and completes names. Shows in the output what was entered, and where the
// output of each command begins. [ui]
class BoardPrompt final : public QObject {
    Q_OBJECT

  public:
    struct Parts {
        InputField& field;
        OutputView& output;
        BoardTool& tool;
        CommandMonitor& monitor;
        HostMessages& messages;
    };

    // The parts and the runtime must outlive this object.
    BoardPrompt(Runtime& runtime, const Parts& parts, QObject* parent);

    // Runs lines of a document as at the prompt. A command that runs is stopped.
    void RunLines(const QString& code);

  private:
    void Enter(const QString& text);
    void SendLines(QString text);
    void EndInput();
    void Run(const QString& text);
    void RunWaiting();
    void Complete(const QString& textBeforeCaret);
    void OnStarted();
    void OnEnded(bool isStopped);

    Runtime& runtime_;
    Parts parts_;
    QStringList waiting_;  // Entered at the prompt while a command ran.
    std::string echo_;     // What to show when the prompt's command starts.
    QTimer inputTimer_;    // Until a prompt's command takes input.
};
