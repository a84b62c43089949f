#include "output_feed.h"

#include <utility>

namespace {

constexpr std::size_t kChunkSize = 65'536;      // bytes a turn
constexpr std::size_t kMaxPending = 8'388'608;  // bytes

}  // namespace

OutputFeed::OutputFeed(Column column, Apply apply)
    : column_(std::move(column)), apply_(std::move(apply))
{
    timer_.setSingleShot(true);
    QObject::connect(&timer_, &QTimer::timeout, [this] { PassChunk(); });
}

void OutputFeed::Append(std::string_view utf8)
{
    pending_ += utf8;
    while (pending_.size() - consumed_ > kMaxPending) {
        PassChunk();
    }
    if (consumed_ < pending_.size() && !timer_.isActive()) {
        timer_.start();
    }
}

void OutputFeed::AppendLines(std::string_view utf8)
{
    Flush();
    if (column_() > 0) {
        Append("\n");
    }
    Append(utf8);
}

void OutputFeed::PassChunk()
{
    const auto part = std::string_view(pending_).substr(consumed_, kChunkSize);
    const auto change = parser_.Feed(part, column_());
    consumed_ += part.size();
    if (consumed_ >= pending_.size() / 2) {
        pending_.erase(0, std::exchange(consumed_, 0));
    }
    if (!pending_.empty()) {
        timer_.start();
    }
    apply_(change);
}

void OutputFeed::Flush()
{
    while (!pending_.empty()) {
        PassChunk();
    }
    timer_.stop();
}

void OutputFeed::Clear()
{
    timer_.stop();
    pending_.clear();
    consumed_ = 0;
    parser_ = {};
}
