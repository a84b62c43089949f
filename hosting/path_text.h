#pragma once

#include <QString>
#include <QStringList>

#include <string>

// Paths as text. The bytes of a path need not be UTF-8, and Qt's own conversions lose those that
// are not: here each of them becomes a lone surrogate from U+DC80 to U+DCFF. Text of this kind must
// not be passed to Qt's functions that access files. [any]

QString PathToText(const std::string& path);
std::string TextToPath(const QString& text);

// For settings files, which hold Unicode only: text that is not becomes a file URL.
QString PathToStored(const QString& path);
QString PathFromStored(const QString& stored);
QStringList PathsToStored(const QStringList& paths);
QStringList PathsFromStored(const QStringList& stored);

// The path of an encoded URL's path component, such as "/a%20b".
QString PathFromPercentEncoding(const QByteArray& encoded);

// Whether there is such a file or folder; symbolic links are followed.
bool IsRegularFile(const QString& path);
bool IsFolder(const QString& path);
