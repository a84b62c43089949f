#include "output_feed.h"

#include <QElapsedTimer>

#include <utility>

namespace {

constexpr qint64 kPassTime = 5;  // milliseconds in one iteration of the event loop

}  // namespace

OutputFeed::OutputFeed(Text text, OutputBacklog::Size capacity)
    : text_(std::move(text)), pending_(capacity)
{
    timer_.setSingleShot(true);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { PassForAWhile(); });
}

void OutputFeed::Append(std::string_view utf8)
{
    pending_.Append(utf8);
    if (pending_.IsExcessive()) {
        SkipSuperfluous();
    }
    if (!pending_.IsEmpty() && !timer_.isActive()) {
        timer_.start();
    }
}

void OutputFeed::AppendLines(std::string_view utf8)
{
    Then([this] { StartLine(); });
    Append(utf8);
}

void OutputFeed::Then(std::function<void()> action)
{
    if (pending_.IsEmpty()) {
        return action();
    }
    pending_.AppendAction(std::move(action));
}

void OutputFeed::StartLine()
{
    if (text_.lastColumn() > 0) {
        Pass("\n");
    }
}

void OutputFeed::PassBlock()
{
    const auto block = pending_.Take();
    if (block.action) {
        return block.action();
    }
    Pass(block.bytes);
}

void OutputFeed::PassForAWhile()
{
    QElapsedTimer elapsed;
    elapsed.start();
    while (!pending_.IsEmpty() && elapsed.elapsed() < kPassTime) {
        PassBlock();
    }
    if (!pending_.IsEmpty()) {
        timer_.start();
    }
}

void OutputFeed::SkipSuperfluous()
{
    while (const auto block = pending_.TakeSuperfluous()) {
        if (block->action) {
            block->action();
        } else {
            parser_.Skip(block->bytes);
        }
    }
    text_.removeAll();
}

void OutputFeed::Flush()
{
    while (!pending_.IsEmpty()) {
        PassBlock();
    }
    timer_.stop();
}

void OutputFeed::Clear()
{
    timer_.stop();
    while (!pending_.IsEmpty()) {
        if (const auto block = pending_.Take(); block.action) {
            block.action();
        }
    }
    parser_ = {};
}
