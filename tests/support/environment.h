// Environment variables that are put back at the end of a test.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace corlune::testing {

class Environment {
 public:
  explicit Environment(std::vector<const char*> names) : names_(std::move(names)) {
    for (const char* name : names_) {
      const char* value = std::getenv(name);
      old_.push_back(value != nullptr ? std::optional<std::string>(value) : std::nullopt);
    }
  }
  ~Environment() {
    for (std::size_t i = 0; i < names_.size(); ++i) Set(old_[i] ? old_[i]->c_str() : nullptr, i);
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;
  // Null unsets it.
  void Set(const char* value, std::size_t i = 0) const {
    value != nullptr ? setenv(names_[i], value, 1) : unsetenv(names_[i]);
  }

 private:
  std::vector<const char*> names_;
  std::vector<std::optional<std::string>> old_;
};

}  // namespace corlune::testing
