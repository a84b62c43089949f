#include "project.h"

#include "path_text.h"

#include <QFileInfo>

#include <cstdlib>

namespace {

QString FullPathOfFile(const QString& path)
{
    return IsRegularFile(path) ? QFileInfo(path).absoluteFilePath() : QString();
}

QString MainFileIn(const QString& folder)
{
    return folder.isEmpty() ? QString() : FullPathOfFile(folder + "/main.py");
}

// The variable with the folder that the tool's launcher mounts while a program runs.
constexpr const char* kMountVariable = "QUILP_MOUNT";

}  // namespace

Project::Project(QObject* parent) : QObject(parent)
{
    connect(this, &Project::Changed, this, &Project::NameFolder);
}

Project::~Project()
{
    if (isFolderNamed_) {
        unsetenv(kMountVariable);
    }
}

void Project::NameFolder()
{
    if (runsWithFiles()) {
        setenv(kMountVariable, TextToPath(folder_).c_str(), 1);
    } else if (isFolderNamed_) {
        unsetenv(kMountVariable);
    }
    isFolderNamed_ = runsWithFiles();
}

void Project::SetFolder(const QString& folder)
{
    folder_ = IsFolder(folder) ? QFileInfo(folder).absoluteFilePath() : QString();
    folderTarget_ = MainFileIn(folder_);
    Q_EMIT Changed();
}

void Project::SetTarget(const QString& file)
{
    target_ = FullPathOfFile(file);
    Q_EMIT Changed();
}

void Project::SetRunsWithFiles(bool runsWithFiles)
{
    foldersWithFiles_.removeAll(folder_);
    if (runsWithFiles && !folder_.isEmpty()) {
        foldersWithFiles_.append(folder_);
    }
    Q_EMIT Changed();
}

void Project::SetFoldersWithFiles(const QStringList& folders)
{
    foldersWithFiles_ = folders;
    Q_EMIT Changed();
}

void Project::UpdateFolderTarget()
{
    if (folder_.isEmpty()) {
        return;
    }
    worker_.Do({}, [this, folder = folder_, known = folderTarget_]() -> FileWorker::Result {
        const QString found = MainFileIn(folder);
        if (found == known) {
            return {};
        }
        return [this, folder, found] {
            if (folder == folder_) {
                folderTarget_ = found;
                Q_EMIT Changed();
            }
        };
    });
}
