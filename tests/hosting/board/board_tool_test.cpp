#include "board_tool.h"

#include "board_process.h"
#include "command_monitor.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <algorithm>

TEST(BoardTool, ReportsTheProgressOfACopyAlsoWithPlainMpremote)
{
    const struct {
        const char* isPlain;
        std::size_t size;  // mpremote itself takes about 20 s for the larger one.
        std::size_t reports;
    } rows[] = {{"0", 524'288, 3}, {"1", 8192, 2}};
    const BoardProcess board;
    setenv("QUILP_VIRTUAL_BOARD", board.link().c_str(), 1);
    const TemporaryFolder folder;
    for (const auto& row : rows) {
        setenv("QUILP_PLAIN_MPREMOTE", row.isPlain, 1);
        Runtime runtime;
        CommandMonitor monitor(runtime, nullptr);
        const auto show = runtime.handlers.commandProgress;
        std::vector<Progress> reports;
        QStringList texts;
        runtime.handlers.commandProgress = [&](Progress progress) {
            reports.push_back(progress);
            show(progress);
            texts.append(monitor.Text());
        };
        std::string output;
        BoardTool tool(runtime, QUILP_MPREMOTE, [&](const std::string& text) { output += text; });
        int status = -1;
        const auto path = folder.Write("data", std::string(row.size, 'x'));
        tool.Run({"cp", path, ":copy"}, [&](int result) { status = result; });
        ASSERT_TRUE(WaitUntil([&] { return status >= 0; }));
        EXPECT_EQ(status, 0) << output;
        EXPECT_EQ(ReadFile(board.files() / "copy").size(), row.size);

        ASSERT_GE(reports.size(), row.reports);
        EXPECT_TRUE(std::ranges::is_sorted(reports, {}, &Progress::done));
        EXPECT_LT(reports.front().done, static_cast<long>(row.size) / 2);
        EXPECT_EQ(reports.back().done, static_cast<long>(row.size));
        EXPECT_EQ(reports.back().total, static_cast<long>(row.size));
        EXPECT_TRUE(texts.back().startsWith("Uploading data, 100 %")) << texts.back().toStdString();
        EXPECT_EQ(monitor.Text().toStdString(), "Finished");
    }
    unsetenv("QUILP_PLAIN_MPREMOTE");
    unsetenv("QUILP_VIRTUAL_BOARD");
}
