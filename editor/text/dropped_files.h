#pragma once

#include <QStringList>

class QDropEvent;
class QMimeData;

// The full paths of the local files and folders in drag-and-drop data. [ui]
QStringList LocalFiles(const QMimeData& data);

// Accepts the drop as a copy, because a file manager would delete files that were moved. [ui]
void AcceptAsCopy(QDropEvent* event);
