// A folder for files of this process alone; it disappears with the object. What a killed process left behind
// goes when the next one makes its folder.
#pragma once

#include <string>

#include "platform/file_descriptor.h"

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
  FileDescriptor lock_;  // of the folder, for as long as it is in use
};

}  // namespace corlune
