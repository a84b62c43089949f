#include "board_task.h"

#include <QPointer>
#include <QTimer>

#include <memory>
#include <utility>

namespace {

constexpr std::size_t kMaxOutput = 16UL * 1024 * 1024;

// Shared by the callbacks of a command, and thus destroyed when it has ended or is given up.
class Task {
  public:
    Task(QObject& context, std::function<void(const BoardResult&)> done)
        : context_(&context), done_(std::move(done))
    {
        result_.isStopped = true;
    }
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;
    ~Task()
    {
        if (context_) {
            QTimer::singleShot(
                0, context_.data(),
                [done = std::move(done_), result = std::move(result_)] { done(result); });
        }
    }

    void Add(const std::string& text)
    {
        if (result_.output.size() + text.size() <= kMaxOutput) {
            result_.output += text;
        }
    }
    void End(int status)
    {
        result_.isStopped = false;
        result_.status = status;
    }

  private:
    QPointer<QObject> context_;
    std::function<void(const BoardResult&)> done_;
    BoardResult result_;
};

}  // namespace

void RunBoardTask(BoardTool& tool, const std::vector<std::string>& words, QObject& context,
                  std::function<void(const BoardResult& result)> done)
{
    const auto task = std::make_shared<Task>(context, std::move(done));
    tool.Run(
        words, [task](const std::string& text) { task->Add(text); },
        [task](int status) { task->End(status); });
}
