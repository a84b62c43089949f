#pragma once

#include <QLabel>

// One line of plain text. If it does not fit, it is elided, and a tool tip shows all of it.
class LineLabel final : public QLabel {
  public:
    explicit LineLabel(QWidget* parent);

    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
};
