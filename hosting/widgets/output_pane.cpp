#include "output_pane.h"

#include "output_document.h"
#include "qt_version.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTextBlock>

OutputPane::OutputPane(OutputDocument& output, QWidget* parent)
    : QPlainTextEdit(parent), output_(output)
{
    setDocument(&output);
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setLineWrapMode(NoWrap);
    setFrameShape(NoFrame);
    viewport()->setMouseTracking(true);
    connect(verticalScrollBar(), &QScrollBar::rangeChanged, this, &OutputPane::FollowOutput);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this,
            [this](int value) { follows_ = value >= verticalScrollBar()->maximum(); });
    connect(&output, &OutputDocument::LinesDropped, this, &OutputPane::KeepLines);
    connect(&output, &OutputDocument::FollowEndRequested, this, [this] {
        follows_ = true;
        FollowOutput();
    });
}

void OutputPane::FollowOutput()
{
    if (follows_) {
        verticalScrollBar()->setValue(verticalScrollBar()->maximum());
    }
}

// Keeps the lines that the user reads in place, while there are such lines.
void OutputPane::KeepLines(int dropped)
{
    if (!follows_) {
        verticalScrollBar()->setValue(verticalScrollBar()->value() - dropped);
    }
}

void OutputPane::SetColors(const QPalette& palette, const QFont& font)
{
    setPalette(palette);
    setFont(font);
    output_.setDefaultFont(font);
    output_.SetColors(palette.color(QPalette::Base), palette.color(QPalette::Link));
}

std::optional<SourceLink> OutputPane::LinkAt(const QPoint& point) const
{
    const QString column = anchorAt(point);
    return column.isEmpty() ? std::nullopt
                            : output_.LinkAt(cursorForPosition(point).block(), column.toInt());
}

void OutputPane::mouseMoveEvent(QMouseEvent* event)
{
    QPlainTextEdit::mouseMoveEvent(event);
    const bool isLink = LinkAt(PositionOf(*event)).has_value();
    viewport()->setCursor(isLink ? Qt::PointingHandCursor : Qt::IBeamCursor);
}

// Dragging over a link selects its text.
void OutputPane::mouseReleaseEvent(QMouseEvent* event)
{
    QPlainTextEdit::mouseReleaseEvent(event);
    const bool isClick = event->button() == Qt::LeftButton && !textCursor().hasSelection();
    const auto link = isClick ? LinkAt(PositionOf(*event)) : std::nullopt;
    if (link) {
        Q_EMIT LinkChosen(link->path, link->line);
    }
}

void OutputPane::contextMenuEvent(QContextMenuEvent* event)
{
    auto* const menu = createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addSeparator();
    connect(menu->addAction(tr("C&lear")), &QAction::triggered, &output_,
            &OutputDocument::ClearAll);
    menu->popup(event->globalPos());
}
