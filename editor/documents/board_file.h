#pragma once

#include "board_monitor.h"

#include <QByteArray>

#include <string>

// The file of a board that a document was opened from.
struct BoardFile {
    std::string path;           // On the board; begins with "/".
    BoardMonitor::Board board;  // The one that has the file.
    std::string copy;           // A file of this computer with the same name, to run the text.
    QByteArray sha256;          // Of its content when it was last read or saved.
    // Whether a save overwrites other content: the user agreed, or an earlier save may have left
    // it.
    bool mayOverwrite = false;
};
