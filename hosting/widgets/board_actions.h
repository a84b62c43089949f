#pragma once

#include "board_monitor.h"
#include "board_tool.h"

#include <QObject>
#include <QStringList>

#include <functional>
#include <optional>
#include <string>

class HostMessages;
class OutputView;
class QWidget;
struct BoardEntry;
struct BoardResult;

// What the Board menu does: chooses the board, restarts it, and exchanges files with it. [ui]
class BoardActions final : public QObject {
    Q_OBJECT

  public:
    // The parts must outlive this object.
    struct Parts {
        std::function<QWidget*()> window;  // The parent of dialogs.
        BoardTool& tool;
        BoardMonitor& board;
        OutputView& output;
        HostMessages& messages;
    };
    BoardActions(Parts parts, QObject* parent);

    // Uses a real board, or the first one that is attached.
    void UseBoard(std::optional<BoardPort> port);
    // Attaches the virtual board, now and whenever the host starts, until it is detached.
    void UseVirtualBoard();
    // The same as in an earlier session, unless the environment names another board.
    void RestoreVirtualBoard();
    void DetachVirtualBoard();
    bool usesVirtualBoard() const { return usesVirtualBoard_; }
    // Opens the folder of its files in the desktop's file manager.
    void OpenBoardFolder();

    void Restart();
    void RunMain();
    void InstallPackage();
    void UploadFiles();
    void UploadFolder();
    // Uploads files and folders one after another into the board's root directory.
    void Upload(const QStringList& paths);
    void Download();
    // Asks for a file of the board, and passes its path to `open`.
    void OpenFile(const std::function<void(const std::string& path)>& open);

  Q_SIGNALS:
    // Which of the files is being uploaded, such as "2 of 5"; empty for a single one.
    void UploadNoteChanged(const QString& note);

  private:
    using OnChosen = std::function<void(const BoardEntry& entry)>;

    void UploadNext(const QStringList& paths, int next);
    void ChooseEntry(const QString& title, const QString& accept, bool withDirectories,
                     const OnChosen& onChosen);
    void DownloadTo(const BoardEntry& entry);
    void ShowOutput(const BoardResult& result);

    Parts parts_;
    bool usesVirtualBoard_ = false;
};
