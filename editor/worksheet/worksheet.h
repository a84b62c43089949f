#pragma once

#include "output_text.h"
#include "scintilla.h"

#include <QString>
#include <QTimer>

#include <optional>
#include <string>
#include <string_view>

// Where the output of programs arrives; the user edits it as any text. Used on the user-interface
// thread.
class Worksheet final : public QsciScintilla {
    Q_OBJECT

  public:
    static constexpr int kMaxLines = 100'000;
    static constexpr long kMaxBytes = 16'777'216;

    explicit Worksheet(QWidget* parent = nullptr);

    // Adds output (see OutputText) at the end, in one of the next turns of the event loop; a
    // turn takes a part only. When too much waits, this call adds a part itself, so that a
    // producer becomes as slow as the view. The oldest lines go when there are too many. The view
    // follows while its end is in sight. The caret and the selection stay where they are. Undo
    // does not take it back, and what was typed before something was erased stays.
    void Append(std::string_view utf8);

    // Everything, also what waits to be added.
    QString Content();
    void SetContent(const QString& text);
    void Clear();

    // As Control-Return.
    void RequestRun();

    // From the link chosen last; when there is none, or a newer one has arrived since, to the first
    // of the newest traceback or to the last. Goes on at the other end. False when there is no
    // link.
    bool GoToNextLink();
    bool GoToPreviousLink();

  Q_SIGNALS:
    // A line of a traceback was chosen: the path as it stands there, and a line from 1.
    void LinkChosen(const QString& path, int line);
    // The user wants this run: what is selected, or the caret's line.
    void RunRequested(const QString& text);

  protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    // Bytes at the start and at the end.
    struct Unchanged {
        long before, after;
    };

    void SetUpLinks();
    void ApplyLinkStyle();
    void AppendPart();
    void AppendAllThatWaits();
    void Change(const OutputChange& change);
    void DropOldLines();
    void MarkLinks(long start, long end);
    void NoteChange(int position, int type, int length);
    void MarkChanged();
    std::optional<long> FirstLinkFrom(long position) const;
    std::optional<long> LastLinkBefore(long position) const;
    long NewestTraceback() const;
    bool ChooseLinkAt(long position);
    void Click(int position);

    OutputText parser_;
    std::string waiting_;
    std::size_t taken_ = 0;  // From the front of `waiting_`.
    QTimer turn_;
    QTimer marking_;
    std::optional<Unchanged> unchanged_;  // While changes by the user wait for their links.
    long chosen_ = -1;                    // Handle of the marker on the chosen line.
};
