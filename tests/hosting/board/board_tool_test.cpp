#include "board_tool.h"

#include "board_process.h"
#include "command_monitor.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace {

// Lets one command of the tool end, and notes what it reports meanwhile.
class Copying {
  public:
    explicit Copying(const std::vector<std::string>& words)
    {
        Runtime runtime;
        CommandMonitor monitor(runtime, nullptr);
        const auto show = runtime.handlers.commandProgress;
        runtime.handlers.commandProgress = [&](Progress progress) {
            reports.push_back(progress);
            show(progress);
            lastText = monitor.Text().toStdString();
        };
        BoardTool tool(runtime, QUILP_MPREMOTE, [&](const std::string& text) { output += text; });
        int status = -1;
        tool.Run(words, [&](int result) { status = result; });
        EXPECT_TRUE(WaitUntil([&] { return status >= 0; }));
        EXPECT_EQ(status, 0) << output;
        EXPECT_EQ(monitor.Text().toStdString(), "Finished");
    }

    std::vector<Progress> reports;
    std::string lastText;
    std::string output;
};

}  // namespace

TEST(BoardTool, ReportsTheProgressOfACopyAlsoWithPlainMpremote)
{
    const BoardProcess board;
    setenv("QUILP_VIRTUAL_BOARD", board.link().c_str(), 1);
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder / "lib/inner");
    folder.Write("lib/a", std::string(300'000, 'a'));
    folder.Write("lib/inner/b", std::string(200'000, 'b'));
    folder.Write("large", std::string(524'288, 'x'));  // mpremote itself would take 20 s.
    folder.Write("small", std::string(8192, 'x'));
    std::filesystem::create_directory(folder / "copy");
    const struct {
        const char* isPlain;
        std::vector<std::string> words;
        long size;
        std::size_t reports;
        std::string text;
    } rows[] = {
        {"0", {"cp", folder / "large", ":"}, 524'288, 3, "Uploading large"},
        {"1", {"cp", folder / "small", ":"}, 8192, 2, "Uploading small"},
        {"0", {"cp", "-r", folder / "lib", ":/"}, 500'000, 3, "Uploading lib"},
        {"0", {"cp", "-r", folder / "lib", ":/"}, 500'000, 2, "Uploading lib"},  // The same files.
        {"0", {"cp", "-r", ":lib", folder / "copy"}, 500'000, 3, "Downloading lib"},
    };
    for (const auto& row : rows) {
        setenv("QUILP_PLAIN_MPREMOTE", row.isPlain, 1);
        const Copying copying(row.words);
        const auto& reports = copying.reports;
        ASSERT_GE(reports.size(), row.reports) << row.text;
        EXPECT_TRUE(std::ranges::is_sorted(reports, {}, &Progress::done)) << row.text;
        EXPECT_LT(reports.front().done, row.size * 2 / 3) << row.text;
        EXPECT_EQ(reports.back().done, row.size) << row.text;
        EXPECT_TRUE(std::ranges::all_of(reports, [&](const Progress& each) {
            return each.total == row.size;
        })) << row.text;
        EXPECT_TRUE(copying.lastText.starts_with(row.text + ", 100 %")) << copying.lastText;
    }
    EXPECT_EQ(ReadFile(folder / "copy/lib/inner/b"), ReadFile(folder / "lib/inner/b"));
    unsetenv("QUILP_PLAIN_MPREMOTE");
    unsetenv("QUILP_VIRTUAL_BOARD");
}
