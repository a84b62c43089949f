// use_editor PLUGIN DOCUMENT: opens the document in the editor's window and performs tasks.
// Standard input names one per line, by words with tabs between them:
//
//   KIND ARGUMENT END [stalls]
//
//   run       runs the document on the board
//   list      lists the board's files
//   tool      runs the board's tool with the words of the argument
//   shell     runs the argument in the user's shell
//   window    opens the Device window; the argument is the number of rows that it will have
//
// A task is done when nothing runs and the worksheet's text ends in END or, for the window, when
// its last row was painted. Prints for each task the milliseconds that it took, and the MiB by
// which the editor grew meanwhile at most. With "stalls", prints instead of the time the longest
// one in milliseconds during which the user-interface thread did not return to its event loop.
// These are separate measurements because the timer for stalls slows the task down.

#include "board_tool.h"
#include "main_window.h"
#include "plugin_actions.h"
#include "scintilla_text.h"
#include "stall_meter.h"
#include "table_widget.h"
#include "with_plugin.h"

#include <QApplication>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr long kMaxEnd = 100;  // bytes
constexpr std::chrono::minutes kTimeout{3};

// A figure from the kernel's description of this process, in MiB.
double StatusFigure(const std::string& name)
{
    std::ifstream file("/proc/self/status");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(name + ":")) {
            return std::stod(line.substr(name.size() + 1)) / 1024;
        }
    }
    return 0;
}

// Measures the growth of this process.
class MemoryMeter {
  public:
    MemoryMeter() { std::ofstream("/proc/self/clear_refs") << "5"; }  // The peak starts anew.
    double Growth() const { return StatusFigure("VmHWM") - before_; }

  private:
    double before_ = StatusFigure("VmRSS");
};

TableWidget* FindTable()
{
    for (auto* const window : QApplication::topLevelWidgets()) {
        if (auto* const table = window->findChild<TableWidget*>("listing")) {
            return table;
        }
    }
    return nullptr;
}

struct Task {
    QString kind, argument;
    std::string end;
    bool measuresStalls = false;
};

Task ParseTask(const std::string& line)
{
    const auto words = QString::fromStdString(line).split('\t');
    return {words.value(0), words.value(1), words.value(2).toStdString(),
            words.value(3) == "stalls"};
}

// Performs tasks and leaves the event loop when each of them is done.
class Performer : public QObject {
  public:
    Performer(MainWindow& window, Runtime& runtime, const PluginModule& plugin)
        : window_(window),
          runtime_(runtime),
          actions_(*window.findChild<PluginActions*>()),
          tool_(runtime, ResourceFolder(plugin.bundle()) + "/mpremote/mpremote.py",
                [&window](const std::string& text) { window.worksheet().Append(text); })
    {
        runtime.handlers.idle = [this, notify = runtime.handlers.idle] {
            notify();
            if (task_.kind != "window") {
                check_.start(0);
            }
        };
        connect(&check_, &QTimer::timeout, this, &Performer::CheckEnd);
        connect(&deadline_, &QTimer::timeout, [] {
            std::fputs("a task was not done in time\n", stderr);
            std::_Exit(1);
        });
    }

    // Prints the figures.
    void Perform(const Task& task)
    {
        check_.stop();
        window_.worksheet().ClearAll();
        QApplication::processEvents();
        task_ = task;
        const MemoryMeter memory;
        std::optional<StallMeter> stalls;
        if (task.measuresStalls) {
            stalls.emplace();
        }
        deadline_.start(kTimeout);
        const auto begin = Clock::now();
        Start();
        QApplication::exec();
        const std::chrono::duration<double, std::milli> time = Clock::now() - begin;
        std::printf("%.2f %.1f\n", stalls ? stalls->Longest() : time.count(), memory.Growth());
        std::fflush(stdout);
        runtime_.CloseWindows();
    }

  protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::Paint &&
            FindTable()->model()->rowCount() >= task_.argument.toInt()) {
            QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
        }
        return QObject::eventFilter(object, event);
    }

  private:
    void Start()
    {
        if (task_.kind == "run") {
            actions_.Perform("QuilpRun");
        } else if (task_.kind == "list") {
            actions_.Perform("QuilpList");
        } else if (task_.kind == "tool") {
            std::vector<std::string> words;
            for (const auto& word : task_.argument.split(' ')) {
                words.push_back(word.toStdString());
            }
            tool_.Run(words);
        } else if (task_.kind == "shell") {
            Q_EMIT window_.worksheet().RunRequested(task_.argument);
        } else {
            actions_.OpenDeviceWindow();
            FindTable()->viewport()->installEventFilter(this);
        }
    }

    // Output may still wait for the worksheet when nothing runs any more.
    void CheckEnd()
    {
        const auto& worksheet = window_.worksheet();
        const long length = Length(worksheet);
        const auto end = BytesBetween(worksheet, std::max(0L, length - kMaxEnd), length).trimmed();
        if (end.endsWith(task_.end.c_str())) {
            check_.stop();
            QCoreApplication::exit(0);
        }
    }

    MainWindow& window_;
    Runtime& runtime_;
    PluginActions& actions_;
    BoardTool tool_;
    Task task_;
    QTimer check_, deadline_;
};

int Measure(const PluginModule& plugin, Runtime& runtime, const char* document)
{
    const QTemporaryDir folder;
    const std::string own = folder.path().toStdString();
    MainWindow window(plugin, runtime,
                      {{own, own, own}, "", own, [] { return std::vector<BoardPort>(); }});
    if (!window.Start()) {
        return 1;
    }
    window.OpenFiles({document});
    window.show();
    Performer performer(window, runtime, plugin);
    for (std::string line; std::getline(std::cin, line);) {
        performer.Perform(ParseTask(line));
    }
    runtime.ShutDown();
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    if (argc != 3) {
        std::fputs("usage: use_editor PLUGIN DOCUMENT\n", stderr);
        return 2;
    }
    return WithPlugin(argv[1], [&](const PluginModule& plugin, Runtime& runtime) {
        return Measure(plugin, runtime, argv[2]);
    });
}
