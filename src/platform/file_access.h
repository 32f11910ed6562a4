// Whole files on the disk. Paths are UTF-8.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corlune {

bool IsRegularFile(const std::string& path);  // links followed
// Anything of that name, also a folder.
bool PathExists(const std::string& path);

// Whole content of a regular file; nullopt when it is none or cannot be read.
std::optional<std::string> ReadFileBytes(const std::string& path);

// Replaces the content of `path`, or creates it. The new content is written to a neighbour, flushed to the
// disk and renamed over the old file, so that at every moment the old or the new file is whole. Links are
// followed to the file they name; the permissions of the old file stay. A write-protected file is not
// replaced. A device or pipe is written directly. Neighbours that killed processes left are removed. On
// failure the neighbour is removed and *error (may be null) says what failed.
bool ReplaceFileBytes(const std::string& path, std::string_view bytes, std::string* error);

}  // namespace corlune
