#include "file_worker.h"

#include "forked_child.h"
#include "recovery_keeper.h"
#include "runtime.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <future>

using std::chrono::milliseconds;
using std::chrono::seconds;

TEST(FileWorker, OnAStuckDiskTheNewestWorkWaitsOthersProceedAndTheEndIsBounded)
{
    Runtime runtime;
    std::promise<void> begun;
    std::promise<void> stuck;
    std::string done;
    const auto add = [&](char name) {
        return [&done, name]() -> FileWorker::Result { return [&done, name] { done += name; }; };
    };
    auto worker = std::make_unique<FileWorker>(2, milliseconds(50));
    worker->Do("a", [&begun, end = stuck.get_future().share()]() -> FileWorker::Result {
        begun.set_value();
        end.wait();
        return {};
    });
    begun.get_future().wait();
    worker->Do("a", add('1'));
    worker->Do("a", add('2'));
    worker->Do("b", add('b'));
    EXPECT_TRUE(worker->WaitFor("b", seconds(20)));
    EXPECT_EQ(done, "b") << "the result has not run";
    EXPECT_FALSE(worker->WaitFor("a", milliseconds(10)));
    stuck.set_value();
    EXPECT_TRUE(WaitUntil([&] { return done == "b2"; })) << done;

    std::promise<void> dead;
    worker->Do("a", [end = dead.get_future().share()]() -> FileWorker::Result {
        end.wait();
        return [] { ADD_FAILURE() << "the result of abandoned work was used"; };
    });
    const auto begin = std::chrono::steady_clock::now();
    worker.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, seconds(10));
    EXPECT_TRUE(FileWorker::HasAbandonedThreads());
    dead.set_value();
}

TEST(FileWorker, WithoutAThreadCopiesAreWrittenAtOnceAndTheUserIsTold)
{
    const TemporaryFolder folder;
    std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
    ForkedChild editor([&] {
        const rlimit none{0, 0};
        if (setrlimit(RLIMIT_NPROC, &none) != 0 || (geteuid() == 0 && setuid(65534) != 0)) {
            return 1;
        }
        Runtime runtime;
        std::string problem;
        RecoveryKeeper keeper(folder / "recovery",
                              [&](const std::string&, const std::string& text) { problem = text; });
        keeper.Keep("1", {.path = "/p", .text = "unsaved"});
        const bool isTold = WaitUntil([&] { return problem.find("thread") != problem.npos; });
        folder.Write("told", isTold ? "yes" : "no: " + problem);
        return pause();
    });
    ASSERT_TRUE(WaitUntil([&] { return !ReadFile(folder / "told").empty(); }));
    EXPECT_EQ(ReadFile(folder / "told"), "yes");
    editor.Kill();
    const auto orphans = RecoveryStore(folder / "recovery").Orphans();
    ASSERT_EQ(orphans.size(), 1u);
    EXPECT_EQ(orphans[0].copy.text, "unsaved");
}
