#include "menu_button.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyleOptionComboBox>
#include <QStylePainter>

MenuButton::MenuButton(QWidget* parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::TabFocus);  // A click leaves the keyboard with the table.
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, this, [this] { OpenMenu(MenuOpening::ByKey); });
}

void MenuButton::SelectItem(int index)
{
    const auto& items = menu_->Items();
    const bool exists = index >= 0 && index < std::ssize(items);
    selected_ = exists ? index : 0;
    setText(exists ? QString::fromStdString(items[static_cast<std::size_t>(index)]->Label())
                   : QString());
    setIcon(exists ? MenuIcon(*items[static_cast<std::size_t>(index)]) : QIcon());
    updateGeometry();
    update();
}

QSize MenuButton::SizeForText(const QString& text) const
{
    QStyleOptionComboBox option;
    option.initFrom(this);
    const auto metrics = fontMetrics();
    const QSize content(metrics.horizontalAdvance(text) + 24, std::max(metrics.height(), 16));
    return style()->sizeFromContents(QStyle::CT_ComboBox, &option, content, this);
}

QSize MenuButton::sizeHint() const
{
    return SizeForText(text()).expandedTo(SizeForText(QString(16, 'x')));
}

QSize MenuButton::minimumSizeHint() const
{
    return SizeForText(QStringLiteral("xxx…"));
}

void MenuButton::paintEvent(QPaintEvent* /*event*/)
{
    QStyleOptionComboBox option;
    option.initFrom(this);
    option.state.setFlag(QStyle::State_Sunken, isDown());
    option.currentIcon = icon();
    option.iconSize = QSize(16, 16);
    QStylePainter painter(this);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    const int room =
        style()
            ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this)
            .width();
    option.currentText = fontMetrics().elidedText(text(), Qt::ElideRight, room - 24);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

void MenuButton::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        OpenMenu(MenuOpening::ByMouse);
    }
}

void MenuButton::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_Return:
        case Qt::Key_Enter: return OpenMenu(MenuOpening::ByKey);
        default: QAbstractButton::keyPressEvent(event);
    }
}

void MenuButton::OpenMenu(MenuOpening opening)
{
    auto* const widget = menu_ != nullptr ? MakeWindowMenu(*this, *menu_) : nullptr;
    if (widget != nullptr) {
        widget->setMinimumWidth(width());
        auto* const selected = widget->actions().value(selected_);
        ActivateItem(*widget, selected, opening);
        widget->popup(mapToGlobal(QPoint(0, 0)), selected);
    }
}
