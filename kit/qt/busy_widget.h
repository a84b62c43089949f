#pragma once

#include <QTimer>
#include <QWidget>

// Shows twelve rotating spokes while work is in progress, and nothing otherwise.
class BusyWidget final : public QWidget {
  public:
    explicit BusyWidget(QWidget* parent);

    void Start();
    void Stop();
    bool IsBusy() const { return timer_.isActive(); }

    QSize sizeHint() const override { return {16, 16}; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QTimer timer_;
    int step_ = 0;
};
