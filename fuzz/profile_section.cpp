// Profile text: reading sections and values, and that a written value is read back and nothing else changes.
#include "core/profile_bytes.h"
#include "core/profile_file.h"
#include "fuzz/fuzz_input.h"

using namespace corlune;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view file = fuzz::Text(data, size);
  for (const int codePage : {932, 1252, kUtf8CodePage}) {
    for (const std::size_t limit : {0u, 3u, 40u}) {
      const std::string section = ReadProfileSection(file, "s", limit, codePage);
      fuzz::Require(limit == 0 || section.size() < limit, "a section stays within its buffer");
    }
    const std::string written = WriteProfileString(file, "s", "key", "value 1", codePage);
    fuzz::Require(ReadProfileString(written, "s", "key", "", 3000, codePage) == "value 1",
                  "a written value is read back");
    fuzz::Require(ReadProfileString(written, "s", "other", "", 3000, codePage) ==
                      ReadProfileString(file, "s", "other", "", 3000, codePage),
                  "a write leaves other keys alone");
    ReadProfileString(file, "s", "key", "default", 5, codePage);
  }
  std::size_t entries = 0;
  ForEachIniEntry(GetIniSectionOfText(file, "s"), [&entries](const IniEntry& entry) {
    entries += SplitList(entry.value).size();
    return true;
  });
  return 0;
}
