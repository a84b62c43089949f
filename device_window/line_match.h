#pragma once

#include <boost/regex.hpp>

#include <string>

// Whether the pattern matches the whole line. A line that would take the expression engine too
// long, or for which it gives up, counts as one that does not match: names and texts come from
// boards, and none of them may hold the window up.
bool MatchesWholeLine(const std::string& line, boost::smatch& groups, const boost::regex& pattern);
