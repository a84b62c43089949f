#pragma once

#include <expected>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

// The plug-ins' settings file: lines of words with blanks between them, the first of which is the
// line's key. Lines under keys that this plug-in has not registered belong to others and stay as
// they are. Used on the user-interface thread.
class PluginSettings {
  public:
    explicit PluginSettings(std::string path) : path_(std::move(path)) {}

    // Reads the file; a missing one is an empty one. One that cannot be used is set aside as
    // NAME.unreadable, or NAME.unreadable.2 and so on, and the answer is a sentence about it.
    std::optional<std::string> Load();

    // From here on Replace takes lines under this key.
    void RegisterKey(const std::string& key) { keys_.insert(key); }

    // The words of the key's line, the key among them; null when there is none. Valid until the
    // next call of Load or Replace.
    const std::vector<std::string>* Words(const std::string& key) const;

    // Takes over what the plug-in wrote: for each registered key the last line, if it has one.
    // Other lines count for nothing.
    void Replace(const std::string& text);

    // Writes the lines taken over into the file as it is now, so that what other editors have
    // written meanwhile stays. Makes its folder. The error is a sentence; the lines are then kept
    // for the next time.
    std::expected<void, std::string> Save();

  private:
    using Lines = std::vector<std::string>;

    std::expected<Lines, std::string> ReadLines() const;

    const std::string path_;
    std::set<std::string> keys_;
    std::map<std::string, std::vector<std::string>> words_;  // By key.
    std::map<std::string, std::string> unsaved_;             // Lines by key.
};
