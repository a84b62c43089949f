#include "command_line.h"

#include "wait.h"

#include <gtest/gtest.h>

using Words = std::vector<std::string>;

TEST(CommandLine, IsSplitAtSpacesAndQuotesWithoutOtherShellSyntax)
{
    const struct {
        const char* name;
        const char* line;
        std::vector<std::string> words;
    } rows[] = {
        {"line feed at the end", "tool  ls \n", {"tool", "ls"}},
        {"quoted part", "cp a.py :'b c.py'", {"cp", "a.py", ":b c.py"}},
        {"empty word", "ls ''", {"ls", ""}},
        {"double quotes", R"(run "a 'b' c")", {"run", "a 'b' c"}},
        {"backslash", R"(run a\ b)", {"run", "a b"}},
        {"operators", "x;touch a|b & c > d", {"x;touch", "a|b", "&", "c", ">", "d"}},
        {"expansions", "run $HOME `id` $(id) *", {"run", "$HOME", "`id`", "$(id)", "*"}},
    };
    for (const auto& row : rows) {
        const auto words = SplitCommandLine(row.line);
        ASSERT_TRUE(words) << row.name << ": " << words.error();
        EXPECT_EQ(*words, row.words) << row.name;
    }
    for (const std::string& odd :
         {std::string("a #b/# c\t\n'\"\\#"), std::string("#"), EveryByte()}) {
        const std::string path = "/" + odd.substr(odd.front() == '\0');
        EXPECT_EQ(SplitCommandLine("run " + EscapeWord(path) + "\n"), (Words{"run", path})) << odd;
    }
    EXPECT_EQ(EscapeWord("/a#b;$(c).py"), "/a#b;$(c).py") << "nothing to escape";
    for (const char* line : {"rm -r :'it's'", "run \"a", " \n"}) {
        EXPECT_FALSE(SplitCommandLine(line)) << line;
    }
}
