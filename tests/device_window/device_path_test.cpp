#include "device_path.h"

#include "Path.h"

#include <gtest/gtest.h>

TEST(DevicePath, IsJoinedAndTakenApartWithoutNormalising)
{
    using View = std::string_view;
    EXPECT_EQ(AppendPath(View("/"), View("boot.py")), "/boot.py");
    EXPECT_EQ(AppendPath(View("/lib"), View("x.py")), "/lib/x.py");
    EXPECT_EQ(AppendPath(View(""), View("a")), "/a");
    EXPECT_EQ(AppendPath(View("/a/"), View("b")), "/a/b");
    EXPECT_EQ(AppendPath(View("/a"), View("/b")), "/a//b");
    EXPECT_EQ(AppendPath(View("/a"), View("")), "/a/");
    struct Row {
        const char* path;
        const char* parent;
        const char* frameworkParent;
        const char* leaf;
    };
    const Row rows[] = {
        {"/lib/x.py", "/lib", "/lib", "x.py"},
        {"/lib", "", "/", "lib"},
        {"/lib/", "/lib", "/lib", ""},
        {"/", "", "/", ""},
        {"", "", "", ""},
        {"x", "x", "x", "x"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(ParentPath(View(row.path)), row.parent);
        EXPECT_EQ(ParentPath(std::string(row.path)), row.frameworkParent);
        EXPECT_EQ(LeafItem(row.path), row.leaf);
    }
}

TEST(DevicePath, IsWalkedComponentByComponent)
{
    using Components = std::vector<std::string>;
    struct Row {
        const char* path;
        Components components;
    };
    const Row rows[] = {
        {"/lib/sub", {"/", "lib", "sub"}},
        {"/lib/", {"/", "lib"}},
        {"//a", {"/", "a"}},
        {"/", {"/"}},
        {"///", {"/"}},
        {"", {}},
        {"a/b", {"", "a", "b"}},
        {"/a//b", {"/", "a", "b"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path);
        Components components;
        for (PathIter i(row.path); !i.AtEnd(); i.Advance()) {
            components.emplace_back(i.Component());
        }
        EXPECT_EQ(components, row.components);
    }
    PathIter over("/");
    over.Advance();
    over.Advance();  // Stays at the end.
    EXPECT_TRUE(over.AtEnd());
}
