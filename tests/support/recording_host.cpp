#include "recording_host.h"

#include "rebinder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <tuple>

void RecordingHost::AddButton(const std::string& name, void* pluginBundle)
{
    Note("button " + name + (pluginBundle == bundle ? "" : " of another bundle"));
}

void RecordingHost::RegisterCommand(const std::string& name, const std::string& description)
{
    Note("command " + name + ": " + description);
}

void RecordingHost::WriteSettings(const char* format, ...)
{
    std::array<char, 200> line{};
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line.data(), line.size(), format, arguments);
    va_end(arguments);
    Note(std::string("settings ") + line.data());
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
    return Note("TargetLanguage", targetLanguage);
}

EntryRef RecordingHost::TargetRef(std::uint32_t handle)
{
    EXPECT_EQ(handle, kTarget);
    return Note("TargetRef", EntryRef(target));
}
