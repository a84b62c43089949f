#pragma once

#include <boost/regex.hpp>

#include <string>

// Whether the pattern matches the whole line. A line that would take the expression engine too
// long, or for which it gives up, does not match: lines come from boards, and none of them may
// block the window.
bool MatchesWholeLine(const std::string& line, boost::smatch& groups, const boost::regex& pattern);
