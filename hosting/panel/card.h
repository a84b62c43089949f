#pragma once

#include <QRect>
#include <QString>
#include <QWidget>

class QPainter;

// A part of the panel that shows one pin: a rounded area with the pin's name at the left of its
// first line. [ui]
class Card : public QWidget {
    Q_OBJECT

  public:
    Card(QString pin, QWidget* parent);

    const QString& pin() const { return pin_; }

    // Whether the program uses the pin. It is paler if not.
    void SetUsed(bool isUsed);
    bool isUsed() const { return isUsed_; }

  protected:
    static constexpr int kLine = 42;    // The height of a line, in pixels.
    static constexpr int kMargin = 10;  // At the left and right, in pixels.

    // Draws the area and the pin's name.
    void DrawBackground(QPainter& painter) const;
    // Draws what the pin is for in the first line, with a note below it unless that is empty.
    void DrawTitle(QPainter& painter, const QString& title, const QString& note) const;
    // The space at the right of the title in the first line.
    QRect ContentRect() const;

  private:
    QRect TitleRect() const;

    QString pin_;
    bool isUsed_ = true;
};
