#pragma once

#include "file_worker.h"

#include <QObject>
#include <QString>
#include <QStringList>

// The folder that the user works in, and the target: the file that commands act on when the front
// document is not Python. Paths are full; empty if there is none. [ui]
class Project final : public QObject {
    Q_OBJECT

  public:
    explicit Project(QObject* parent);
    ~Project() override;

    const QString& folder() const { return folder_; }
    // The target that the user chose, which takes precedence over the folder's.
    const QString& target() const { return target_; }
    // The folder's main.py; empty while that file does not exist.
    const QString& folderTarget() const { return folderTarget_; }

    // Whether programs run with the folder's files: it is mounted on the board meanwhile, so that
    // they can import them. Kept for each folder.
    bool runsWithFiles() const { return foldersWithFiles_.contains(folder_); }
    void SetRunsWithFiles(bool runsWithFiles);
    const QStringList& foldersWithFiles() const { return foldersWithFiles_; }
    void SetFoldersWithFiles(const QStringList& folders);

    // A path that is not a folder, or not a file, clears the setting.
    void SetFolder(const QString& folder);
    void SetTarget(const QString& file);
    // Checks whether the folder's main.py has been created or deleted. Does not wait for the disk.
    void UpdateFolderTarget();

  Q_SIGNALS:
    void Changed();

  private:
    QString folder_;
    QString target_;
    QString folderTarget_;
    void NameFolder();

    bool isFolderNamed_ = false;  // In the environment.
    QStringList foldersWithFiles_;
    FileWorker worker_{1, std::chrono::seconds(1)};
};
