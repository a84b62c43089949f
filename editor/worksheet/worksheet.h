#pragma once

#include "output_feed.h"
#include "output_view.h"
#include "scintilla.h"
#include "view_follower.h"

#include <QString>
#include <QTimer>

#include <optional>
#include <string>
#include <string_view>

// An editable text to which the output of programs is appended, with its colours. Tracebacks are
// shown in the colour of errors. Very long lines are split, also in text that is pasted. [ui]
class Worksheet final : public QsciScintilla, public OutputView {
    Q_OBJECT

  public:
    static constexpr int kMaxLines = 100'000;
    static constexpr long kMaxBytes = 16'777'216;

    explicit Worksheet(QWidget* parent = nullptr);

    // Appends output (see OutputFeed). The oldest lines are removed when there are too many. The
    // view follows the output until the user scrolls away from the end; the caret and the selection
    // do not move. Undo does not revert output, nor changes made before output erased a line.
    void Append(std::string_view utf8) override { feed_.Append(utf8); }
    void AppendLines(std::string_view utf8) override { feed_.AppendLines(utf8); }
    void EndOutput() { feed_.EndOutput(); }

    // Marks the line where the output will begin in the margin.
    void BeginCommand() override;
    // If the command wrote anything, the caret goes to a new line at the end, unless the user has
    // moved it meanwhile or has selected text.
    void EndCommand() override;
    void FollowEnd() override;

    // Whether lines that are wider than the view are continued on the next one.
    bool wraps() const { return wrapMode() != WrapNone; }
    void SetWraps(bool wraps);

    // The whole text, including pending output.
    QString Content();
    void SetContent(const QString& text);
    void ClearAll();

    // Does the same as Ctrl+Return.
    void RequestRun();

    // Go to the next or previous link, starting at the link chosen last, and wrap around. If there
    // is none, or newer links have arrived since, go to the first link of the newest traceback, or
    // to the last link. Return false if there is no link.
    bool GoToNextLink();
    bool GoToPreviousLink();

  Q_SIGNALS:
    // A line of a traceback was chosen. The path is as written there; lines are counted from 1.
    void LinkChosen(const QString& path, int line);
    // The user requests to run the selection, or the caret's line if nothing is selected.
    void RunRequested(const QString& text);

  protected:
    QByteArray fromMimeData(const QMimeData* source, bool& rectangular) const override;
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    // The number of unchanged bytes at the start and at the end.
    struct Unchanged {
        long before, after;
    };

    void SetUpLinks();
    void ApplyColors();
    qsizetype LastColumn() const;
    void Apply(const OutputChange& change);
    void RemoveAll();
    void LeaveCaretAtEnd();
    void DropOldLines();
    void RemoveText(long end);
    void RecordChange(int position, int type, int length);
    void MarkChanged();
    bool ChooseLinkAt(long position);

    OutputFeed feed_;
    QTimer markTimer_;
    std::optional<Unchanged> unchanged_;  // Until the links in the user's changes are marked.
    std::optional<long> clicked_;         // The position of a link, until the button is released.
    long chosen_ = -1;                    // The handle of the marker on the chosen line.

    ViewFollower follower_{*this};
    bool begins_ = false;    // The next output is the first one of a command.
    long caretBefore_ = -1;  // Where the caret was when the command started.
};
