// type_in_editor PLUGIN FILE LINE [flood]: opens the file in the editor's window and types 200
// characters into the line, one every 20 ms; with "flood", while a program prints to the worksheet
// continuously. Prints the average time until a character was painted, and the longest stall of the
// event loop from the first key press until the recovery copy is made, both in milliseconds.

#include "SimpleShell.h"
#include "main_window.h"
#include "stall_meter.h"
#include "text_editor.h"
#include "with_plugin.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTemporaryDir>

#include <chrono>
#include <cstdio>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kCharacters = 200;
constexpr std::chrono::milliseconds kKeyInterval{20};
constexpr std::chrono::seconds kExitDelay{3};  // A recovery copy is made 2 s after a change.
const QString kText = "value = compute(first, second)  # ";

// Types from the event loop and then exits it.
class Typist : public QObject {
  public:
    explicit Typist(TextEditor& editor) : editor_(editor)
    {
        connect(&timer_, &QTimer::timeout, this, &Typist::TypeOne);
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.start(kKeyInterval);
    }

    double MillisecondsEach() const
    {
        return std::chrono::duration<double, std::milli>(busy_).count() / kCharacters;
    }

  private:
    void TypeOne()
    {
        const QChar c = kText.at(typed_ % kText.size());
        const auto begin = Clock::now();
        QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, c);
        QApplication::sendEvent(&editor_, &press);
        editor_.viewport()->repaint();
        busy_ += Clock::now() - begin;
        if (++typed_ == kCharacters) {
            timer_.stop();
            // quit() would make the window prompt to save the document.
            QTimer::singleShot(kExitDelay, qApp, [] { QCoreApplication::exit(0); });
        }
    }

    TextEditor& editor_;
    QTimer timer_;
    int typed_ = 0;
    Clock::duration busy_{};
};

// Writes a program's output to the worksheet as the plug-in does.
std::shared_ptr<SimpleShell> Flood(Runtime& runtime, Worksheet& worksheet)
{
    auto& queue = runtime.queue();
    auto shell = std::make_shared<SimpleShell>(
        [&](std::string&& text) {
            queue.Post([&worksheet, text = std::move(text)] { worksheet.Append(text); });
        },
        "flood");
    shell->Run("yes a line that a program on the board prints without end", {});
    return shell;
}

int Measure(const PluginModule& plugin, Runtime& runtime, const char* file, int line, bool floods)
{
    const QTemporaryDir folder;
    const std::string own = folder.path().toStdString();
    MainWindow window(plugin, runtime, {{own, own, own}, "", own});
    if (!window.Start()) {
        return 1;
    }
    window.OpenFiles({file});
    window.show();
    auto& editor = window.documents().FrontPage()->editor();
    editor.GoToLine(line);
    QApplication::processEvents();

    const auto shell = floods ? Flood(runtime, window.worksheet()) : nullptr;
    const StallMeter stalls;
    const Typist typist(editor);
    QApplication::exec();
    if (floods && window.worksheet().lines() < Worksheet::kMaxLines / 2) {
        std::fputs("the worksheet was not flooded\n", stderr);
        return 1;
    }
    std::printf("%.3f %.1f\n", typist.MillisecondsEach(), stalls.Longest());
    runtime.ShutDown();
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    if (argc < 4) {
        std::fputs("usage: type_in_editor PLUGIN FILE LINE [flood]\n", stderr);
        return 2;
    }
    return WithPlugin(argv[1], [&](const PluginModule& plugin, Runtime& runtime) {
        return Measure(plugin, runtime, argv[2], std::stoi(argv[3]), argc > 4);
    });
}
