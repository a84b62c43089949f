#include "editor_proxy_style.h"

#include "painted_icon_engine.h"

#include <QFileDialog>
#include <QHeaderView>
#include <QPainter>
#include <QStyleOption>
#include <QTreeView>

#include <algorithm>
#include <array>

namespace {

struct DialogIcon {
    QStyle::StandardPixmap name;
    QColor color;
    QChar sign;
};

const std::array<DialogIcon, 4> kDialogIcons{{
    {QStyle::SP_MessageBoxInformation, {0x2f, 0x7f, 0xd6}, u'i'},
    {QStyle::SP_MessageBoxQuestion, {0x2f, 0x7f, 0xd6}, u'?'},
    {QStyle::SP_MessageBoxWarning, {0xb3, 0x6b, 0x00}, u'!'},
    {QStyle::SP_MessageBoxCritical, {0xc2, 0x1f, 0x2e}, u'×'},
}};

// A sign on a disc, sharp in any size.
class DiscIcon final : public PaintedIconEngine {
  public:
    explicit DiscIcon(const DialogIcon& icon) : icon_(icon) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode /*mode*/,
               QIcon::State /*state*/) override
    {
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(icon_.color);
        painter->drawEllipse(rect.adjusted(1, 1, -1, -1));
        QFont font = painter->font();
        font.setBold(true);
        font.setPixelSize(std::max(1, rect.height() * 6 / 10));
        painter->setFont(font);
        painter->setPen(Qt::white);
        painter->drawText(rect, Qt::AlignCenter, icon_.sign);
    }

    QIconEngine* clone() const override { return new DiscIcon(icon_); }

  private:
    DialogIcon icon_;
};

void FitColumns(QHeaderView* header)
{
    header->setStretchLastSection(false);
    for (int column = 0; column < header->count(); ++column) {
        header->setSectionResizeMode(
            column, column == 0 ? QHeaderView::Stretch : QHeaderView::ResizeToContents);
    }
}

}  // namespace

EditorProxyStyle::EditorProxyStyle() : QProxyStyle("Fusion") {}

QIcon EditorProxyStyle::standardIcon(StandardPixmap name, const QStyleOption* option,
                                     const QWidget* widget) const
{
    const auto* const found = std::ranges::find(kDialogIcons, name, &DialogIcon::name);
    return found != kDialogIcons.end() ? QIcon(new DiscIcon(*found))
                                       : QProxyStyle::standardIcon(name, option, widget);
}

int EditorProxyStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                                QStyleHintReturn* result) const
{
    return hint == SH_DialogButtonBox_ButtonsHaveIcons
               ? 0
               : QProxyStyle::styleHint(hint, option, widget, result);
}

// Fusion's border cannot be seen on a dark background. A style sheet for menus would replace their
// radio marks.
void EditorProxyStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                     QPainter* painter, const QWidget* widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element == PE_PanelMenu) {
        painter->setPen(option->palette.color(QPalette::Mid));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
    }
}

// Qt gives each column the same width, in which dates are cut off.
void EditorProxyStyle::polish(QWidget* widget)
{
    QProxyStyle::polish(widget);
    auto* const list = qobject_cast<QTreeView*>(widget);
    if (list == nullptr || qobject_cast<QFileDialog*>(list->window()) == nullptr) {
        return;
    }
    auto* const header = list->header();
    FitColumns(header);
    // The columns may be added later.
    QObject::connect(header, &QHeaderView::sectionCountChanged, header,
                     [header] { FitColumns(header); });
}
