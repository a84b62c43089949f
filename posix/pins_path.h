#pragma once

#include <string>

// The path of the socket that serves the pins of a virtual board, if only the link to the board's
// serial device is known. [any]
inline std::string PinsPathFor(const std::string& link)
{
    return link + ".pins";
}
