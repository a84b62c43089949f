#pragma once

#include <QObject>
#include <QString>

class CommandMonitor;
class ControlToolBar;
class PluginActions;
class QAction;
class Shortcuts;

// Shows in the tool bar what Run would run, and what Stop would stop. [ui]
class CommandProgress final : public QObject {
    Q_OBJECT

  public:
    struct Parts {
        ControlToolBar& toolBar;
        PluginActions& commands;
        const Shortcuts& shortcuts;
    };

    // The parts and the monitor must outlive this object.
    CommandProgress(const CommandMonitor& monitor, const Parts& parts);

    // The name of the file that Run would run; empty if there is none.
    void SetRunnable(const QString& name);

  private:
    void Show();

    const CommandMonitor& monitor_;
    Parts parts_;
    QAction* stop_;
    QString runnable_;
};
