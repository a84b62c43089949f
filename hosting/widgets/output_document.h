#pragma once

#include "output_feed.h"
#include "output_view.h"
#include "source_link.h"

#include <QColor>
#include <QTextBlock>
#include <QTextDocument>

#include <cstddef>
#include <optional>

class QTextCursor;

// The output of commands, for hosts that have no worksheet of their own. Several OutputPanes may
// show it. The oldest lines are removed when there are too many. [ui]
class OutputDocument final : public QTextDocument, public OutputView {
    Q_OBJECT

  public:
    static constexpr int kMaxLines = 50'000;
    // Of a flood, no more than this is appended at once.
    static constexpr std::size_t kMaxBytes = 16'777'216;

    explicit OutputDocument(QObject* parent = nullptr);

    // For output that arrives from now on: the background that it must be legible on, and the
    // colour of links.
    void SetColors(const QColor& background, const QColor& link);

    void Append(std::string_view utf8) override { feed_.Append(utf8); }
    void AppendLines(std::string_view utf8) override { feed_.AppendLines(utf8); }
    void EndOutput() { feed_.EndOutput(); }
    void BeginCommand() override {}
    // The output of the next command begins on a new line.
    void EndCommand() override { feed_.AppendLines({}); }
    void FollowEnd() override;
    void ClearAll();

    // The link of a traceback. Its characters have the column where it begins as their anchor.
    static std::optional<SourceLink> LinkAt(const QTextBlock& line, int column)
    {
        return FindSourceLink(line.text(), column);
    }

  Q_SIGNALS:
    void LinesDropped(int count);
    void FollowEndRequested();

  private:
    void Apply(const OutputChange& change);
    void RemoveAll();
    void Insert(QTextCursor& cursor, const OutputChange& change) const;
    QTextCharFormat FormatOf(const TextStyle& style) const;
    void MarkLinks(QTextCursor& cursor, int firstLine) const;
    void DropOldLines(QTextCursor& cursor);

    OutputFeed feed_;
    QColor background_ = Qt::white;
    QColor link_ = Qt::blue;
};
