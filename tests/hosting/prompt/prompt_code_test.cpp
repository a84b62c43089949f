#include "prompt_code.h"

#include "board_process.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

TEST(PromptCode, AnyTextDoesOnTheBoardWhatAPromptDoes)
{
    const BoardProcess board;
    const struct {
        std::string text, output;
    } rows[] = {
        {"1+1", "2\n"},
        {"x = '\"\\\\é\\n'", ""},
        {"print(x, end='')\n", "\"\\é\n"},
        {"x[:2]; None; 'a\"b'", "'\"\\\\'\n'a\"b'\n"},
        {"for i in range(2): i", "0\n1\n"},
        {"    if x:\r\n\r\n        print(7)\r\n    5\r\n", "7\n"},
        {"-1\nprint('-1')", "-1\n"},
        {" \nprint('''a\n   \n''')\n", "a\n   \n\n"},
        {"len('\x01\x03\x04')", "3\n"},
        {"print(\nlen('\x01\x03\x04'))", "3\n"},
        {"# a comment", ""},
    };
    for (const auto& [text, output] : rows) {
        auto result = board.Tool(PromptCommand(text));
        std::erase(result.output, '\r');
        EXPECT_EQ(result.output, output) << text;
        EXPECT_EQ(result.status, 0) << text;
    }
    EXPECT_EQ(board.Tool(PromptCommand("1/0")).status, 1);
    EXPECT_TRUE(PromptCommand("print('\0')"s).empty());
    EXPECT_TRUE(PromptCommand(" \n\t\n").empty());
}

TEST(PromptCode, NamesAreCompletedByAskingTheBoard)
{
    const BoardProcess board;
    board.Tool(PromptCommand("import os; my_name = 1; _mine = [my_name]"));
    board.Tool(PromptCommand("class Box: seen = 1"));
    const struct {
        std::string text;
        std::vector<std::string> names;
    } rows[] = {
        {"os.ren", {"rename"}},
        {"print(my_n", {"my_name"}},
        {"_mi", {"_mine"}},
        {"_mine.ap", {"append"}},
        {"Box.", {"seen"}},
        {"os.path_", {}},
        {"missing.a", {}},
        {"nonl", {"nonlocal"}},
        {"f().a", {}},
        {"1.a", {}},
        {"x ", {}},
    };
    for (const auto& [text, names] : rows) {
        const auto request = FindCompletion(text);
        const auto answer = request ? board.Tool(CompletionCommand(request->object)).output : "";
        EXPECT_EQ(request ? ParseCompletions(answer, *request) : std::vector<std::string>(), names)
            << text;
    }
    EXPECT_EQ(CommonPrefix({"append", "appendix", "apply"}), "app");
}
