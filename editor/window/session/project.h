#pragma once

#include "file_worker.h"

#include <QObject>
#include <QString>

// The folder that the user works in, and the target: the file that commands act on when the front
// document is not Python. Paths are full; empty if there is none. [ui]
class Project final : public QObject {
    Q_OBJECT

  public:
    explicit Project(QObject* parent) : QObject(parent) {}

    const QString& folder() const { return folder_; }
    // The target that the user chose, which takes precedence over the folder's.
    const QString& target() const { return target_; }
    // The folder's main.py; empty while that file does not exist.
    const QString& folderTarget() const { return folderTarget_; }

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
    FileWorker worker_{1, std::chrono::seconds(1)};
};
