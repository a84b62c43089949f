#include "ui_queue.h"

#include "rebinder.h"
#include "recording_host.h"
#include "runtime.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEventLoop>

#include <atomic>
#include <thread>

static const std::atomic<bool> kNever = false;

TEST(UiQueue, RunsTheTasksOfEachThreadInOrderOnTheUiThread)
{
    constexpr int kTasks = 20000;  // More than the capacity of the queue.
    UiQueue queue;
    const auto ui = std::this_thread::get_id();
    std::vector<int> order[2];
    const auto post = [&](std::vector<int>& ran) {
        for (int i = 0; i < kTasks; ++i) {
            queue.WaitForRoom(kNever);
            queue.Post([&ran, ui, i] { ran.push_back(std::this_thread::get_id() == ui ? i : -1); });
        }
    };
    std::jthread first(post, std::ref(order[0]));
    std::jthread second(post, std::ref(order[1]));
    ASSERT_TRUE(WaitUntil([&] { return order[0].size() + order[1].size() == 2 * kTasks; }));
    for (const auto& ran : order) {
        EXPECT_TRUE(ran.front() == 0 && std::ranges::is_sorted(ran));
    }
}

TEST(UiQueue, ATaskThatOpensAnEventLoopNeitherDelaysNorReordersTheNext)
{
    UiQueue queue;
    std::string order;
    QEventLoop menu;
    queue.Post([&] {
        order += "1";
        menu.exec();
        order += "4";
    });
    queue.Post([&] { order += "2"; });
    queue.Post([&] { order += "3", menu.quit(); });
    ASSERT_TRUE(WaitUntil([&] { return order.size() == 4; }));
    EXPECT_EQ(order, "1234");
}

TEST(UiQueue, AFloodOfTasksLetsOtherEventsRun)
{
    UiQueue queue;
    int ran = 0;
    for (int i = 0; i < 1000; ++i) {
        queue.Post([&] {
            ++ran;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        });
    }
    QCoreApplication::processEvents();
    EXPECT_GT(ran, 0);
    EXPECT_LT(ran, 100);  // An iteration of 8 ms, on a machine that may be busy.
    queue.Close();
    queue.Purge();
}

TEST(UiQueue, CloseUnblocksProducersAndPurgeDestroysTasksOnTheUiThread)
{
    UiQueue queue;
    std::thread::id destroyedOn;
    bool ran = false;
    std::atomic<int> posted = 0;
    std::jthread flood([&] {
        const auto note = [&](void*) { destroyedOn = std::this_thread::get_id(); };
        queue.Post([&ran, held = std::shared_ptr<void>(nullptr, note)] { ran = true; });
        for (; posted < 5000; ++posted) {
            queue.WaitForRoom(kNever);
            queue.Post([&ran] { ran = true; });
        }
    });
    while (posted < 500) {  // No task runs, so it soon blocks.
        std::this_thread::yield();
    }
    EXPECT_LT(posted, 600);
    queue.Close();
    flood.join();
    EXPECT_EQ(posted, 5000);
    queue.Purge();
    EXPECT_EQ(destroyedOn, std::this_thread::get_id());
    QCoreApplication::processEvents();
    EXPECT_FALSE(ran);
}

TEST(Rebinder, CallsImmediatelyOnTheUiThreadAndPostsFromOthers)
{
    Runtime runtime;
    RecordingHost host;
    const auto rebind = MakeRebinderFor(host);
    std::string order;
    std::thread([&] { rebind([&](PluginInterface*) { order += "other"; }); }).join();
    rebind([&](PluginInterface*) { order += "ui "; });
    EXPECT_EQ(order, "ui ");
    EXPECT_TRUE(WaitUntil([&] { return order == "ui other"; }));
}
