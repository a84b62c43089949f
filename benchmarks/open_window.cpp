// open_window PLUGIN ENTRIES: opens the Device window on a board with this number of files. Prints
// the time in milliseconds until the last row was painted.
//
// open_window PLUGIN ENTRIES stalls: does the same, but prints the longest time in milliseconds
// during which the user-interface thread did not return to the event loop. This is a separate mode
// because the measurement slows down mpremote.
//
// open_window PLUGIN ENTRIES rows: adds this number of rows to the window's table, as a listing
// does, 500 in each iteration of the event loop. Prints the total time in milliseconds and the
// number of bytes per row.

#include "quilp_window.h"
#include "run_with_plugin.h"
#include "runner.h"
#include "runtime.h"
#include "stall_meter.h"
#include "table_widget.h"

#include <QApplication>
#include <QLabel>

#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;

double Milliseconds(Clock::duration time)
{
    return std::chrono::duration<double, std::milli>(time).count();
}

std::size_t ResidentBytes()
{
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> pages;
    return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

// Quits the event loop when the last row has been painted.
class LastRow : public QObject {
  public:
    LastRow(TableWidget& table, int entries) : table_(table), entries_(entries)
    {
        table.viewport()->installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && table_.model()->rowCount() >= entries_) {
            QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
        }
        return QObject::eventFilter(object, event);
    }

  private:
    TableWidget& table_;
    int entries_;
};

TableWidget& Table()
{
    for (auto* window : QApplication::topLevelWidgets()) {
        if (auto* table = window->findChild<TableWidget*>("listing")) {
            return *table;
        }
    }
    std::fputs("the table was not found\n", stderr);
    std::exit(1);
}

// The first window of a program loads fonts and styles. In the editor, the main window does this.
void ShowAnotherWindow()
{
    QLabel window("Loading");
    window.show();
    QApplication::processEvents();
}

void OpenUntilLastRow(PluginHost& host, int entries)
{
    QuilpWindow::ShowInstance(&host);
    const LastRow last(Table(), entries);
    QApplication::exec();
}

void MeasureOpening(PluginHost& host, int entries)
{
    ShowAnotherWindow();
    const auto begin = Clock::now();
    OpenUntilLastRow(host, entries);
    std::printf("%.1f\n", Milliseconds(Clock::now() - begin));
}

void MeasureStalls(PluginHost& host, int entries)
{
    ShowAnotherWindow();
    const StallMeter stalls;
    OpenUntilLastRow(host, entries);
    std::printf("%.1f\n", stalls.Longest());
}

void AddRows(BOutlineTableView& table, int count, int until)
{
    for (int i = 0; i < 500 && count < until; ++i, ++count) {
        const std::string name = "file_" + std::to_string(count) + ".txt";
        table.AddItem(new IconTableItem(name, "/many/" + name, false), count, 0);
        table.AddItem(new SizeTableItem(std::to_string(count)), count, 1);
    }
    if (count < until) {
        Runtime::Current().queue().Post([&table, count, until] { AddRows(table, count, until); });
    }
}

void MeasureRows(PluginHost& host, int entries)
{
    auto* const table = QuilpWindow::ShowInstance(&host)->FindFirst<BOutlineTableView>();
    Stop();  // The window has started a listing.
    QApplication::processEvents();
    table->Clear();
    const auto before = ResidentBytes();
    const LastRow last(Table(), entries);
    const auto begin = Clock::now();
    Runtime::Current().queue().Post([=] { AddRows(*table, 0, entries); });
    QApplication::exec();
    const auto bytes = ResidentBytes() - before;
    std::printf("%.1f %zu\n", Milliseconds(Clock::now() - begin),
                bytes / static_cast<std::size_t>(entries));
}

}  // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    if (argc < 3) {
        std::fputs("usage: open_window PLUGIN ENTRIES [stalls|rows]\n", stderr);
        return 2;
    }
    const int entries = std::stoi(argv[2]);
    const std::string mode = argc > 3 ? argv[3] : "";
    const auto measure = mode == "rows"     ? MeasureRows
                         : mode == "stalls" ? MeasureStalls
                                            : MeasureOpening;
    return RunWithPlugin(argv[1], [&](PluginHost& host) { measure(host, entries); });
}
