#pragma once

#include <QString>

#include <string_view>

// A text as it can be drawn in one line: what is no UTF-8, and what would break the line or do
// nothing that can be seen, stands as a sign for it.
QString DisplayText(std::string_view text);
