#include "prompt_run.h"

#include "prompt_code.h"

#include <QDir>
#include <QTemporaryFile>

#include <memory>
#include <utility>

namespace {

// Linux limits a word of a command line to 128 KiB.
constexpr std::size_t kMaxWord = 100'000;  // bytes

std::shared_ptr<QTemporaryFile> WriteTemporary(const std::string& text)
{
    auto file = std::make_shared<QTemporaryFile>(QDir::tempPath() + "/quilp-prompt-XXXXXX.py");
    const auto size = static_cast<qint64>(text.size());
    const bool isWritten = file->open() && file->write(text.data(), size) == size && file->flush();
    return isWritten ? file : nullptr;
}

}  // namespace

bool RunAtPrompt(BoardTool& tool, const std::string& text, BoardTool::OnDone done)
{
    auto words = PromptCommand(text);
    if (words.empty()) {
        return false;
    }
    std::shared_ptr<QTemporaryFile> file;
    if (words.back().size() > kMaxWord) {
        file = WriteTemporary(words.back());
        if (!file) {
            return false;
        }
        words = {"resume", "run", file->fileName().toStdString()};
    }
    // The callback keeps the file.
    tool.Run(words, [file, done = std::move(done)](int status) {
        if (done) {
            done(status);
        }
    });
    return true;
}
