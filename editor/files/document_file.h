#pragma once

#include "file_bytes.h"

#include <QString>

#include <expected>
#include <optional>
#include <string>

// Decodes and encodes text documents. Errors are messages for the user. [any]

enum class TextEncoding {
    Utf8,
    Utf8WithBom,
    Latin1,  // Decodes every byte, so it is also used for files that are not text.
};

enum class LineEnding { Lf, CrLf, Cr };

struct LoadedText {
    QString text;  // With the file's line endings, without the byte order mark.
    TextEncoding encoding = TextEncoding::Utf8;
};

// Reads a regular file of at most kMaxDocumentSize bytes. A file that is not valid UTF-8 is decoded
// as Latin-1. Encode restores exactly the file's bytes.
std::expected<LoadedText, std::string> LoadText(const std::string& path);

// The bytes to save. The error names the first character that cannot be encoded.
std::expected<QByteArray, std::string> Encode(const QString& text, TextEncoding encoding);

// The number, counted from 1, of the first line that is too long to edit smoothly: each keystroke
// lays out the whole line again.
inline constexpr qsizetype kMaxSmoothLineLength = 100'000;  // UTF-16 units
std::optional<qsizetype> FirstTooLongLine(const QString& text);

// The most frequent line ending; Lf if there is none.
LineEnding DominantLineEnding(const QString& text);
