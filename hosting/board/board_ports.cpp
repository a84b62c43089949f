#include "board_ports.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace {

namespace fs = std::filesystem;

// The first line of a small file; empty if it cannot be read.
std::string FirstLine(const fs::path& path)
{
    std::string line;
    std::ifstream file(path);
    std::getline(file, line);
    return line;
}

#ifdef __linux__

// The description of a serial device leads to that of its USB interface, whose parent is the USB
// device. Other serial devices have none.
fs::path UsbDeviceOf(const fs::path& serial)
{
    std::error_code error;
    if (!fs::exists(serial / "device", error)) {
        return {};  // A virtual terminal. There are many.
    }
    fs::path device = fs::canonical(serial / "device", error);
    while (!error && device.has_relative_path()) {
        if (fs::exists(device / "idVendor", error)) {
            return device;
        }
        device = device.parent_path();
    }
    return {};
}

#else

constexpr std::array<std::string_view, 2> kNodes{"cu.usbmodem", "cu.usbserial"};

#endif

}  // namespace

std::vector<BoardPort> FindBoardPorts([[maybe_unused]] const std::string& folder)
{
    std::vector<BoardPort> ports;
    std::error_code error;
#ifdef __linux__
    fs::directory_iterator entry(folder, error);
#else
    fs::directory_iterator entry("/dev", error);
#endif
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().string();
#ifdef __linux__
        if (const auto device = UsbDeviceOf(entry->path()); !device.empty()) {
            ports.push_back(
                {"/dev/" + name, FirstLine(device / "product"), FirstLine(device / "serial")});
        }
#else
        if (std::ranges::any_of(kNodes, [&](auto prefix) { return name.starts_with(prefix); })) {
            ports.push_back({"/dev/" + name, {}, {}});
        }
#endif
    }
    std::ranges::sort(ports, {}, &BoardPort::node);
    return ports;
}

bool IsSameBoard(const BoardPort& known, const BoardPort& port)
{
    return known.id.empty() ? known.node == port.node : known.id == port.id;
}

QString DescribePort(const BoardPort& port)
{
    const QString node = QString::fromStdString(port.node);
    QStringList details{node};
    if (!port.id.empty()) {
        details.append(QString::fromStdString(port.id));
    }
    const auto text = details.join(", ");
    return port.name.empty() ? text : QString::fromStdString(port.name) + " (" + text + ")";
}
