#pragma once

#include <QObject>
#include <QString>

// The folder that the user works in, and what a command acts on while no Python document is in
// front. Paths are full, and empty for none. Used on the user-interface thread.
class Project final : public QObject {
    Q_OBJECT

  public:
    explicit Project(QObject* parent) : QObject(parent) {}

    const QString& folder() const { return folder_; }
    // The user's choice, which goes before the folder's.
    const QString& target() const { return target_; }
    // The folder's main.py, which comes and goes with the file.
    const QString& folderTarget() const { return folderTarget_; }

    // What is no folder counts as none, and so for a file.
    void SetFolder(const QString& folder);
    void SetTarget(const QString& file);
    // Looks whether main.py has come or gone.
    void FindFolderTarget();

  Q_SIGNALS:
    void Changed();

  private:
    QString folder_;
    QString target_;
    QString folderTarget_;
};
