#include "editor_status_bar.h"

#include "action_icons.h"
#include "document_page.h"
#include "line_ending_table.h"
#include "text_editor.h"

#include <QFileInfo>
#include <QLabel>
#include <QProgressBar>
#include <QToolButton>

namespace {

QString EncodingName(TextEncoding encoding)
{
    switch (encoding) {
        case TextEncoding::Utf8: return "UTF-8";
        case TextEncoding::Utf8WithBom: return "UTF-8 BOM";
        case TextEncoding::Latin1: return "Latin-1";
    }
    return {};
}

QString FileName(const QString& path)
{
    return QFileInfo(path).fileName();
}

}  // namespace

EditorStatusBar::EditorStatusBar(QMenu* boardMenu, QWidget* parent)
    : QStatusBar(parent),
      position_(new QLabel(this)),
      busy_(new QProgressBar(this)),
      activity_(new QLabel(this)),
      target_(new QLabel(this)),
      format_(new QLabel(this)),
      board_(new QToolButton(this))
{
    board_->setObjectName("board");
    board_->setAutoRaise(true);
    board_->setFocusPolicy(Qt::TabFocus);
    board_->setPopupMode(QToolButton::InstantPopup);
    board_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    board_->setIcon(ActionIcon(Action::Board));
    board_->setMenu(boardMenu);
    activity_->setObjectName("activity");
    busy_->setRange(0, 0);
    busy_->setTextVisible(false);
    busy_->setFixedSize(48, 8);
    addWidget(position_);
    addWidget(busy_);
    addWidget(activity_);
    busy_->hide();
    for (QWidget* widget : std::initializer_list<QWidget*>{target_, format_, board_}) {
        addPermanentWidget(widget);
    }
}

void EditorStatusBar::ShowDocument(DocumentPage* page)
{
    if (page == nullptr) {
        position_->clear();
        format_->clear();
        return;
    }
    const auto& editor = page->editor();
    position_->setText(tr("Ln %1, Col %2").arg(editor.CaretLine()).arg(editor.CaretColumn()));
    format_->setText(EncodingName(page->document().encoding()) + "   " + LineEndingOf(editor).name +
                     "   " + (editor.lexer() != nullptr ? "Python" : tr("Plain text")));
}

void EditorStatusBar::ShowProject(const QString& folder, const QString& target)
{
    QStringList parts;
    if (!folder.isEmpty()) {
        parts.append(FileName(folder));
    }
    if (!target.isEmpty()) {
        parts.append(tr("Target: %1").arg(FileName(target)));
    }
    target_->setText(parts.join("   "));
    target_->setToolTip(target);
}

void EditorStatusBar::ShowActivity(const QString& text, bool isRunning)
{
    busy_->setVisible(isRunning);
    activity_->setText(text);
}

void EditorStatusBar::ShowBoard(const BoardMonitor& monitor)
{
    using Kind = BoardMonitor::Kind;
    const auto& [kind, port] = monitor.board();
    const QString node = QString::fromStdString(port.node);
    const QString text = kind == Kind::Real      ? tr("Board on %1").arg(node)
                         : kind == Kind::Virtual ? tr("Virtual board")
                         : kind == Kind::Missing ? tr("Board %1 is not attached").arg(node)
                                                 : tr("No board");
    QStringList tip{port.node.empty() ? text : DescribePort(port)};
    if (!monitor.firmware().isEmpty()) {
        tip.append(monitor.firmware());
    }
    board_->setText(text);
    board_->setAccessibleName(text);
    board_->setToolTip(tip.join('\n'));
}
