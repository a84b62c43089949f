#pragma once

#include "appearance.h"
#include "shortcuts.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <expected>
#include <string>

// The zoom in points that are added to the font's size.
inline constexpr int kMinZoom = -8;
inline constexpr int kMaxZoom = 20;

// What the editor looked like when it exited, and what the user has set.
struct Session {
    QByteArray geometry;  // Of the window, in Qt's own form like the splitter's state.
    QByteArray splitter;
    QStringList files;
    QString front;
    QStringList recent;
    QString folder;  // The project's; empty for none, like the target.
    QString target;
    int zoom = 0;
    bool savesBeforeCommands = true;
    Appearance appearance = Appearance::System;
};

struct LoadedSession {
    Session session;
    QString problem;  // A sentence for the user; empty when there was none.
};

// Reads the file, and the commands' shortcuts from it. A file that cannot be parsed is set aside.
LoadedSession LoadSession(const std::string& path, Shortcuts& shortcuts);

// Makes the file's folder. The error is a sentence.
std::expected<void, std::string> SaveSession(const std::string& path, const Session& session,
                                             const Shortcuts& shortcuts);
