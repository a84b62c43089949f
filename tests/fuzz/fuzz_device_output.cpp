// A coverage-guided fuzz target for what a board or a disk may bring: any line is parsed without an
// exception and in time, and what comes out of it stood in it.

#include "device_output.h"
#include "device_path.h"

#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <iterator>

namespace {

void Require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

// The parts stand in the line in this order, without overlapping, and the last one before the
// line's ending. None is empty.
void RequireInOrder(std::string_view line, std::initializer_list<std::string_view> parts)
{
    line.remove_suffix(line.ends_with('\n') ? 1 : 0);
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    Require(line.ends_with(*std::prev(parts.end())));
    for (const auto part : parts) {
        const auto at = line.find(part);
        Require(!part.empty() && at != std::string_view::npos);
        line.remove_prefix(at + part.size());
    }
}

void CheckPath(const std::string& path)
{
    std::string joined;
    for (PathIter i(path); !i.AtEnd(); i.Advance()) {
        Require(i.start <= i.end && i.end <= path.size());
        Require(i.Component() == "/" || i.Component().find('/') == std::string_view::npos);
        joined += i.Component();
        Require(joined.size() <= path.size());
    }
    const std::string leaf = LeafItem(path);
    const std::string parent = ParentPath(std::string_view(path));
    const bool hasSeparator = path.find('/') != std::string::npos;
    Require((hasSeparator ? parent + "/" + leaf : parent) == path);
    Require(LeafItem(AppendPath(std::string_view(path), std::string_view("x"))) == "x");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
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
