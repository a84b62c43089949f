#pragma once

#include <QObject>

#include <string>

class DocumentTabs;
class MessageArea;
class PluginHost;

// Performs the plug-in's commands: checks that there is a file to act on, saves the document first,
// and reports errors in the window. [ui]
class PluginActions final : public QObject {
    Q_OBJECT

  public:
    // The referenced objects must outlive this one.
    PluginActions(PluginHost& host, DocumentTabs& tabs, MessageArea& messages, QWidget* window);

    // Whether documents are saved before a command acts on them.
    bool savesFirst() const { return savesFirst_; }
    void SetSavesFirst(bool saves) { savesFirst_ = saves; }

    // Performs a registered command.
    void Perform(const std::string& command);
    void PressControl();
    // Opens the plug-in's menu below the control.
    void OpenPopUp(const QWidget& control);
    // Shows the attached boards in the worksheet.
    void ShowStatus();
    void OpenDeviceWindow();

  private:
    bool PrepareFile();
    bool SaveFront();
    bool SaveUnnamed();
    bool WriteCopy();

    PluginHost& host_;
    DocumentTabs& tabs_;
    MessageArea& messages_;
    QWidget* window_;
    bool savesFirst_ = true;
};
