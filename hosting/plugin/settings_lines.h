#pragma once

#include "settings_store.h"

#include <map>
#include <set>
#include <string>
#include <vector>

// The settings lines of plug-ins in memory, for hosts that store them in their own way. A line
// consists of words separated by spaces, the first of which is its key. [ui]
class SettingsLines : public SettingsStore {
  public:
    void RegisterKey(const std::string& key) override { keys_.insert(key); }
    const std::vector<std::string>* Words(const std::string& key) const override;
    void Replace(const std::string& text) override;

    // An empty text if there is no word.
    static std::string KeyOf(const std::string& line);

  protected:
    // Replaces all lines by stored ones.
    void Load(const std::vector<std::string>& lines);

    // Lines by key that the plug-in has written since they were stored.
    const std::map<std::string, std::string>& unsaved() const { return unsaved_; }
    void MarkSaved() { unsaved_.clear(); }

  private:
    std::set<std::string> keys_;
    std::map<std::string, std::vector<std::string>> words_;  // By key.
    std::map<std::string, std::string> unsaved_;
};
