#pragma once

#include <QString>

#include <string_view>

// Converts a text so that it can be drawn on one line: invalid UTF-8, line breaks and control
// characters are replaced by visible symbols.
QString DisplayText(std::string_view text);

// Converts plain text so that a tool tip shows it unchanged, even if it contains markup.
QString ToolTipText(const QString& text);
