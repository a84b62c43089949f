#pragma once

#include <QString>

#include <string>
#include <vector>

// A command line of the board's tool in the user's terms. [any]
struct BoardCommand {
    enum class Kind {
        Run,
        Prompt,
        Upload,
        Download,
        Delete,
        List,
        Status,
        Install,
        Restart,
        Other
    };

    Kind kind = Kind::Other;
    QString subject;  // The name of the file, directory or package; empty if there is none.
};

// `words` are those of the whole line, beginning with the tool's path.
BoardCommand ParseBoardCommand(const std::vector<std::string>& words);

// What the user reads while the command runs, such as "Uploading main.py"; empty for a command that
// is of no interest to the user.
QString DescribeRunning(const BoardCommand& command);

// What the user must know when the command was stopped before its end; empty if it leaves nothing
// incomplete.
QString DescribeStopped(const BoardCommand& command);
