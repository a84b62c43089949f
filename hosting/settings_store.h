#pragma once

#include <expected>
#include <string>
#include <vector>

// Where a host keeps the plug-in's settings lines, one for each key that the plug-in registers.
// Used on the user-interface thread.
class SettingsStore {
  public:
    virtual ~SettingsStore() = default;

    // From now on Replace accepts lines under this key.
    virtual void RegisterKey(const std::string& key) = 0;

    // The words of the key's line, including the key; null when there is none. Valid until the next
    // change.
    virtual const std::vector<std::string>* Words(const std::string& key) const = 0;

    // Stores what the plug-in wrote: for each registered key the last of its lines, if any. Other
    // lines are ignored.
    virtual void Replace(const std::string& text) = 0;

    // Saves the lines. The error is a sentence; the lines are then kept for the next call.
    virtual std::expected<void, std::string> Save() = 0;
};
