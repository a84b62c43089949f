#include "run_modes.h"

#include "user_folders.h"

#include <QCoreApplication>

#include <cstdio>

int ReportError(const std::string& message, int status)
{
    std::fprintf(stderr, "quilp-editor: %s\n", message.c_str());
    return status;
}

std::string BoardProgram()
{
    return QCoreApplication::applicationDirPath().toStdString() + "/virtual-board";
}

std::string BoardFolder(const Options& options)
{
    return options.boardFolder.empty() ? UserFolders::OfUser().boardFolder() : options.boardFolder;
}
