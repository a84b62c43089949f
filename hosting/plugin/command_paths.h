#pragma once

#include "EntryRef.h"

#include <map>
#include <string>

// The plug-in puts paths into its command lines as they are, so a host gives them in the form in
// which a command line takes them. What the plug-in writes for the user has the plain paths again.
// Not thread-safe.
class CommandPaths {
  public:
    // The reference with its path escaped (EscapeWord) and its plain name. Remembers the path.
    EntryRef Escape(const EntryRef& ref);

    // The text with the plain forms of all paths that Escape has changed.
    std::string Restore(std::string text) const;

  private:
    std::map<std::string, std::string> plain_;  // By the escaped path.
};
