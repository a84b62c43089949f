#include "front_saver.h"

#include "board_documents.h"
#include "document_tabs.h"
#include "message_area.h"

FrontSaver::FrontSaver(DocumentTabs& tabs, MessageArea& messages, QObject* parent)
    : QObject(parent), tabs_(tabs), messages_(messages)
{
}

bool FrontSaver::Save()
{
    const bool isSaved = SaveFront();
    if (const auto* const front = tabs_.Front(); !isSaved && front->IsSaving()) {
        messages_.Report(tr("%1 is still being saved. Repeat the command when that is done.")
                             .arg(front->Name()));
    }
    return isSaved;
}

bool FrontSaver::SaveFront()
{
    const auto* const front = tabs_.Front();
    if (front == nullptr) {
        return true;
    }
    if (front->boardFile() != nullptr) {
        return !front->IsSaving() && WriteCopy();  // The command would stop the save.
    }
    if (front->path().empty()) {
        // An empty one is no program: the target runs, if there is one.
        return front->IsPristine() || SaveUnnamed();
    }
    return !savesFirst_ || !front->IsModified() || tabs_.saver().SaveFront();
}

// The text of a file of the board runs although the board does not have it yet.
bool FrontSaver::WriteCopy()
{
    const auto written = BoardDocuments::WriteCopy(*tabs_.Front());
    if (!written) {
        messages_.Report(QString::fromStdString(written.error()));
    }
    return written.has_value();
}

// A program without a file is saved in any case, because it could not run otherwise.
bool FrontSaver::SaveUnnamed()
{
    if (!tabs_.saver().SaveFront()) {
        return false;
    }
    const bool isPython = tabs_.Front()->IsPython();
    if (!isPython) {
        messages_.Report(tr("%1 cannot be run: the names of Python files end in .py.")
                             .arg(tabs_.Front()->Name()));
    }
    return isPython;
}
