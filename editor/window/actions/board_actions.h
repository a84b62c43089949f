#pragma once

#include "board_documents.h"
#include "board_monitor.h"
#include "board_tool.h"

#include <QObject>
#include <QStringList>

#include <functional>
#include <optional>
#include <string>

class DocumentTabs;
class MessageArea;
class QWidget;
class Worksheet;
struct BoardEntry;
struct BoardResult;

// What the Board menu does: chooses the board, restarts it, and exchanges files with it. Output is
// written into the worksheet, errors are reported in the window. [ui]
class BoardActions final : public QObject {
    Q_OBJECT

  public:
    // The parts must outlive this object.
    struct Parts {
        QWidget& window;  // The parent of dialogs.
        BoardTool& tool;
        BoardMonitor& board;
        DocumentTabs& tabs;
        Worksheet& worksheet;
        MessageArea& messages;
    };
    explicit BoardActions(const Parts& parts);

    // Uses a real board, or the first one that is attached.
    void UseBoard(std::optional<BoardPort> port);
    // Attaches the virtual board, now and whenever the editor starts, until it is detached.
    void UseVirtualBoard();
    void DetachVirtualBoard();
    bool usesVirtualBoard() const { return usesVirtualBoard_; }
    // Offers the virtual board if no other is attached.
    void OfferVirtualBoard();

    void Restart();
    void RunMain();
    void InstallPackage();
    void UploadFiles();
    void UploadFolder();
    // Uploads files and folders one after another into the board's root directory.
    void Upload(const QStringList& paths);
    void Download();
    void OpenFile();

  Q_SIGNALS:
    // Which of the files is being uploaded, such as "2 of 5"; empty for a single one.
    void UploadNoteChanged(const QString& note);

  private:
    using OnChosen = std::function<void(const BoardEntry& entry)>;

    void UploadNext(const QStringList& paths, qsizetype next);
    void ChooseEntry(const QString& title, const QString& accept, bool withDirectories,
                     const OnChosen& onChosen);
    void DownloadTo(const BoardEntry& entry);
    void OfferBoards();
    void ShowBoard();
    void ShowOutput(const BoardResult& result);

    Parts parts_;
    BoardDocuments documents_;
    bool usesVirtualBoard_ = false;
};
