// Whole files: reading them into memory and replacing them so that a crash or a full disk leaves the old
// one. Paths are UTF-8.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace corlune {

// Joins with the platform's separator.
std::string JoinPath(std::string_view folder, std::string_view name);
bool FileExists(const std::string& path);  // a regular file (links followed)

// Whole content; nullopt when it is no regular file or cannot be read.
std::optional<std::string> ReadWholeFile(const std::string& path);

// Writes a neighbour file, flushes it to the disk and renames it over `path`. On failure the old file is
// whole, the neighbour is removed, and *error (may be null) says what failed.
[[nodiscard]] bool ReplaceFile(const std::string& path, std::string_view bytes, std::string* error = nullptr);

// Renames the file, or whatever stands there, to `path` + ".bad1", or the next number that is free. The new
// path; nullopt when it could not be renamed.
std::optional<std::string> SetAside(const std::string& path);

// File bytes to text: valid UTF-8 as it is (a byte-order mark dropped), anything else from the system code
// page.
std::string DecodeText(std::string_view bytes);
// Text to file bytes: the system code page when reading those bytes back gives the same text, else UTF-8.
std::string EncodeText(std::string_view text);
// The same with a given code page, 932 or 1252.
std::string DecodeText(std::string_view bytes, int codePage);
std::string EncodeText(std::string_view text, int codePage);

bool IsValidUtf8(std::string_view text);

}  // namespace corlune
