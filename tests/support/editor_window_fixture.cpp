#include "editor_window_fixture.h"

#include "message_bar.h"
#include "run_control.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

EditorWindow::~EditorWindow()
{
    End();
    EXPECT_TRUE(questions_.children().isEmpty()) << "an expected dialog did not open";
}

void EditorWindow::Start(const QStringList& documents, const std::string& plugin)
{
    auto loaded = PluginModule::Load(plugin);
    ASSERT_TRUE(loaded) << loaded.error();
    plugin_.emplace(std::move(*loaded));
    runtime_ = std::make_unique<Runtime>();
    window_ = std::make_unique<MainWindow>(*plugin_, *runtime_, places);
    runtime_->handlers.error = [this](const std::string& error) {
        window_->ReportPluginError(error);
    };
    const auto started = window_->Start();
    ASSERT_TRUE(started) << started.error();
    window_->OpenFiles(documents);
    window_->show();
    window_->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
}

void EditorWindow::EndBy(const std::function<void()>& act)
{
    QSignalSpy closed(window_.get(), &MainWindow::Closed);
    QTimer::singleShot(0, window_.get(), act);
    EXPECT_TRUE(closed.wait());
    End();
}

void EditorWindow::End()
{
    if (runtime_) {
        runtime_->ShutDown();
    }
    window_.reset();
    runtime_.reset();
    plugin_.reset();
}

void EditorWindow::Type(const QString& text)
{
    editor().setFocus();
    QTest::keyClicks(&editor(), text);
}

void EditorWindow::Press(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    if (QApplication::activeWindow() == nullptr) {  // After a dialog without a window manager.
        window_->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window_.get()));
    }
    auto* const focused = QApplication::focusWidget();
    QTest::keyClick(focused != nullptr ? focused : window_.get(), key, modifiers);
}

QAction* EditorWindow::Action(const QString& text)
{
    for (auto* const action : window_->findChildren<QAction*>()) {
        if (action->text().remove('&') == text) {
            return action;
        }
    }
    ADD_FAILURE() << "there is no action " << text.toStdString();
    return new QAction(window_.get());
}

std::string EditorWindow::Message()
{
    for (const auto* const bar : window_->findChildren<MessageBar*>()) {
        if (bar->isVisible()) {
            return bar->accessibleName().toStdString();
        }
    }
    return {};
}

bool EditorWindow::MessageShows(const std::string& text)
{
    const bool shows = WaitUntil([&] { return Message().find(text) != std::string::npos; });
    EXPECT_TRUE(shows) << text << " is missing in: " << Message();
    return shows;
}

void EditorWindow::Answer(const QString& button)
{
    QCoreApplication::processEvents();  // Shows the buttons of a message that was just replaced.
    for (auto* const candidate : window_->findChildren<QPushButton*>()) {
        if (candidate->isVisible() && candidate->text() == button) {
            candidate->click();
            QCoreApplication::processEvents();
            return;
        }
    }
    ADD_FAILURE() << "there is no button " << button.toStdString();
}

bool EditorWindow::ControlIsShown()
{
    QCoreApplication::processEvents();  // Lets the tool bar update its layout.
    return std::ranges::any_of(window_->findChildren<RunControl*>(), &QWidget::isVisible);
}

void EditorWindow::AttachBoard()
{
    auto& monitor = window().board();
    monitor.AttachVirtualBoard();
    EXPECT_TRUE(WaitUntil([&] { return monitor.board().kind == BoardMonitor::Kind::Virtual; }));
}

void EditorWindow::WhenAsked(const std::function<void(QWidget&)>& act)
{
    auto* const poll = new QTimer(&questions_);
    QObject::connect(poll, &QTimer::timeout, poll, [poll, act] {
        auto* dialog = QApplication::activeModalWidget();
        dialog = dialog != nullptr ? dialog : QApplication::activePopupWidget();
        if (dialog != nullptr && dialog->isVisible()) {
            poll->stop();
            poll->setParent(nullptr);
            poll->deleteLater();
            act(*dialog);
        }
    });
    poll->start(2);
}

void EditorWindow::WhenAskedPress(int standardButton)
{
    WhenAsked([standardButton](QWidget& dialog) {
        auto& box = dynamic_cast<QMessageBox&>(dialog);
        auto* const button = box.button(static_cast<QMessageBox::StandardButton>(standardButton));
        ASSERT_NE(button, nullptr) << box.text().toStdString();
        button->click();
    });
}
