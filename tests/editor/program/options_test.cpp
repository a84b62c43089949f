#include "options.h"

#include <gtest/gtest.h>

TEST(Options, ValidCommandLinesAreParsed)
{
    const auto options = ParseOptions({"--virtual-board=/b", "--document", "a b.py", "--batch",
                                       "run", "wait=0.5", "--target=t.py", "--", "upload-as-main"});
    ASSERT_TRUE(options) << options.error();
    EXPECT_TRUE(options->virtualBoard);
    EXPECT_EQ(options->boardFolder, "/b");
    EXPECT_EQ(options->document, "a b.py");
    EXPECT_EQ(options->target, "t.py");
    EXPECT_EQ(options->commands,
              (std::vector<BatchCommand>{FindCommandByBatchName("run"), Wait(0.5),
                                         FindCommandByBatchName("upload-as-main")}));
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
        {{"--nonsense", "--batch", "run"}, "--nonsense"},
        {{"--batch", "run", "-xy"}, "-xy"},
        {{"--batch", "run", "--document"}, "--document"},
    };
    for (const auto& row : rows) {
        const auto options = ParseOptions(row.arguments);
        ASSERT_FALSE(options) << row.word;
        EXPECT_NE(options.error().find(row.word), std::string::npos) << options.error();
    }
}
