#pragma once

#include <QObject>

#include <string>

class DocumentTabs;
class MessageArea;
class PluginHost;

// What the window does with the plug-in's commands: it saves the document that a command acts on,
// checks that there is one, and reports what could not be done. Used on the user-interface thread.
class PluginActions final : public QObject {
    Q_OBJECT

  public:
    // What it refers to must outlive it.
    PluginActions(PluginHost& host, DocumentTabs& tabs, MessageArea& messages, QWidget* window);

    // Whether documents are saved before a command acts on them.
    bool savesFirst() const { return savesFirst_; }
    void SetSavesFirst(bool saves) { savesFirst_ = saves; }

    // Performs a registered command.
    void Perform(const std::string& command);
    void PressControl();
    // Opens the plug-in's menu below this control.
    void OpenPopUp(const QWidget& control);
    void OpenDeviceWindow();

  private:
    bool PrepareFile();
    bool SaveFront();

    PluginHost& host_;
    DocumentTabs& tabs_;
    MessageArea& messages_;
    QWidget* window_;
    bool savesFirst_ = true;
};
