// A coverage-guided fuzz target: what a board or a disk may bring, against the plain
// implementations.

#include "plain_device_output.h"

#include <cstdint>
#include <cstdlib>

namespace {

void Require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

void ComparePaths(const std::string& path)
{
    std::vector<std::string> components;
    for (PathIter i(path); !i.AtEnd(); i.Advance()) {
        Require(i.start <= i.end && i.end <= path.size());
        components.emplace_back(i.Component());
        Require(components.size() <= path.size() + 1);
    }
    Require(components == PlainComponents(path));
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
    Require(ParseDirLine(line) == PlainParseDirLine(line));
    Require(ParseDeviceLine(line) == PlainParseDeviceLine(line));
    ComparePaths(line);
    return 0;
}
