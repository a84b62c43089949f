#include "Window.h"

#include "Controls.h"
#include "Menu.h"
#include "OutlineTableView.h"
#include "plugin_bundle.h"
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
    auto* const before =  // Qt complains as well.
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    for (const char* row : rows) {
        std::string error;
        try {
            Make(row);
        } catch (const std::runtime_error& thrown) {
            error = thrown.what();
        }
        EXPECT_NE(error.find("W.ui"), std::string::npos) << row << ": " << error;
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

TEST_F(WindowTest, AButtonRunsItsFunctionInALivingTargetAndWhatItThrowsIsReported)
{
    std::vector<std::string> errors;
    runtime.handlers.error = [&](const std::string& error) { errors.push_back(error); };
    std::weak_ptr<BWindow> weak;
    int pressed = 0;
    {
        const auto window = Make();
        weak = window;
        window->Show();
        window->FindViewByTag<BButton>(5)->SetInvokeTarget(
            BMessenger(window.get()), [&, raw = window.get()] {
                if (++pressed == 1) {
                    throw std::runtime_error("of the window");
                }
                raw->Quit();
                EXPECT_FALSE(weak.expired()) << "goes while its own function runs";
            });
    }
    QPointer<QPushButton> button;
    for (const auto* widget : QApplication::topLevelWidgets()) {
        auto* const found = widget->findChild<QPushButton*>("b");
        button = found != nullptr ? found : button.data();
    }
    ASSERT_FALSE(button.isNull());
    for (int i = 0; i < 3; ++i) {
        button->click();
    }
    runtime.queue().Post([] { throw 1; });
    EXPECT_TRUE(WaitUntil([&] { return button.isNull(); })) << "its widgets go, too";
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(pressed, 2);
    EXPECT_TRUE(WaitUntil([&] { return errors.size() == 2; }));
    EXPECT_EQ(errors.front(), "of the window");
    runtime.handlers.error = {};
}
