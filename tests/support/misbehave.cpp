// misbehave HOW [ARGUMENT...]: a program for tests of whoever starts programs.

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>

namespace {

using Arguments = char**;

void Print(std::string_view text)
{
    for (const ssize_t n = write(STDOUT_FILENO, text.data(), text.size()); n < 0;) {
        std::exit(9);
    }
}

void Pause(int milliseconds)
{
    usleep(static_cast<useconds_t>(milliseconds) * 1000);
}

[[noreturn]] void SleepForEver()
{
    for (;;) {
        pause();
    }
}

void PrintWords(Arguments words)
{
    for (; *words != nullptr; ++words) {
        Print("[" + std::string(*words) + "]\n");
    }
}

void PrintVariable(Arguments words)
{
    const char* value = std::getenv(*words);
    Print(std::string(value != nullptr ? value : "unset") + "\n");
}

// Lines numbered from 0, without end.
void Flood(Arguments)
{
    for (long number = 0;; ++number) {
        Print("line " + std::to_string(number) + "\n");
    }
}

void IgnoreTermination(Arguments)
{
    signal(SIGTERM, SIG_IGN);
    Print("ready\n");
    SleepForEver();
}

void TellTermination(Arguments words)
{
    static std::string file = *words;
    struct sigaction action {};
    action.sa_handler = [](int) {
        close(open(file.c_str(), O_CREAT | O_WRONLY, 0600));
        _exit(0);
    };
    sigaction(SIGTERM, &action, nullptr);
    Print("ready\n");
    SleepForEver();
}

// The child of this one holds the pipe and does not end with its parent.
void LeaveGrandchild(Arguments)
{
    const pid_t grandchild = fork();
    if (grandchild == 0) {
        signal(SIGTERM, SIG_IGN);
        SleepForEver();
    }
    Print(std::to_string(grandchild) + "\n");
}

// The child of this one has let go of the pipe, too.
void GrandchildIgnoresTermination(Arguments)
{
    const pid_t grandchild = fork();
    if (grandchild == 0) {
        signal(SIGTERM, SIG_IGN);
        Print(std::to_string(getpid()) + "\n");
        close(STDOUT_FILENO);
        close(STDERR_FILENO);
    }
    SleepForEver();
}

// One character of three bytes, torn apart by more time than a reader waits for a line's rest.
void TearCharacter(Arguments)
{
    Print("euro \xE2");
    Pause(60);
    Print("\x82");
    Pause(60);
    Print("\xAC sign");
    Pause(60);
    Print(" end\n");
}

void ErrorBetweenLines(Arguments)
{
    Print("one\n");
    std::fputs("two\n", stderr);
    Print("three\n");
    std::fputs("four", stderr);
}

void HoldPrompt(Arguments)
{
    Print("name? ");
    SleepForEver();
}

void ReadInput(Arguments)
{
    char byte = 0;
    Print(read(STDIN_FILENO, &byte, 1) == 0 ? "end of input\n" : "input\n");
}

void CloseOutputAndSleep(Arguments)
{
    Print("closing\n");
    close(STDOUT_FILENO);
    close(STDERR_FILENO);
    Pause(200);
}

void Crash(Arguments)
{
    Print("about to crash");
    std::abort();
}

void Nothing(Arguments) {}

const std::map<std::string_view, void (*)(Arguments)> kWays{
    {"print-words", PrintWords},
    {"print-variable", PrintVariable},
    {"flood", Flood},
    {"ignore-termination", IgnoreTermination},
    {"tell-termination", TellTermination},
    {"leave-grandchild", LeaveGrandchild},
    {"grandchild-ignores-termination", GrandchildIgnoresTermination},
    {"tear-character", TearCharacter},
    {"error-between-lines", ErrorBetweenLines},
    {"hold-prompt", HoldPrompt},
    {"read-input", ReadInput},
    {"close-output", CloseOutputAndSleep},
    {"crash", Crash},
    {"nothing", Nothing},
};

}  // namespace

int main(int argc, char** argv)
{
    const auto way = argc > 1 ? kWays.find(argv[1]) : kWays.end();
    if (way == kWays.end()) {
        std::fputs("misbehave: no such way\n", stderr);
        return 2;
    }
    way->second(argv + 2);
    return 0;
}
