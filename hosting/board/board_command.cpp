#include "board_command.h"

#include "board_scripts.h"
#include "main_program.h"

#include <QObject>

#include <algorithm>
#include <span>
#include <string_view>

namespace {

using Words = std::span<const std::string>;
using Kind = BoardCommand::Kind;

QString Leaf(std::string_view path)
{
    while (path.size() > 1 && path.ends_with('/')) {
        path.remove_suffix(1);
    }
    return QString::fromStdString(std::string(path.substr(path.find_last_of("/:") + 1)));
}

// The tool marks paths on the board with ":".
bool IsOnBoard(const std::string& path)
{
    return path.starts_with(':');
}

BoardCommand ParseCopy(Words paths)
{
    if (paths.size() < 2) {
        return {};
    }
    const QString name = Leaf(paths.front());
    if (IsOnBoard(paths.front())) {
        return {Kind::Download, name};
    }
    const bool isMain = paths.back() == ":main.py" && name != "main.py";
    return {Kind::Upload, isMain ? QObject::tr("%1 as main.py").arg(name) : name};
}

BoardCommand ParseSubcommand(const std::string& name, Words arguments)
{
    while (!arguments.empty() && arguments.front().starts_with('-')) {
        arguments = arguments.subspan(1);
    }
    const QString leaf = arguments.empty() ? QString() : Leaf(arguments.front());
    if (name == "cp") {
        return ParseCopy(arguments);
    }
    if (name == "run") {
        return {Kind::Run, leaf};
    }
    if (name == "exec") {
        return {Kind::Prompt, {}};
    }
    if (name == "rm") {
        return {Kind::Delete, leaf};
    }
    if (name == "ls") {
        return {Kind::List, leaf};
    }
    if (name == "devs" || name == "df") {
        return {Kind::Status, {}};
    }
    if (name == "mip") {
        return {Kind::Install, arguments.size() > 1 ? QString::fromStdString(arguments[1]) : leaf};
    }
    return {name.ends_with("reset") ? Kind::Restart : Kind::Other, {}};
}

bool AreSame(Words words, const std::vector<std::string>& others)
{
    return std::ranges::equal(words, others);
}

}  // namespace

BoardCommand ParseBoardCommand(const std::vector<std::string>& words)
{
    Words rest(words);
    rest = rest.subspan(std::min<std::size_t>(rest.size(), 1));
    if (AreSame(rest, RunMainCommand())) {
        return {Kind::Run, "main.py"};
    }
    if (AreSame(rest, ListFilesWords())) {
        return {Kind::List, {}};
    }
    const bool resumes = !rest.empty() && rest.front() == "resume";
    rest = rest.subspan(resumes ? 1 : 0);
    if (rest.empty()) {
        return {};
    }
    auto command = ParseSubcommand(rest.front(), rest.subspan(1));
    if (resumes && command.kind == Kind::Run) {
        command = {Kind::Prompt, {}};  // A longer input is sent as a file.
    }
    return command;
}

QString DescribeRunning(const BoardCommand& command)
{
    switch (command.kind) {
        case Kind::Run: return QObject::tr("Running %1").arg(command.subject);
        case Kind::Prompt: return QObject::tr("Running the input");
        case Kind::Upload: return QObject::tr("Uploading %1").arg(command.subject);
        case Kind::Download: return QObject::tr("Downloading %1").arg(command.subject);
        case Kind::Delete: return QObject::tr("Deleting %1").arg(command.subject);
        case Kind::List:
            return command.subject.isEmpty() ? QObject::tr("Listing the board")
                                             : QObject::tr("Listing %1").arg(command.subject);
        case Kind::Status: return QObject::tr("Asking for the board's status");
        case Kind::Install: return QObject::tr("Installing %1").arg(command.subject);
        case Kind::Restart: return QObject::tr("Restarting the board");
        case Kind::Other: return {};
    }
    return {};
}

QString DescribeStopped(const BoardCommand& command)
{
    if (command.kind == Kind::Upload) {
        return QObject::tr("The upload of %1 was stopped: the board has only a part of it.")
            .arg(command.subject);
    }
    if (command.kind == Kind::Delete) {
        return QObject::tr(
                   "The deletion of %1 was stopped: a part of it may still be on the board.")
            .arg(command.subject);
    }
    return {};
}
