#include "Window.h"

#include "Controls.h"
#include "plugin_bundle.h"
#include "runtime.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QTest>

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

TEST_F(WindowTest, ItsFirstFrameIsBesideTheActiveWindowAndFitsTheScreen)
{
    const auto frameOfNext = [&] {
        const auto window = Make(R"(<ui version="4.0"><widget class="BWindow" name="W">
 <property name="geometry"><rect><width>200</width><height>5000</height></rect></property>
</widget></ui>)");
        window->Show();
        const BRect frame = window->Frame();
        window->Quit();
        return frame;
    };
    const QRect screen = QApplication::primaryScreen()->availableGeometry();
    QWidget active;
    for (const int width : {200, 300, 5000}) {
        active.setGeometry(50, 60, width, 100);
        active.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&active));
        const auto [left, top, right, bottom] = frameOfNext();
        EXPECT_EQ(left, std::min(50 + width + 9, screen.right() - 9 - 204)) << width;
        EXPECT_EQ(right, left + 204) << "with its decoration";
        EXPECT_EQ(std::pair(top, bottom), std::pair(10.0, screen.bottom() - 9.0));
    }
    active.hide();
    EXPECT_EQ(frameOfNext().Height(), screen.height() - 20) << "with no other window";
}
