#include "board_command.h"

#include "board_scripts.h"
#include "main_program.h"

#include <gtest/gtest.h>

TEST(BoardCommand, IsDescribedByTheWordsOfItsLine)
{
    const struct {
        std::vector<std::string> words;
        const char* running;
        const char* stopped = "";
    } rows[] = {
        {{"run", "/p/a b.py"}, "Running a b.py"},
        {{"resume", "run", "/tmp/x"}, "Running the input"},
        {{"resume", "exec", "1+1"}, "Running the input"},
        {{"cp", "/p/big.py", ":big.py"},
         "Uploading big.py",
         "The upload of big.py was stopped: the board has only a part of it."},
        {{"cp", "/p/a.py", ":main.py"},
         "Uploading a.py as main.py",
         "The upload of a.py as main.py was stopped: the board has only a part of it."},
        {{"cp", "-r", "/p/lib/", ":/"},
         "Uploading lib",
         "The upload of lib was stopped: the board has only a part of it."},
        {{"cp", ":data.csv", "/p"}, "Downloading data.csv"},
        {{"rm", "-r", ":/lib/data.csv"},
         "Deleting data.csv",
         "The deletion of data.csv was stopped: a part of it may still be on the board."},
        {{"ls"}, "Listing the board"},
        {{"ls", "/lib"}, "Listing lib"},
        {{"ls", "/"}, "Listing the board"},
        {{"devs", "df"}, "Asking for the board's status"},
        {{"mip", "install", "aiohttp"}, "Installing aiohttp"},
        {RunMainCommand(), "Running main.py"},
        {ListFilesWords(), "Listing the board"},
        {RestartWords(), "Restarting the board"},
        {{"disconnect", "/p"}, ""},
        {{"cp"}, ""},
        {{}, ""},
    };
    for (auto row : rows) {
        row.words.insert(row.words.begin(), "/tool.py");
        const auto command = ParseBoardCommand(row.words);
        EXPECT_EQ(DescribeRunning(command).toStdString(), row.running) << row.words.back();
        EXPECT_EQ(DescribeStopped(command).toStdString(), row.stopped) << row.words.back();
    }
}
