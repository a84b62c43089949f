#include "dropped_files.h"

#include "path_text.h"

#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

QStringList LocalFiles(const QMimeData& data)
{
    QStringList paths;
    for (const auto& url : data.urls()) {
        if (url.isLocalFile()) {
            paths.append(PathFromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()));
        }
    }
    return paths;
}

void AcceptAsCopy(QDropEvent* event)
{
    event->setDropAction(Qt::CopyAction);
    event->accept();
}
