// list_directory PLUGIN PATH: lists a directory of the board as the Device window does, parses
// every line, and prints how many entries there are.

#include "device_files.h"
#include "device_output.h"
#include "editor_host.h"
#include "plugin_module.h"
#include "runtime.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    if (argc != 3) {
        std::fputs("usage: list_directory PLUGIN PATH\n", stderr);
        return 2;
    }
    const auto plugin = PluginModule::Load(argv[1]);
    if (!plugin) {
        std::fprintf(stderr, "%s\n", plugin.error().c_str());
        return 1;
    }
    Runtime runtime;
    EditorHost host(*plugin, runtime, [](const std::string&) {});
    std::size_t entries = 0;
    const auto count = [&entries](const std::string_view& line) {
        entries += ParseDirLine(std::string(line)) ? 1 : 0;
    };
    DirectoryListing(&host, argv[2], count, [] { QCoreApplication::exit(0); });
    QCoreApplication::exec();
    std::printf("%zu\n", entries);
    return 0;
}
