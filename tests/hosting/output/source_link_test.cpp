#include "source_link.h"

#include <gtest/gtest.h>

TEST(SourceLink, PlacesInTracebacksAreFound)
{
    const struct {
        QString before, link, after;
        QString path;
        int line;
    } rows[] = {
        {"  ", "File \"/p/x.py\", line 7", "", "/p/x.py", 7},
        {"  ", "File /p/x.py, line 13", ", in <module>\r\n", "/p/x.py", 13},
        {"", "File \"/p/it's \"so\".py\", line 2", "", "/p/it's \"so\".py", 2},
        {"", "File \"/p, line 3, 4.py\", line 5", "", "/p, line 3, 4.py", 5},
        {"😀 ", "File /π/😀.py, line 5", ".", "/π/😀.py", 5},
        {"File \"<stdin>\", line 1 ", "File \"/p\", line 2", "", "/p", 2},
    };
    for (const auto& row : rows) {
        const auto link = FindSourceLink(row.before + row.link + row.after);
        ASSERT_TRUE(link) << row.link.toStdString();
        EXPECT_EQ(link->path, row.path);
        EXPECT_EQ(link->line, row.line);
        EXPECT_EQ(link->start, row.before.size());
        EXPECT_EQ(link->length, row.link.size());
    }
}

TEST(SourceLink, OtherLinesContainNone)
{
    for (const char* line :
         {"", "File \"<string>\", line 2", "File \"/p/x.py\", line 2147483648", "File \"\", line 1",
          "File \", line 1", "File not found, line 3", "File /p/x.py line 3"}) {
        EXPECT_FALSE(FindSourceLink(line)) << line;
    }
}
