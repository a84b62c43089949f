#include "dropped_files.h"

#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

QStringList LocalFiles(const QMimeData& data)
{
    QStringList paths;
    for (const auto& url : data.urls()) {
        if (url.isLocalFile()) {
            paths.append(url.toLocalFile());
        }
    }
    return paths;
}

void AcceptAsCopy(QDropEvent* event)
{
    event->setDropAction(Qt::CopyAction);
    event->accept();
}
