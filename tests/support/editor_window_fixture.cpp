#include "editor_window_fixture.h"

#include "message_bar.h"
#include "run_control.h"
#include "text_editor.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

EditorWindow::EditorWindow()
{
    places = {{folder / "config", folder / "data", folder / "state"},
              QUILP_BIN "/virtual-board",
              folder / "board"};
}

EditorWindow::~EditorWindow()
{
    End();
    EXPECT_TRUE(questions_.children().isEmpty()) << "a question was expected";
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

bool EditorWindow::Close()
{
    const bool closed = window_->close();
    if (closed) {
        End();
    }
    return closed;
}

void EditorWindow::EndBy(const std::function<void()>& act)
{
    bool ended = false;
    QObject::connect(window_.get(), &MainWindow::Closed, window_.get(), [&ended] { ended = true; });
    QTimer::singleShot(0, window_.get(), act);
    EXPECT_TRUE(WaitUntil([&ended] { return ended; }));
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

QString EditorWindow::Write(const std::string& name, std::string_view content)
{
    return QString::fromStdString(folder.Write(name, content));
}

TextEditor& EditorWindow::editor()
{
    return window_->documents().FrontPage()->editor();
}

void EditorWindow::Type(const QString& text)
{
    editor().setFocus();
    QTest::keyClicks(&editor(), text);
}

void EditorWindow::Press(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    if (QApplication::activeWindow() == nullptr) {  // After a dialog, where no desktop does it.
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
    ADD_FAILURE() << "there is no " << text.toStdString();
    return new QAction(window_.get());
}

bool EditorWindow::SheetShows(const std::string& text)
{
    return WaitUntil([&] { return Sheet().find(text) != std::string::npos; });
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
    for (auto* const candidate : window_->findChildren<QPushButton*>()) {
        if (candidate->isVisible() && candidate->text() == button) {
            candidate->click();
            QCoreApplication::processEvents();
            return;
        }
    }
    ADD_FAILURE() << "nothing offers " << button.toStdString();
}

QStringList EditorWindow::Controls()
{
    QCoreApplication::processEvents();  // The tool bar lays itself out.
    QStringList names;
    for (const auto* const control : window_->findChildren<RunControl*>()) {
        if (control->isVisible()) {
            names.append(control->text());
        }
    }
    return names;
}

void EditorWindow::AttachBoard()
{
    auto& board = window().board();
    board.AttachVirtualBoard();
    EXPECT_TRUE(WaitUntil([&] { return board.board().kind == BoardMonitor::Kind::Virtual; }));
}

bool EditorWindow::WaitForIdle()
{
    return WaitUntil([] { return Runtime::Current().IsIdle(); });
}

void EditorWindow::WhenAsked(const std::function<void(QWidget&)>& act)
{
    auto* const look = new QTimer(&questions_);
    QObject::connect(look, &QTimer::timeout, look, [look, act] {
        auto* dialog = QApplication::activeModalWidget();
        dialog = dialog != nullptr ? dialog : QApplication::activePopupWidget();
        if (dialog != nullptr && dialog->isVisible()) {
            look->stop();
            look->setParent(nullptr);
            look->deleteLater();
            act(*dialog);
        }
    });
    look->start(2);
}

void EditorWindow::WhenAskedPress(int standardButton)
{
    WhenAsked([standardButton](QWidget& dialog) {
        auto* const box = qobject_cast<QMessageBox*>(&dialog);
        ASSERT_NE(box, nullptr);
        auto* const button = box->button(static_cast<QMessageBox::StandardButton>(standardButton));
        ASSERT_NE(button, nullptr) << box->text().toStdString();
        button->click();
    });
}
