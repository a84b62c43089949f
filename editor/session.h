#pragma once

#include "appearance.h"
#include "shortcuts.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <expected>
#include <string>

// Points that can be added to the font's size.
inline constexpr int kSmallestZoom = -8;
inline constexpr int kLargestZoom = 20;

// What the editor looked like when it ended, and what the user has set.
struct Session {
    QByteArray geometry;  // Of the window, and the rest of Qt's own form.
    QByteArray splitter;
    QStringList files;
    QString front;
    QStringList recent;
    QString folder;  // The project's; empty for none, as the target.
    QString target;
    int zoom = 0;
    bool savesBeforeCommands = true;
    Appearance appearance = Appearance::System;
};

struct LoadedSession {
    Session session;
    QString problem;  // A sentence for the user; empty as a rule.
};

// Reads the file, and the commands' shortcuts from it. One that cannot be understood is set aside.
LoadedSession LoadSession(const std::string& path, Shortcuts& shortcuts);

// Makes the file's folder. The error is a sentence.
std::expected<void, std::string> SaveSession(const std::string& path, const Session& session,
                                             const Shortcuts& shortcuts);
