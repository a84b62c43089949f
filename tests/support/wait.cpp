#include "wait.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

#include <stdlib.h>

#include <fstream>
#include <iterator>

bool WaitUntil(const std::function<bool()>& condition, std::chrono::milliseconds patience)
{
    QTimer tick;  // The condition may become true without an event.
    tick.start(std::chrono::milliseconds(2));
    const QDeadlineTimer deadline(patience);
    while (!condition()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

TemporaryFolder::TemporaryFolder()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "quilp-test-XXXXXX").string();
    path_ = mkdtemp(pattern.data());
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryFolder::Write(const std::string& name, std::string_view content) const
{
    const auto file = path_ / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
    return file.string();
}

std::string EveryByte()
{
    std::string bytes;
    for (int i = 0; i < 256; ++i) {
        bytes += static_cast<char>(i);
    }
    return bytes;
}

std::string ReadFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}
