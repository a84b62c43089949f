#include "rebinder.h"

#include "recording_host.h"
#include "runtime.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <thread>

TEST(Rebinder, CallsAtOnceOnTheUiThreadAndPostsInOrderFromAnyOther)
{
    Runtime runtime;
    RecordingHost host;
    const auto rebind = MakeRebinderFor(host);
    std::vector<int> order;
    const auto note = [&, ui = std::this_thread::get_id()](int number) {
        rebind([&, ui, number](PluginInterface* pi) {
            EXPECT_EQ(pi, &host);
            EXPECT_EQ(std::this_thread::get_id(), ui);
            order.push_back(number);
        });
    };
    std::thread([&] {
        note(2);
        note(3);
    }).join();
    note(1);
    EXPECT_EQ(order, std::vector{1});
    ASSERT_TRUE(WaitUntil([&] { return order.size() == 3; }));
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}
