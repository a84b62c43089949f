#include "Window.h"

#include "Controls.h"
#include "plugin_bundle.h"
#include "runtime.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QPointer>
#include <QPushButton>

#include <stdexcept>

namespace {

constexpr const char* kDescription = R"(<ui version="4.0"><class>W</class>
<widget class="BWindow" name="W">
 <widget class="BButton" name="b"><property name="tag" stdset="0"><number>5</number></property></widget>
</widget></ui>)";

class WindowTest : public testing::Test {
  protected:
    std::shared_ptr<BWindow> Make(const char* description = kDescription)
    {
        folder.Write("Resources/W.ui", description);
        return BLooper::MakeInstance<BWindow>("W", "W", static_cast<void*>(&bundle));
    }
    Runtime runtime;
    TemporaryFolder folder;
    PluginBundle bundle{folder.path()};
};

}  // namespace

TEST_F(WindowTest, RefusesADescriptionThatItCannotUse)
{
    auto* const before =  // Qt complains as well.
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    for (const char* row : {"", R"(<ui version="4.0"><widget class="QWidget" name="W"/></ui>)"}) {
        try {
            Make(row);
            ADD_FAILURE() << row;
        } catch (const std::runtime_error& error) {
            EXPECT_NE(std::string(error.what()).find("W.ui"), std::string::npos) << error.what();
        }
    }
    qInstallMessageHandler(before);
}

TEST_F(WindowTest, AButtonCallsAnOpenWindowAndItsExceptionsAreReported)
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
                EXPECT_FALSE(weak.expired()) << "destroyed during its own function";
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
    EXPECT_TRUE(WaitUntil([&] { return button.isNull(); })) << "its widgets remain";
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(pressed, 2);
    EXPECT_TRUE(WaitUntil([&] { return errors.size() == 2; }));
    EXPECT_EQ(errors.front(), "of the window");
}
