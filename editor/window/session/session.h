#pragma once

#include "appearance.h"
#include "board_ports.h"
#include "shortcuts.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <expected>
#include <string>

// The range of the zoom, in points added to the font size.
inline constexpr int kMinZoom = -8;
inline constexpr int kMaxZoom = 20;

// The state of the editor when it exited, and the user's settings.
struct Session {
    QByteArray geometry;  // The window's, in Qt's own format, like the splitter's state.
    QByteArray splitter;
    QByteArray columns;  // Like the splitter, with the board panel.
    bool showsBoard = false;
    QStringList files;
    QList<int> lines;  // Of the carets in these files, counted from 1.
    QString front;
    QStringList recent;
    QString folder;  // The project's; empty if there is none, like the target.
    QString target;
    QStringList foldersWithFiles;  // Projects that run with their files (Project).
    BoardPort board;               // The chosen one; without a node if there is none.
    bool usesVirtualBoard = false;
    int zoom = 0;
    bool savesBeforeCommands = true;
    bool wrapsWorksheet = false;
    QStringList promptHistory;
    Appearance appearance = Appearance::System;

    bool operator==(const Session&) const = default;
};

struct LoadedSession {
    Session session;
    QString problem;  // A message for the user; empty if there was no problem.
};

// Reads the session and the shortcuts of commands. A file that cannot be parsed is renamed.
LoadedSession LoadSession(const std::string& path, Shortcuts& shortcuts);

// Creates the file's folder if necessary. The error is a message for the user. [any]
std::expected<void, std::string> SaveSession(const std::string& path, const Session& session,
                                             const Shortcuts& shortcuts);
