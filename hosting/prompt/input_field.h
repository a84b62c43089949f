#pragma once

#include "input_history.h"

#include <QString>
#include <QStringList>
#include <QWidget>

#include <string>
#include <vector>

class InputText;
class QCompleter;
class QLabel;
class QStringListModel;

// A field for the board: its prompt ">>> ", or the input of the program that runs. The two have
// histories of their own. [ui]
class InputField final : public QWidget {
    Q_OBJECT

  public:
    explicit InputField(QWidget* parent = nullptr);

    // Both keep the text. The name may be empty.
    void ShowPrompt(bool isInputWaiting = false);
    void ShowInput(const QString& program);
    bool isPrompt() const { return isPrompt_; }

    // Adds the entered text to the history, and clears the field.
    void Accept();
    // Offers names that continue the last name of the text, whose typed start is `stem`. Does
    // nothing if the text has changed since CompletionRequested.
    void Complete(const std::string& stem, const std::vector<std::string>& names);

    // What was entered at the prompt, for hosts to keep.
    QStringList promptHistory() const { return promptHistory_.entries(); }
    // The same for hosts with several windows: what they kept, with what was entered here.
    QStringList PromptHistoryAppendedTo(const QStringList& entries) const
    {
        return promptHistory_.AppendedTo(entries);
    }
    void SetPromptHistory(const QStringList& entries) { promptHistory_.SetEntries(entries); }

    void SetTextFont(const QFont& font);

  Q_SIGNALS:
    // The user pressed Return. The text remains until Accept.
    void Entered(const QString& text);
    // The user ends the input of the program.
    void EndOfInput();
    void CompletionRequested(const QString& textBeforeCaret);
    // The user returns to the document.
    void Left();

  private:
    void MakeCompleter();
    void Show(bool isPrompt, const QString& label, const QString& name, const QString& hint);
    void PressTab();
    void NarrowCompletions();
    void InsertCompletion(const QString& name);

    QLabel* label_;
    InputText* text_;
    QCompleter* completer_;
    QStringListModel* names_;
    InputHistory promptHistory_;
    InputHistory inputHistory_;
    bool isPrompt_ = true;
    QString asked_;  // The text before the caret when completions were requested.
};
