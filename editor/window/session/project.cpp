#include "project.h"

#include "path_text.h"

#include <QFileInfo>

namespace {

QString FullPathOfFile(const QString& path)
{
    return IsRegularFile(path) ? QFileInfo(path).absoluteFilePath() : QString();
}

QString MainFileIn(const QString& folder)
{
    return folder.isEmpty() ? QString() : FullPathOfFile(folder + "/main.py");
}

}  // namespace

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
