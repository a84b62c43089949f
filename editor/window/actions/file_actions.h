#pragma once

#include <QObject>
#include <QStringList>

class Document;
class DocumentTabs;
class MessageArea;
class Project;

// Opens files and folders, and keeps the list of recent files. Used on the user-interface thread.
class FileActions final : public QObject {
    Q_OBJECT

  public:
    // What it refers to must outlive it. `window` is the parent of dialogs.
    FileActions(DocumentTabs& tabs, Project& project, MessageArea& messages, QWidget* window);

    // A folder among them becomes the project.
    void Open(const QStringList& paths);
    // The documents of the last session that still exist.
    void OpenLast(const QStringList& paths, const QString& front);

    void OpenByDialog();
    void OpenFolderByDialog();
    // Makes the document the current target.
    void MakeTarget(const Document& document);

    // Full paths, the newest first.
    const QStringList& recent() const { return recent_; }
    void SetRecent(const QStringList& paths) { recent_ = paths; }

  private:
    void NoteRecent(const QString& path);
    void OfferSlowFile(const QString& path, qint64 line);

    DocumentTabs& tabs_;
    Project& project_;
    MessageArea& messages_;
    QWidget* window_;
    QStringList recent_;
};
