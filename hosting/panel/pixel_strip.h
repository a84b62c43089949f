#pragma once

#include "card.h"

#include <QColor>

#include <vector>

// The NeoPixels at a pin, in one row or in several. [ui]
class PixelStrip final : public Card {
    Q_OBJECT

  public:
    PixelStrip(const QString& pin, QWidget* parent);

    void Show(const std::vector<QColor>& pixels);

    QSize sizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    struct Grid {
        int columns;
        int rows;
        int cell;  // The width and height of a pixel's place.
    };
    Grid GridFor(int width) const;
    QRect CellRect(const Grid& grid, int index) const;

    std::vector<QColor> pixels_;
};
