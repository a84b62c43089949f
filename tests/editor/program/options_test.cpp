#include "options.h"

#include <gtest/gtest.h>

TEST(Options, ValidCommandLinesAreParsed)
{
    const auto options =
        ParseOptions({"--virtual-board=/b", "--document", "a b.py", "--batch", "run", "wait=0.5",
                      "--target=t.py", "--mount", "/m", "--input", "restart", "prompt=a=b", "main",
                      "--", "upload-as-main"});
    ASSERT_TRUE(options) << options.error();
    EXPECT_TRUE(options->virtualBoard);
    EXPECT_EQ(options->boardFolder, "/b");
    EXPECT_EQ(options->document, "a b.py");
    EXPECT_EQ(options->target, "t.py");
    EXPECT_EQ(options->mount, "/m");
    EXPECT_TRUE(options->input);
    EXPECT_EQ(options->commands,
              (std::vector<BatchCommand>{FindCommandByBatchName("run"), Wait(0.5), Restart(),
                                         Prompt{"a=b"}, RunMain(),
                                         FindCommandByBatchName("upload-as-main")}));
    EXPECT_EQ(ParseOptions({"--board=/dev/x"})->board, "/dev/x");
    EXPECT_EQ(ParseOptions({"run", "--virtual-board", "--", "--batch"})->files,
              (std::vector<std::string>{"run", "--batch"}));
}

TEST(Options, InvalidCommandLinesAreRefusedWithTheInvalidWord)
{
    const struct {
        std::vector<std::string> arguments;
        const char* word;
    } rows[] = {
        {{"--batch", "dance"}, "dance"},
        {{"--batch", "wait=x"}, "wait=x"},
        {{"--batch", "wait=nan"}, "wait=nan"},
        {{"--batch", "wait=1e99"}, "wait=1e99"},
        {{"--batch", "run", "--", "--batch"}, "--batch"},
        {{"--open-device-window", "a.py"}, "--open-device-window"},
        {{"--show-board", "--batch", "run"}, "--show-board"},
        {{"--nonsense", "--batch", "run"}, "--nonsense"},
        {{"--input"}, "--input"},
        {{"--board=/dev/x", "--virtual-board"}, "--board"},
        {{"--batch", "run", "-xy"}, "-xy"},
        {{"--batch", "run", "--document"}, "--document"},
    };
    for (const auto& row : rows) {
        const auto options = ParseOptions(row.arguments);
        ASSERT_FALSE(options) << row.word;
        EXPECT_NE(options.error().find(row.word), std::string::npos) << options.error();
    }
}
