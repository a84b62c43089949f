#include "board_tool.h"

#include "shell_job.h"
#include "tool_environment.h"

#include <memory>
#include <utility>

BoardTool::BoardTool(Runtime& runtime, std::function<void(const std::string& text)> onOutput)
    : runtime_(runtime), onOutput_(std::move(onOutput))
{
}

void BoardTool::Run(const std::vector<std::string>& words, std::function<void(int status)> done)
{
    runtime_.StopJobs(JobGroup::Board);
    auto& queue = runtime_.queue();
    auto forward = [onOutput = onOutput_, &queue](std::string&& text) {
        queue.Post([onOutput, text = std::move(text)] { onOutput(text); });
    };
    ShellJob::Program program{.words = words, .environment = ToolEnvironment(), .folder = {}};
    program.yields = true;
    const auto job = std::make_shared<ShellJob>(
        std::move(program), std::make_shared<const ShellJob::OnOutput>(std::move(forward)), queue);
    job->SetFinishedHandler([done = std::move(done), weak = std::weak_ptr(job)](int status) {
        const auto finished = weak.lock();
        if (done && finished && !finished->IsStopped()) {
            done(status);
        }
    });
    runtime_.Start(job);
}
