#pragma once

#include "Menu.h"

#include <QAbstractButton>

// What is on the screen for a menu field: looks like a combo box, and opens the menu over itself so
// that the selected item lies on it. A combo box itself would not take menu items.
class MenuButton final : public QAbstractButton {
  public:
    explicit MenuButton(QWidget* parent);

    // Not owned; null for none.
    void SetMenu(const BMenu* menu) { menu_ = menu; }
    // Shows the item at this index as it is now.
    void SelectItem(int index);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QSize SizeForText(const QString& text) const;
    void OpenMenu();

    const BMenu* menu_ = nullptr;
    int selected_ = 0;
};
