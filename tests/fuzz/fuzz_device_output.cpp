// A fuzz target: any line is parsed in time and without an exception, and its parts are substrings.

#include "device_output.h"
#include "device_path.h"

#include <cstdint>
#include <cstdlib>
#include <initializer_list>

namespace {

void Require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

// Requires non-empty parts, in this order and without overlap; the last ends the line.
void RequireInOrder(std::string_view line, std::initializer_list<std::string_view> parts)
{
    line.remove_suffix(line.ends_with('\n') ? 1 : 0);
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    Require(line.ends_with(*(parts.end() - 1)));
    for (const auto part : parts) {
        const auto at = line.find(part);
        Require(!part.empty() && at != std::string_view::npos);
        line.remove_prefix(at + part.size());
    }
}

void CheckPath(const std::string& path)
{
    for (PathIter i(path); !i.AtEnd(); i.Advance()) {
        Require(i.start <= i.end && i.end <= path.size());
        Require(i.Component() == "/" || i.Component().find('/') == std::string_view::npos);
    }
    const std::string leaf = LeafItem(path);
    const std::string parent = ParentPath(std::string_view(path));
    Require((path.find('/') != std::string::npos ? parent + "/" + leaf : parent) == path);
    Require(LeafItem(AppendPath(std::string_view(path), std::string_view("x"))) == "x");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string line(reinterpret_cast<const char*>(data), size);
    if (const auto entry = ParseDirLine(line)) {
        RequireInOrder(line, {entry->first, entry->second});
        Require(entry->first.find_first_not_of("0123456789") == std::string::npos);
    }
    if (const auto device = ParseDeviceLine(line)) {
        const auto& [name, dev, uid, port] = *device;
        RequireInOrder(line, {dev, uid, port, name});
        Require(line.starts_with(dev) && IsPort(line));
    }
    CheckPath(line);
    return 0;
}
