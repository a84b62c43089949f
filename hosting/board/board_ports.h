#pragma once

#include <QString>

#include <string>
#include <vector>

// A serial port that has a board.
struct BoardPort {
    std::string node;  // The device node, such as "/dev/ttyACM0".
    std::string name;  // The product's name. Empty if it is unknown, like the id.
    std::string id;    // The board's USB serial number.

    bool operator==(const BoardPort&) const = default;
};

// The ports of all USB serial devices, in the order in which the tool tries them. `folder` contains
// the system's serial devices. [any]
std::vector<BoardPort> FindBoardPorts(const std::string& folder = "/sys/class/tty");

// Whether the port has a board that is known from earlier: it may have been attached to another
// port meanwhile, but keeps its id. Without an id it is known by its port. [any]
bool IsSameBoard(const BoardPort& known, const BoardPort& port);

// Such as "Pico (/dev/ttyACM0, e6614103e7)". [any]
QString DescribePort(const BoardPort& port);
