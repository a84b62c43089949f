#pragma once

#include "recording_host.h"
#include "recording_shell.h"
#include "runner.h"
#include "runtime.h"

#include <gtest/gtest.h>

extern "C" std::int32_t PluginMain(int message, PluginInterface* pi, ...);
extern "C" const char* PluginHelp();

using Strings = std::vector<std::string>;

// The plug-in's functions with a host and a shell that record.
class PluginTest : public testing::Test {
  protected:
    ~PluginTest() override
    {
        Stop();
        shells::TakeCalls();
    }

    void OpenPython(const std::string& path)
    {
        host.language = kPythonLanguage;
        host.document = path;
    }
    // The call that runs the tool with these words.
    std::string RunLine(const std::string& words) const { return "run " + host.Tool() + words; }
    // Returns the words of the lines that were run, joined, and forgets all calls.
    std::string TakeWords()
    {
        std::string words;
        for (const auto& call : shells::TakeCalls()) {
            if (call.starts_with(RunLine(""))) {
                words += call.substr(RunLine("").size());
            }
        }
        return words;
    }

    Runtime runtime;
    RecordingHost host;
};
