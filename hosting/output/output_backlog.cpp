#include "output_backlog.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t kBlockSize = 65'536;

}  // namespace

void OutputBacklog::Append(std::string_view bytes)
{
    while (!bytes.empty()) {
        if (blocks_.empty() || blocks_.back().action || blocks_.back().bytes.size() == kBlockSize) {
            blocks_.emplace_back();
        }
        auto& block = blocks_.back();
        const auto part = bytes.substr(0, kBlockSize - block.bytes.size());
        const auto lines = static_cast<std::size_t>(std::ranges::count(part, '\n'));
        block.bytes += part;
        block.lines += lines;
        size_.lines += lines;
        size_.bytes += part.size();
        bytes.remove_prefix(part.size());
    }
}

void OutputBacklog::AppendAction(std::function<void()> action)
{
    blocks_.push_back({.bytes = {}, .action = std::move(action)});
}

OutputBacklog::Block OutputBacklog::Take()
{
    auto block = std::move(blocks_.front());
    blocks_.pop_front();
    size_.lines -= block.lines;
    size_.bytes -= block.bytes.size();
    return block;
}

bool OutputBacklog::IsExcessive() const
{
    return size_.lines > 2 * capacity_.lines || size_.bytes > capacity_.bytes + capacity_.bytes / 4;
}

std::optional<OutputBacklog::Block> OutputBacklog::TakeSuperfluous()
{
    if (blocks_.empty()) {
        return std::nullopt;
    }
    const auto& oldest = blocks_.front();
    const bool suffices = size_.lines - oldest.lines > capacity_.lines ||
                          size_.bytes - oldest.bytes.size() > capacity_.bytes;
    return suffices ? std::optional(Take()) : std::nullopt;
}
