#include "recording_host.h"

#include "rebinder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <tuple>

namespace {

constexpr std::uint32_t kTarget = 42;

}  // namespace

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

std::pair<std::uint32_t, std::uint32_t> RecordingHost::CommandShortcut(const std::string& name)
{
    shortcutsAsked.push_back(name);
    return shortcut;
}

PluginInterface::Rebinder RecordingHost::MakeRebinder(std::int32_t kind)
{
    EXPECT_EQ(kind, 0);
    return [this, rebind = MakeRebinderFor(*this)](const PluginWork& work) {
        rebind(work);
        ++rebound;
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
