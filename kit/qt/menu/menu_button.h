#pragma once

#include "Menu.h"
#include "menu_widget.h"

#include <QAbstractButton>

// The widget of a menu field. It looks like a combo box and opens the menu so that the selected
// item lies over the button. It is not a QComboBox because that cannot show menu items. [ui]
class MenuButton final : public QAbstractButton {
  public:
    explicit MenuButton(QWidget* parent);

    // Not owned; null for none.
    void SetMenu(const BMenu* menu) { menu_ = menu; }
    // Shows a copy of the item at this index.
    void SelectItem(int index);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QSize SizeForText(const QString& text) const;
    void OpenMenu(MenuOpening opening);

    const BMenu* menu_ = nullptr;
    int selected_ = 0;
};
