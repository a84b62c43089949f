#include "Window.h"

#include "Controls.h"
#include "Menu.h"
#include "OutlineTableView.h"
#include "bundle.h"
#include "protect.h"
#include "runtime.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QPointer>
#include <QPushButton>

#include <filesystem>
#include <stdexcept>

namespace {

constexpr const char* kDescription = R"(<ui version="4.0"><class>W</class>
<widget class="BWindow" name="W">
 <widget class="BView" name="outer">
  <property name="tag" stdset="0"><number>3</number></property>
  <widget class="BStringView" name="inner">
   <property name="tag" stdset="0"><number>7</number></property>
  </widget>
 </widget>
 <widget class="BButton" name="b"><property name="tag" stdset="0"><number>5</number></property></widget>
 <widget class="BStringView" name="direct"/>
</widget></ui>)";

class WindowTest : public testing::Test {
  protected:
    std::shared_ptr<BWindow> Make(const std::string& description = kDescription)
    {
        folder.Write("Resources/W.ui", description);
        return BLooper::MakeInstance<BWindow>("W", "W", static_cast<void*>(&bundle));
    }
    // The button of the window that is shown.
    static QPointer<QPushButton> ButtonOnScreen()
    {
        for (const auto* widget : QApplication::topLevelWidgets()) {
            if (auto* found = widget->findChild<QPushButton*>("b"); found && widget->isVisible()) {
                return found;
            }
        }
        return nullptr;
    }

    Runtime runtime;
    TemporaryFolder folder;
    PluginBundle bundle{folder.path()};
};

}  // namespace

TEST_F(WindowTest, FindsViewsByKindAndTag)
{
    const auto window = Make();
    auto* const inner = window->FindViewByTag<BStringView>(7);
    ASSERT_NE(inner, nullptr) << "below another view";
    auto* const direct = window->FindFirst<BStringView>();
    ASSERT_NE(direct, nullptr);
    EXPECT_NE(direct, inner) << "direct children come first";
    EXPECT_EQ(window->FindViewByTag<BButton>(7), nullptr) << "of another kind";
    EXPECT_EQ(window->FindViewByTag<BStringView>(0), nullptr);
    EXPECT_EQ(window->FindViewByTagDetails(99), nullptr);
    EXPECT_EQ(window->FindFirst<BOutlineTableView>(), nullptr);
    EXPECT_EQ(window->ChildAt(-1), nullptr);
    EXPECT_EQ(window->ChildAt(window->CountChildren()), nullptr);
}

TEST_F(WindowTest, RefusesADescriptionThatItCannotUse)
{
    const char* rows[] = {
        "",
        "no description",
        R"(<ui version="4.0"><widget class="QWidget" name="W"/></ui>)",
        R"(<ui version="4.0"><widget class="BWindow" name="W"><widget class="BX"/></widget></ui>)",
    };
    // Qt complains as well.
    auto* const before =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    for (const char* row : rows) {
        try {
            Make(row);
            ADD_FAILURE() << "accepted " << row;
        } catch (const std::runtime_error& error) {
            EXPECT_NE(std::string(error.what()).find("W.ui"), std::string::npos) << error.what();
        }
    }
    std::filesystem::remove(folder / "Resources/W.ui");
    EXPECT_THROW(BLooper::MakeInstance<BWindow>("W", "W", static_cast<void*>(&bundle)),
                 std::runtime_error);
    qInstallMessageHandler(before);
}

TEST_F(WindowTest, InitialisersRunWhenTheLooperIsOwned)
{
    struct Looper : BLooper {
        explicit Looper(std::vector<std::function<void()>>& initialisers, bool empty)
        {
            EXPECT_THROW(::weak_from_this(this), std::bad_weak_ptr);
            initialisers.emplace_back([this] { self = ::weak_from_this(this); });
            if (empty) {
                initialisers.emplace_back();
            }
        }
        std::weak_ptr<Looper> self;
    };
    const auto looper = BLooper::MakeInstance<Looper>(false);
    EXPECT_EQ(looper->self.lock(), looper);
    EXPECT_THROW(BLooper::MakeInstance<Looper>(true), std::bad_function_call);
}

TEST_F(WindowTest, AButtonRunsItsFunctionInALivingTargetOnly)
{
    std::weak_ptr<BWindow> weak;
    int pressed = 0;
    {
        const auto window = Make();
        weak = window;
        window->Show();
        window->FindViewByTag<BButton>(5)->SetInvokeTarget(
            BMessenger(window.get()), [&, raw = window.get()] {
                ++pressed;
                raw->Quit();
                EXPECT_FALSE(weak.expired()) << "goes while its own function runs";
            });
    }
    const auto button = ButtonOnScreen();
    ASSERT_FALSE(button.isNull());
    button->click();
    button->click();
    EXPECT_TRUE(WaitUntil([&] { return button.isNull(); })) << "its widgets go, too";
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(pressed, 1);
}

TEST_F(WindowTest, WhatItsCodeThrowsIsReported)
{
    std::vector<std::string> errors;
    SetErrorHandler([&](const std::string& error) { errors.push_back(error); });
    const auto window = Make();
    window->Show();
    window->FindViewByTag<BButton>(5)->SetInvokeTarget(
        BMessenger(window.get()), [] { throw std::runtime_error("of the window"); });
    ButtonOnScreen()->click();
    runtime.queue().Post([] { throw 1; });
    EXPECT_TRUE(WaitUntil([&] { return errors.size() == 2; }));
    EXPECT_EQ(errors.front(), "of the window");
    window->Quit();
    SetErrorHandler({});
}
