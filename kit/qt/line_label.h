#pragma once

#include <QLabel>

// One line of plain text, with "…" where it does not fit; then the whole of it is its tool tip.
class LineLabel final : public QLabel {
  public:
    explicit LineLabel(QWidget* parent);

    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
};
