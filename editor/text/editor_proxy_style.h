#pragma once

#include <QProxyStyle>

// Qt's Fusion style with visible borders of menus, simple icons in dialogs, and wide columns in
// file dialogs. [ui]
class EditorProxyStyle final : public QProxyStyle {
  public:
    EditorProxyStyle();

    QIcon standardIcon(StandardPixmap name, const QStyleOption* option,
                       const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* result) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    using QProxyStyle::polish;
    void polish(QWidget* widget) override;
};
