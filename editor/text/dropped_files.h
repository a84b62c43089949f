#pragma once

#include <QStringList>

class QDropEvent;
class QMimeData;

// Files and folders of this machine that somebody drags; full paths.
QStringList LocalFiles(const QMimeData& data);

// As a copy: a file manager would remove what it believes was moved.
void AcceptAsCopy(QDropEvent* event);
