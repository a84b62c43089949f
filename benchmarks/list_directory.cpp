// list_directory PLUGIN PATH: lists a directory of the board as the Device window does, parses
// every line, and prints the number of entries.

#include "device_files.h"
#include "device_output.h"
#include "run_with_plugin.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    if (argc != 3) {
        std::fputs("usage: list_directory PLUGIN PATH\n", stderr);
        return 2;
    }
    std::size_t entries = 0;
    const auto count = [&entries](const std::string_view& line) {
        entries += ParseDirLine(std::string(line)) ? 1 : 0;
    };
    return RunWithPlugin(argv[1], [&](PluginHost& host) {
        DirectoryListing(&host, argv[2], count, [] { QCoreApplication::exit(0); });
        QCoreApplication::exec();
        std::printf("%zu\n", entries);
    });
}
