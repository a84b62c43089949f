#pragma once

#include <QObject>

#include <functional>
#include <string>

class HostMessages;
class PluginHost;
class QWidget;

// Performs the plug-in's commands: checks that there is a file to act on, saves the document first,
// and reports errors. [ui]
class PluginActions final : public QObject {
    Q_OBJECT

  public:
    // `saveFront` saves the front document, because the plug-in reads the file from the disk. It
    // reports errors itself, and returns false if the command must not act on the document. The
    // referenced objects must outlive this one.
    PluginActions(PluginHost& host, HostMessages& messages, std::function<bool()> saveFront,
                  QObject* parent);

    // Performs a registered command.
    void Perform(const std::string& command);
    void PressControl();
    // Opens the plug-in's menu below a control of the host's window.
    void OpenPopUp(const QWidget& control);
    // Shows the attached boards in the output.
    void ShowStatus();
    void OpenDeviceWindow();

  Q_SIGNALS:
    // A command begins whose result is read in the output.
    void OutputExpected();

  private:
    bool PrepareFile();
    bool MayPerformFromMenu(const std::string& label);

    PluginHost& host_;
    HostMessages& messages_;
    std::function<bool()> saveFront_;
};
