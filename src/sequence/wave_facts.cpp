#include "sequence/wave_facts.h"

namespace corlune {

namespace {
constexpr std::size_t kMostKept = 1024;  // files; far more than a sequence names
}  // namespace

const WaveFact* WaveFacts::Find(const std::string& path) {
  const FileStamp stamp = StampOf(path);
  const auto known = facts_.find(path);
  if (known != facts_.end() && known->second.Stamp == stamp) return &known->second;
  if (!ReadArbHeader(path, read_)) return nullptr;
  return &Keep(path, stamp);
}

const WaveFact& WaveFacts::Count(const std::string& path) {
  if (const WaveFact* known = Find(path)) return *known;
  // Before it is read: a change meanwhile is then noticed the next time.
  const FileStamp stamp = StampOf(path);
  ReadArbFile(path, read_);
  return Keep(path, stamp);
}

const WaveFact& WaveFacts::Keep(const std::string& path, const FileStamp& stamp) {
  if (facts_.size() >= kMostKept && !facts_.contains(path)) facts_.clear();
  return facts_[path] = {stamp, read_.problem, read_.reason, read_.arrayForm, read_.pointCount};
}

}  // namespace corlune
