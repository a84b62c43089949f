#pragma once

#include <QObject>

class DocumentTabs;
class MessageArea;

// Saves the front document before a command of the plug-in acts on it. [ui]
class FrontSaver final : public QObject {
    Q_OBJECT

  public:
    // The referenced objects must outlive this one.
    FrontSaver(DocumentTabs& tabs, MessageArea& messages, QObject* parent);

    // Whether documents that have a file are saved.
    bool savesFirst() const { return savesFirst_; }
    void SetSavesFirst(bool saves) { savesFirst_ = saves; }

    // Returns false if the command must not act on the document, which is reported unless the user
    // cancelled.
    bool Save();

  private:
    bool SaveFront();
    bool SaveUnnamed();
    bool WriteCopy();

    DocumentTabs& tabs_;
    MessageArea& messages_;
    bool savesFirst_ = true;
};
