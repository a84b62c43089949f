#pragma once

#include "file_worker.h"

#include <QObject>
#include <QStringList>

class Document;
class DocumentTabs;
class MessageArea;
class Project;

// Opens files and folders, and maintains the list of recent files. [ui]
class FileActions final : public QObject {
    Q_OBJECT

  public:
    // The referenced objects must outlive this one. `window` is the parent of dialogs.
    FileActions(DocumentTabs& tabs, Project& project, MessageArea& messages, QWidget* window);

    // Opens files; a folder becomes the project. A file on a disk that does not answer is reported
    // instead.
    void Open(const QStringList& paths);
    // Reopens the documents of the last session that still exist.
    void Reopen(const QStringList& paths, const QString& front);

    void OpenByDialog();
    void OpenFolderByDialog();
    // Sets the document as the current target.
    void MakeTarget(const Document& document);

    // Full paths, most recent first.
    const QStringList& recent() const { return recent_; }
    void SetRecent(const QStringList& paths) { recent_ = paths; }

  private:
    bool Answers(const QString& path);
    void AddRecent(const QString& path);
    void OfferLongLineFile(const QString& path, qint64 line);

    DocumentTabs& tabs_;
    Project& project_;
    MessageArea& messages_;
    QWidget* window_;
    QStringList recent_;
    FileWorker worker_;
};
