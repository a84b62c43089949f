#pragma once

#include "file_bytes.h"

#include <QString>

#include <expected>
#include <optional>
#include <string>

// Text documents as bytes and back. Errors are sentences for the user. Used on any thread.

enum class TextEncoding {
    Utf8,
    Utf8WithBom,
    Latin1,  // Has a character for every byte, so it also stands for what is no text.
};

enum class LineEnding { Lf, CrLf, Cr };

struct LoadedText {
    QString text;  // Line endings as in the file; without the byte order mark.
    TextEncoding encoding = TextEncoding::Utf8;
};

// A regular file of at most kMaxDocumentSize bytes. What is not valid UTF-8 is Latin-1. `Encode`
// gives the file's own bytes again.
std::expected<LoadedText, std::string> LoadText(const std::string& path);

// The bytes to save. The error names the first character that the encoding does not have.
std::expected<QByteArray, std::string> Encode(const QString& text, TextEncoding encoding);

// The number, from 1, of the first line that is too long to be edited smoothly: each key that is
// typed costs the time to lay out all of its line.
inline constexpr qsizetype kMaxSmoothLineLength = 100'000;  // UTF-16 units
std::optional<qsizetype> FirstTooLongLine(const QString& text);

// The one that ends the most lines; Lf when no line ends.
LineEnding DominantLineEnding(const QString& text);
