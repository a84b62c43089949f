#pragma once

#include <expected>
#include <string>
#include <vector>

// Stores the plug-in's settings: one line for each key that the plug-in registers. [ui]
class SettingsStore {
  public:
    virtual ~SettingsStore() = default;

    // Makes Replace accept lines with this key.
    virtual void RegisterKey(const std::string& key) = 0;

    // The words of the key's line, including the key; null if there is none. Valid until the next
    // change.
    virtual const std::vector<std::string>* Words(const std::string& key) const = 0;

    // Stores the lines that the plug-in wrote: the last one for each registered key. Other lines
    // are ignored.
    virtual void Replace(const std::string& text) = 0;

    // Saves the lines. The error is a message for the user; the lines are then kept for the next
    // call.
    virtual std::expected<void, std::string> Save() = 0;
};
