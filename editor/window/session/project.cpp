#include "project.h"

#include <QFileInfo>

#include <utility>

namespace {

QString FullPathOfFile(const QString& path)
{
    const QFileInfo file(path);
    return file.isFile() ? file.absoluteFilePath() : QString();
}

QString MainFileIn(const QString& folder)
{
    return folder.isEmpty() ? QString() : FullPathOfFile(folder + "/main.py");
}

}  // namespace

void Project::SetFolder(const QString& folder)
{
    const QFileInfo info(folder);
    folder_ = info.isDir() ? info.absoluteFilePath() : QString();
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
    const QString found = MainFileIn(folder_);
    if (std::exchange(folderTarget_, found) != found) {
        Q_EMIT Changed();
    }
}
