#include "recovery.h"

#include "file_save.h"
#include "forked_child.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <list>

namespace {

namespace fs = std::filesystem;

const RecoveryCopy kCopy{"/p/\xFF.py", TextEncoding::Latin1, "a\r\nπ😀"};

void Leave(const std::string& root)
{
    ASSERT_TRUE(RecoveryStore(root).Keep("1", kCopy));
}

}  // namespace

TEST(Recovery, AKilledEditorsCopiesAreOfferedAtOnceAndOnlyOnce)
{
    const TemporaryFolder folder;
    const auto root = folder / "recovery";
    ForkedChild editor([&] {
        RecoveryStore store(root);
        const bool kept = store.Keep("1", {}) && store.Keep("1", kCopy) && store.Keep("2", kCopy);
        store.Discard("2");
        folder.Write("ready", kept ? "yes" : "no");
        return pause();
    });
    ASSERT_TRUE(WaitUntil([&] { return ReadFile(folder / "ready") == "yes"; }));
    RecoveryStore one(root);
    EXPECT_TRUE(one.Orphans().empty());
    editor.Kill();
    const auto orphans = one.Orphans();
    EXPECT_TRUE(RecoveryStore(root).Orphans().empty());
    ASSERT_EQ(orphans.size(), 1u);
    const auto& copy = orphans[0].copy;
    EXPECT_TRUE(copy.path == kCopy.path && copy.encoding == kCopy.encoding);
    EXPECT_EQ(copy.text, kCopy.text);
}

TEST(Recovery, AnAdoptedCopyIsKeptAndDiscardedLikeAnyOther)
{
    const TemporaryFolder root;
    Leave(root.path());
    Leave(root.path());
    {
        RecoveryStore store(root.path());
        ASSERT_TRUE(store.Keep("1", kCopy));  // The same id as in the other editors.
        const auto orphans = store.Orphans();
        ASSERT_EQ(orphans.size(), 2u);
        store.Discard(orphans[0].id);
        ASSERT_TRUE(store.Keep(orphans[1].id, {"/q", TextEncoding::Utf8, "newer"}));
        store.Discard("1");
        store.Discard("no such id");
    }
    {
        RecoveryStore next(root.path());
        const auto orphans = next.Orphans();
        ASSERT_EQ(orphans.size(), 1u);
        EXPECT_EQ(orphans[0].copy.text, "newer");
        next.Discard(orphans[0].id);
    }
    EXPECT_TRUE(fs::is_empty(root.path()));
}

TEST(Recovery, ADamagedCopyIsSkippedAndLeftWhereItIs)
{
    const TemporaryFolder root;
    Leave(root.path());
    const std::string file = RecoveryStore(root.path()).Orphans().at(0).id;
    const std::string good = ReadFile(file);
    const auto folder = fs::path(file).parent_path().filename().string() + "/";
    const std::pair<std::string, std::string> damaged[] = {
        {folder + "empty", ""},
        {folder + "newer", "Q" + good.substr(1)},
        {folder + "short", good.substr(0, 30)},
        {folder + "flipped", good.substr(0, good.size() - 1) + "?"}};
    for (const auto& [name, bytes] : damaged) {
        root.Write(name, bytes);
    }
    // A process that is killed while it writes leaves such a file.
    const auto half = root.Write(folder + kTemporaryPrefix + "x", "half");
    EXPECT_EQ(RecoveryStore(root.path()).Orphans().size(), 1u);
    for (const auto& [name, bytes] : damaged) {
        EXPECT_TRUE(fs::exists(root / name) && ReadFile(root / name) == bytes) << name;
    }
    EXPECT_FALSE(fs::exists(half));

    // The first copy of a document may be complete when the process is killed, but not renamed yet.
    fs::rename(file, half);
    for (int i = 0; i < 2; ++i) {
        const auto orphans = RecoveryStore(root.path()).Orphans();
        ASSERT_EQ(orphans.size(), 1u);
        EXPECT_EQ(orphans[0].copy.text, kCopy.text);
    }
}

TEST(Recovery, EditorsThatStartTogetherAdoptEachOrphanOnce)
{
    constexpr int kOrphans = 30;
    const TemporaryFolder folder;
    const auto root = folder / "recovery";
    for (int i = 0; i < kOrphans; ++i) {
        Leave(root);
    }
    std::list<ForkedChild> editors;
    for (int i = 0; i < 4; ++i) {
        editors.emplace_back([&] {
            WaitUntil([&] { return fs::exists(folder / "go"); });
            RecoveryStore store(root);
            const auto orphans = store.Orphans();
            for (const auto& orphan : orphans) {
                // Others may take the new store's folder for an orphaned one at any time.
                RecoveryStore another(root);
                if (!another.Keep("own", kCopy)) {
                    return 100;
                }
                another.Discard("own");
                store.Discard(orphan.id);
            }
            return static_cast<int>(orphans.size());
        });
    }
    folder.Write("go", "");
    int adopted = 0;
    for (auto& editor : editors) {
        adopted += editor.Wait();
    }
    EXPECT_EQ(adopted, kOrphans);
    EXPECT_TRUE(RecoveryStore(root).Orphans().empty());
    EXPECT_TRUE(fs::is_empty(root));
}

TEST(Recovery, AFolderIsCreatedOnlyWhenNeededAndFailuresAreReported)
{
    const TemporaryFolder folder;
    EXPECT_TRUE(RecoveryStore(folder / "none").Orphans().empty());
    EXPECT_FALSE(fs::exists(folder / "none"));
    const auto file = folder.Write("file", "");
    EXPECT_EQ(RecoveryStore(file).Keep("1", kCopy).error(),
              "cannot create a folder in " + file + ": Not a directory");
}
