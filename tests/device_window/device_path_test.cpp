#include "device_path.h"

#include "Path.h"

#include <gtest/gtest.h>

using View = std::string_view;

TEST(DevicePath, IsJoinedWithoutNormalization)
{
    const std::tuple<View, View, View> rows[] = {
        {"/", "boot.py", "/boot.py"}, {"/lib", "x.py", "/lib/x.py"}, {"", "a", "/a"},
        {"/a/", "b", "/a/b"},         {"/a", "/b", "/a//b"},         {"/a", "", "/a/"},
    };
    for (const auto& [dir, leaf, path] : rows) {
        EXPECT_EQ(AppendPath(dir, leaf), path);
    }
}

TEST(DevicePath, IsSplitWithoutNormalization)
{
    struct Row {
        std::string path;
        View parent, frameworkParent, leaf;
        std::vector<View> components;
    };
    const Row rows[] = {
        {"/lib/x.py", "/lib", "/lib", "x.py", {"/", "lib", "x.py"}},
        {"/lib", "", "/", "lib", {"/", "lib"}},
        {"/lib/", "/lib", "/lib", "", {"/", "lib"}},
        {"/", "", "/", "", {"/"}},
        {"", "", "", "", {}},
        {"x", "x", "x", "x", {"", "x"}},
        {"a/b", "a", "a", "b", {"", "a", "b"}},
        {"/a//b", "/a/", "/a/", "b", {"/", "a", "b"}},
        {"//a", "/", "/", "a", {"/", "a"}},
        {"///", "//", "//", "", {"/"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(ParentPath(View(row.path)), row.parent);
        EXPECT_EQ(ParentPath(row.path), row.frameworkParent);
        EXPECT_EQ(LeafItem(row.path), row.leaf);
        std::vector<View> components;
        PathIter i(row.path);
        for (; !i.AtEnd(); i.Advance()) {
            components.push_back(i.Component());
        }
        EXPECT_EQ(components, row.components);
        i.Advance();
        EXPECT_TRUE(i.AtEnd());
    }
}
