#include "ui_queue.h"

#include "wait.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEventLoop>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

namespace {

const std::atomic<bool> kNever = false;

}  // namespace

TEST(UiQueue, RunsWhatEachThreadPostedInItsOrderOnTheUiThread)
{
    constexpr int kTasks = 20000;  // Far more than the queue holds.
    UiQueue queue;
    std::vector<int> order[2];
    const auto ui = std::this_thread::get_id();
    bool elsewhere = false;
    const auto post = [&](int who) {
        for (int i = 0; i < kTasks; ++i) {
            queue.WaitForRoom(kNever);
            queue.Post([&, who, i] {
                elsewhere |= std::this_thread::get_id() != ui;
                order[who].push_back(i);
            });
        }
    };
    std::jthread first(post, 0);
    std::jthread second(post, 1);
    ASSERT_TRUE(WaitUntil([&] { return order[0].size() + order[1].size() == 2 * kTasks; }));
    EXPECT_FALSE(elsewhere);
    EXPECT_TRUE(std::ranges::is_sorted(order[0]) && std::ranges::is_sorted(order[1]));
}

TEST(UiQueue, ATaskThatOpensAnEventLoopDoesNotHoldUpOrReorderTheNext)
{
    UiQueue queue;
    std::vector<int> order;
    QEventLoop menu;
    queue.Post([&] {
        order.push_back(1);
        menu.exec();
        order.push_back(4);
    });
    queue.Post([&] { order.push_back(2); });
    queue.Post([&] {
        order.push_back(3);
        menu.quit();
    });
    ASSERT_TRUE(WaitUntil([&] { return order.size() == 4; }));
    EXPECT_EQ(order, (std::vector{1, 2, 3, 4}));
}

TEST(UiQueue, AFloodLeavesTurnsToOtherEvents)
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
    EXPECT_LT(ran, 100);  // A turn of 8 ms, on a machine that may be busy.
    queue.Close();
    queue.Purge();
}

TEST(UiQueue, CloseReleasesWhoWaitsAndPurgeDestroysTheRestOnTheUiThread)
{
    UiQueue queue;
    std::thread::id destroyedOn;
    bool ran = false;
    std::atomic<int> posted = 0;
    std::jthread flood([&] {
        std::shared_ptr<void> guard(nullptr,
                                    [&](void*) { destroyedOn = std::this_thread::get_id(); });
        queue.Post([&ran, held = std::move(guard)] { ran = true; });
        for (; posted < 5000; ++posted) {
            queue.WaitForRoom(kNever);
            queue.Post([&ran] { ran = true; });
        }
    });
    while (posted < 500) {  // Nobody takes anything out: it will wait soon.
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
