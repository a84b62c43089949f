#pragma once

#include <QKeySequence>
#include <QString>

#include <expected>
#include <map>
#include <string>
#include <utility>
#include <vector>

class QSettings;

struct NamedShortcut {
    std::string name;
    QString keys;  // As in "Ctrl+Shift+R"; empty for none.
};

// The shortcuts of the plug-in's commands. No two commands share one, nor begin another's. Used on
// the user-interface thread.
class Shortcuts {
  public:
    // `reserved` are the editor's own, by the names to tell the user. Of defaults that clash, the
    // first holds.
    Shortcuts(std::vector<NamedShortcut> defaults, const std::vector<NamedShortcut>& reserved);

    // Empty when the command has none.
    QKeySequence Shortcut(const std::string& command) const;

    // An empty sequence takes the command's away. The error is the name of who holds this shortcut.
    std::expected<void, std::string> SetShortcut(const std::string& command,
                                                 const QKeySequence& keys);

    // Only what differs from the defaults is saved. What cannot be understood or clashes is passed
    // over on loading.
    void Load(QSettings& settings);
    void Save(QSettings& settings) const;

  private:
    void FillWithDefaults();
    QKeySequence Default(const std::string& command) const;

    std::vector<NamedShortcut> defaults_;
    std::vector<std::pair<std::string, QKeySequence>> reserved_;
    std::map<std::string, QKeySequence> shortcuts_;  // By command; empty when it was taken away.
};
