#include "editor_status_bar.h"

#include "document_page.h"
#include "line_ending_table.h"
#include "text_editor.h"

#include <QFileInfo>
#include <QLabel>

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

EditorStatusBar::EditorStatusBar(QWidget* activity, QWidget* board, QWidget* parent)
    : QStatusBar(parent),
      position_(new QLabel(this)),
      target_(new QLabel(this)),
      format_(new QLabel(this))
{
    addWidget(position_);
    addWidget(activity);
    for (QWidget* widget : std::initializer_list<QWidget*>{target_, format_, board}) {
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
