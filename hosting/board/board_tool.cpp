#include "board_tool.h"

#include "shell_job.h"
#include "tool_environment.h"

#include <memory>
#include <utility>

BoardTool::BoardTool(Runtime& runtime, std::string program, OnOutput worksheet)
    : runtime_(runtime), program_(std::move(program)), worksheet_(std::move(worksheet))
{
}

void BoardTool::Run(const std::vector<std::string>& words, OnOutput onOutput, OnDone done)
{
    runtime_.StopJobs(JobGroup::Board);
    std::vector<std::string> line{program_};
    line.insert(line.end(), words.begin(), words.end());
    auto& queue = runtime_.queue();
    auto forward = [onOutput = std::move(onOutput), &queue](std::string&& text) {
        queue.Post([onOutput, text = std::move(text)] { onOutput(text); });
    };
    const auto job = std::make_shared<ShellJob>(
        ShellJob::Program{.words = std::move(line),
                          .environment = ToolEnvironment(),
                          .folder = {},
                          .takesInput = true,
                          .reportsProgress = true,
                          .yields = true},
        std::make_shared<const ShellJob::OnOutput>(std::move(forward)), queue);
    job->SetFinishedHandler([done = std::move(done), weak = std::weak_ptr(job)](int status) {
        const auto finished = weak.lock();
        if (done && finished && !finished->IsStopped()) {
            done(status);
        }
    });
    runtime_.Start(job);
}
