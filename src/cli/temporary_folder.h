// A folder for files of this process alone; it disappears with the object.
#pragma once

#include <string>

namespace corlune {

class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder() { Remove(); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  // Empty when the folder could not be made.
  const std::string& Path() const { return path_; }
  // Where the program ends without running destructors.
  void Remove();

 private:
  std::string path_;
};

}  // namespace corlune
