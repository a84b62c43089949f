#include "command_line.h"

#include <gtest/gtest.h>

using Words = std::vector<std::string>;

TEST(CommandLine, IsCutByQuotesAndNothingElseOfAShellHappens)
{
    struct Row {
        const char* name;
        const char* line;
        Words words;
    };
    const Row rows[] = {
        {"line feed at the end", "tool ls \n", {"tool", "ls"}},
        {"two blanks", "cp  -r x\n", {"cp", "-r", "x"}},
        {"quoted blank", "ls '/my lib'\n", {"ls", "/my lib"}},
        {"quoted colon path", "cp a.py :'b c.py'", {"cp", "a.py", ":b c.py"}},
        {"empty word", "ls ''", {"ls", ""}},
        {"double quotes", R"(run "a 'b' c")", {"run", "a 'b' c"}},
        {"backslash", R"(run a\ b)", {"run", "a b"}},
        {"semicolon", "run x;touch y.py", {"run", "x;touch", "y.py"}},
        {"operators", "run a|b & c > d", {"run", "a|b", "&", "c", ">", "d"}},
        {"expansions", "run $HOME `id` $(id) *", {"run", "$HOME", "`id`", "$(id)", "*"}},
        {"UTF-8", "run /tmp/naïve/日本.py", {"run", "/tmp/naïve/日本.py"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto words = SplitCommandLine(row.line);
        ASSERT_TRUE(words) << words.error();
        EXPECT_EQ(*words, row.words);
    }
}

TEST(CommandLine, UnbalancedQuotesAndEmptyLinesAreErrors)
{
    for (const char* line : {"rm -r :'it's'", "run \"a", "", " \n"}) {
        EXPECT_FALSE(SplitCommandLine(line)) << line;
    }
}
