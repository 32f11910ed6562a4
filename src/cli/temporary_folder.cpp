#include "cli/temporary_folder.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace corlune {

TemporaryFolder::TemporaryFolder() {
  std::error_code error;
  const auto parent = std::filesystem::temp_directory_path(error);
  if (error) return;
  std::string path = (parent / "corlune-XXXXXX").string();
  if (mkdtemp(path.data()) != nullptr) path_ = path;
}

void TemporaryFolder::Remove() {
  if (path_.empty()) return;
  std::error_code error;
  std::filesystem::remove_all(path_, error);
}

}  // namespace corlune
