// Where the program and its files are. Paths are UTF-8, without a trailing separator.
#pragma once

#include <string>

namespace corlune {

inline constexpr const char* kModelDefinitionName = "Corlune_Std.ini";

// The running program's file, links resolved; empty when the system does not tell.
std::string ProgramFile();
// Its folder.
std::string ProgramFolder();
// The per-user folder for configuration files of all programs (XDG_CONFIG_HOME or ~/.config; AppData on
// Windows); empty when the user has none.
std::string UserConfigFolder();

// True for an existing folder in which files can be created.
bool FolderWritable(const std::string& path);

// The application folder: the program's folder when it is writable, else "Corlune" in the user's
// configuration folder, which is created and receives a copy of the shipped model definition when it has
// none. When that fails, too, it is the program's folder.
std::string DefaultApplicationFolder();
// The same for given folders.
std::string ApplicationFolderFor(const std::string& programFolder, const std::string& userConfigFolder);

}  // namespace corlune
