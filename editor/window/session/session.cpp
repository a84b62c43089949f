#include "session.h"

#include "file_bytes.h"
#include "path_text.h"

#include <QSettings>

#include <algorithm>
#include <filesystem>

namespace {

constexpr const char* kRequiredKey = "editor/zoom";

Session Read(QSettings& settings)
{
    Session session;
    session.geometry = settings.value("window/geometry").toByteArray();
    session.splitter = settings.value("window/splitter").toByteArray();
    session.columns = settings.value("window/columns").toByteArray();
    session.showsBoard = settings.value("window/showsBoard", false).toBool();
    session.files = PathsFromStored(settings.value("session/files").toStringList());
    for (const auto& line : settings.value("session/lines").toStringList()) {
        session.lines.append(line.toInt());
    }
    session.front = PathFromStored(settings.value("session/front").toString());
    session.recent = PathsFromStored(settings.value("session/recent").toStringList());
    session.folder = PathFromStored(settings.value("session/folder").toString());
    session.target = PathFromStored(settings.value("session/target").toString());
    session.foldersWithFiles =
        PathsFromStored(settings.value("session/foldersWithFiles").toStringList());
    session.board = {settings.value("board/node").toString().toStdString(),
                     settings.value("board/name").toString().toStdString(),
                     settings.value("board/id").toString().toStdString()};
    session.usesVirtualBoard = settings.value("board/virtual", false).toBool();
    session.zoom = std::clamp(settings.value(kRequiredKey, 0).toInt(), kMinZoom, kMaxZoom);
    session.savesBeforeCommands = settings.value("editor/savesBeforeCommands", true).toBool();
    session.wrapsWorksheet = settings.value("editor/wrapsWorksheet", false).toBool();
    session.promptHistory = settings.value("session/promptHistory").toStringList();
    session.appearance =
        ParseAppearance(settings.value("editor/appearance").toString().toStdString())
            .value_or(Appearance::System);
    return session;
}

}  // namespace

LoadedSession LoadSession(const std::string& path, Shortcuts& shortcuts)
{
    std::error_code error;
    if (!std::filesystem::exists(path, error)) {
        return {};
    }
    LoadedSession loaded;
    QSettings settings(QString::fromStdString(path), QSettings::IniFormat);
    loaded.session = Read(settings);
    shortcuts.Load(settings);
    // Qt reads any text as values without a section, so a known key is required.
    const bool isOurs =
        settings.contains(kRequiredKey) || std::filesystem::file_size(path, error) == 0;
    if (settings.status() != QSettings::NoError || !isOurs) {
        loaded.problem =
            QString::fromStdString(SetAsideWithReport("The settings cannot be read", path));
    }
    return loaded;
}

std::expected<void, std::string> SaveSession(const std::string& path, const Session& session,
                                             const Shortcuts& shortcuts)
{
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), error);
    QSettings settings(QString::fromStdString(path), QSettings::IniFormat);
    settings.setValue("window/geometry", session.geometry);
    settings.setValue("window/splitter", session.splitter);
    settings.setValue("window/columns", session.columns);
    settings.setValue("window/showsBoard", session.showsBoard);
    settings.setValue("session/files", PathsToStored(session.files));
    QStringList lines;
    for (const int line : session.lines) {
        lines.append(QString::number(line));
    }
    settings.setValue("session/lines", lines);
    settings.setValue("session/front", PathToStored(session.front));
    settings.setValue("session/recent", PathsToStored(session.recent));
    settings.setValue("session/folder", PathToStored(session.folder));
    settings.setValue("session/target", PathToStored(session.target));
    settings.setValue("session/foldersWithFiles", PathsToStored(session.foldersWithFiles));
    settings.setValue("board/node", QString::fromStdString(session.board.node));
    settings.setValue("board/name", QString::fromStdString(session.board.name));
    settings.setValue("board/id", QString::fromStdString(session.board.id));
    settings.setValue("board/virtual", session.usesVirtualBoard);
    settings.setValue(kRequiredKey, session.zoom);
    settings.setValue("editor/savesBeforeCommands", session.savesBeforeCommands);
    settings.setValue("editor/wrapsWorksheet", session.wrapsWorksheet);
    settings.setValue("session/promptHistory", session.promptHistory);
    settings.setValue("editor/appearance",
                      QString::fromStdString(AppearanceName(session.appearance)));
    shortcuts.Save(settings);
    settings.sync();
    if (settings.status() != QSettings::NoError) {
        return std::unexpected(path + " cannot be written");
    }
    return {};
}
