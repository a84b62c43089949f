#include "recording_host.h"

#include "Text.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <filesystem>
#include <thread>
#include <tuple>
#include <utility>

namespace {

constexpr std::uint32_t kTarget = 42;

constexpr const char* kTool =
    "#!/bin/sh\n"
    "for word in \"$@\"; do printf '[%s]\\n' \"$word\"; done\n"
    "echo \"$*\" >>\"${0%/*}/calls\"\n"
    "cat \"${0%/*}/says\" \"${0%/*}/says-$1\" 2>/dev/null\n"
    "[ ! -e \"${0%/*}/hangs-$1\" ] || exec sleep 60\n";

}  // namespace

RecordingHost::RecordingHost(Runtime& runtime) : runtime_(runtime), bundle_{folder_.path()}
{
    const auto tool = folder_.Write("Resources/mpremote/mpremote.py", kTool);
    std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
    std::filesystem::copy(QUILP_BUNDLE "/Resources/QuilpWindow.ui",
                          folder_ / "Resources/QuilpWindow.ui");
    bundle = &bundle_;
}

void RecordingHost::ReleaseWork()
{
    holdsWork_ = false;
    for (const auto& work : std::exchange(heldWork_, {})) {
        work(this);
    }
}

std::string RecordingHost::WorksheetWhenIdle()
{
    EXPECT_TRUE(WaitUntil([this] { return runtime_.IsIdle(); }));
    return std::exchange(worksheet, {});
}

void RecordingHost::AddButton(const std::string& name, void* pluginBundle)
{
    log.push_back("button " + name + (pluginBundle == bundle ? "" : " of another bundle"));
}

void RecordingHost::RegisterCommand(const std::string& name, const std::string& description)
{
    log.push_back("command " + name + ": " + description);
}

EntryRef RecordingHost::DocumentRef()
{
    log.emplace_back("DocumentRef");
    return EntryRef(document);
}

bool RecordingHost::HasCurrentTarget()
{
    log.emplace_back("HasCurrentTarget");
    return currentTarget;
}

bool RecordingHost::HasProjectTarget()
{
    log.emplace_back("HasProjectTarget");
    return projectTarget;
}

std::uint32_t RecordingHost::DocumentLanguage()
{
    log.emplace_back("DocumentLanguage");
    return language;
}

void RecordingHost::WriteSettings(const char* format, ...)
{
    std::array<char, 200> line{};
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line.data(), line.size(), format, arguments);
    va_end(arguments);
    log.push_back(std::string("settings ") + line.data());
}

void RecordingHost::ToolHangs(const std::string& command, bool hangs)
{
    if (hangs) {
        folder_.Write("Resources/mpremote/hangs-" + command, "");
    } else {
        std::filesystem::remove(folder_ / ("Resources/mpremote/hangs-" + command));
    }
}

std::vector<std::string> RecordingHost::ToolCalls()
{
    const auto calls = ReadFile(folder_ / "Resources/mpremote/calls");
    std::vector<std::string> lines;
    for (const auto& line : SplitLines(calls)) {
        lines.emplace_back(line);
    }
    return lines;
}

PluginInterface::Rebinder RecordingHost::MakeRebinder(std::int32_t kind)
{
    EXPECT_EQ(kind, 0);
    return [this, ui = std::this_thread::get_id()](const PluginWork& work) {
        if (std::this_thread::get_id() == ui && holdsWork_) {
            heldWork_.push_back(work);
        } else {
            runtime_.queue().Post([this, work] { work(this); });
            postedElsewhere_ += std::this_thread::get_id() == ui ? 0 : 1;
        }
    };
}

void RecordingHost::InsertInWorksheet(const std::string& text, const std::string& second,
                                      std::int32_t third, std::int32_t fourth, std::int32_t fifth)
{
    EXPECT_EQ(std::tuple(second, third, fourth, fifth), std::tuple("", 1, 1, -1));
    worksheet += text;
}

std::uint32_t RecordingHost::TargetLanguage(std::uint32_t handle)
{
    EXPECT_EQ(handle, kTarget);
    log.emplace_back("TargetLanguage");
    return targetLanguage;
}

EntryRef RecordingHost::TargetRef(std::uint32_t handle)
{
    EXPECT_EQ(handle, kTarget);
    log.emplace_back("TargetRef");
    return EntryRef(target);
}

std::uint32_t RecordingHost::CurrentTarget()
{
    log.emplace_back("CurrentTarget");
    return kTarget;
}
