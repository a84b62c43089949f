#include "line_label.h"

#include "display_text.h"

#include <QPainter>

LineLabel::LineLabel(QWidget* parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);  // Names on a board may contain markup.
}

QSize LineLabel::minimumSizeHint() const
{
    return {0, fontMetrics().height()};
}

void LineLabel::paintEvent(QPaintEvent* /*event*/)
{
    QString line = text();
    line.replace('\n', ' ');
    const QString shown = fontMetrics().elidedText(line, Qt::ElideRight, width());
    setToolTip(shown == line ? QString() : ToolTipText(line));
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(rect(), static_cast<int>(alignment()) | Qt::TextSingleLine, shown);
}
