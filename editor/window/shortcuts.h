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

// The shortcuts of the plug-in's commands. No shortcut is equal to, or the beginning of, another
// one. [ui]
class Shortcuts {
  public:
    // `reserved` are the editor's own shortcuts, with the names to show in messages. Of conflicting
    // defaults, the first is used.
    Shortcuts(std::vector<NamedShortcut> defaults, const std::vector<NamedShortcut>& reserved);

    // Empty if the command has none.
    QKeySequence Shortcut(const std::string& command) const;

    // An empty sequence removes the command's shortcut. The error is the name of the command or
    // reserved shortcut that conflicts.
    std::expected<void, std::string> SetShortcut(const std::string& command,
                                                 const QKeySequence& keys);

    // Only differences from the defaults are saved. Invalid or conflicting entries are ignored.
    void Load(QSettings& settings);
    void Save(QSettings& settings) const;

    bool operator==(const Shortcuts& other) const { return shortcuts_ == other.shortcuts_; }

  private:
    void ApplyDefaults();
    QKeySequence Default(const std::string& command) const;

    std::vector<NamedShortcut> defaults_;
    std::vector<std::pair<std::string, QKeySequence>> reserved_;
    std::map<std::string, QKeySequence> shortcuts_;  // By command; empty if it was removed.
};
