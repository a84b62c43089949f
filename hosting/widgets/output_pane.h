#pragma once

#include "source_link.h"

#include <QPlainTextEdit>

#include <optional>

class OutputDocument;

// Shows the output of commands. It follows the output until the user scrolls away from the end.
// [ui]
class OutputPane final : public QPlainTextEdit {
    Q_OBJECT

  public:
    // `output` must outlive the pane.
    OutputPane(OutputDocument& output, QWidget* parent);

    // The document takes the font, too.
    void SetColors(const QPalette& palette, const QFont& font);

  Q_SIGNALS:
    // A line of a traceback was chosen. The path is as written there; lines are counted from 1.
    void LinkChosen(const QString& path, int line);

  protected:
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    std::optional<SourceLink> LinkAt(const QPoint& point) const;
    void FollowOutput();
    void KeepLines(int dropped);

    OutputDocument& output_;
    bool follows_ = true;  // Only scrolling changes this.
};
