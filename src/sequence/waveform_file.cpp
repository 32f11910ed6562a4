#include "sequence/waveform_file.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string_view>

#include "core/ascii_case.h"
#include "sequence/regular_file.h"
#include "sequence/text_waveform.h"

namespace corlune {

namespace {

// Transfer block
constexpr std::size_t kBlockHead = 8;
constexpr std::size_t kPointBytes = 2;
constexpr std::size_t kBlockPairBytes = 6;
constexpr std::uint32_t kBlockArray = 0;
constexpr std::uint32_t kBlockPairs = 1;

// Waveform editor file
constexpr std::int64_t kFormOffset = 342;
constexpr std::size_t kHeadBytes = 10;  // form word to the end of the pair count, read at kFormOffset
constexpr std::size_t kPairCountInHead = 2;
constexpr std::uint16_t kFormPairs = 1;
constexpr std::int64_t kArrayOffset = 352;
constexpr std::int64_t kPairsOffset = 1048928;
constexpr std::size_t kFilePairBytes = 8;
constexpr std::size_t kArrayBytes = kPointBytes * kMaxWaveformPoints;

// Small enough for the processor's cache, large enough that a read is cheap.
constexpr std::size_t kPairPiece = 32768;
constexpr std::size_t kArrayPiece = 131072;
constexpr std::size_t kTextPiece = 262144;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

void Fail(WaveformRead& read, WaveformProblem problem, TextId text, std::string number = {}) {
  read.problem = problem;
  read.reason = {text, std::move(number)};
}

// Also a file that becomes shorter meanwhile.
void FailReading(WaveformRead& read) {
  Fail(read, WaveformProblem::CannotAccess, TextId::WaveCannotRead);
}

void FailArrayEnd(WaveformRead& read) {
  Fail(read, WaveformProblem::Insufficient, TextId::WaveEndsInPoints, std::to_string(kMaxWaveformPoints));
}

std::uint32_t LittleEndian32(const std::uint8_t* bytes) {
  return std::uint32_t{bytes[0]} | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 |
         std::uint32_t{bytes[3]} << 24;
}

void PutBigEndian32(std::uint8_t* bytes, std::uint32_t value) {
  for (int i = 0; i < 4; ++i) bytes[i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
}

void Finish(WaveformRead& read, bool arrayForm, std::int32_t count, std::uint8_t* block,
            std::size_t itemBytes) {
  PutBigEndian32(block, arrayForm ? kBlockArray : kBlockPairs);
  PutBigEndian32(block + 4, static_cast<std::uint32_t>(count));
  read.arrayForm = arrayForm;
  read.pointCount = count;
  read.block.SetSize(kBlockHead + itemBytes * static_cast<std::size_t>(count));
}

// Exchanges the bytes of every 16-bit point; compilers make vector code of this form.
void SwapPoints(std::uint8_t* bytes, std::size_t size) {
  for (std::size_t i = 0; i < size; i += kPointBytes) {
    std::uint16_t point = 0;
    std::memcpy(&point, bytes + i, sizeof point);
    point = static_cast<std::uint16_t>(point << 8 | point >> 8);
    std::memcpy(bytes + i, &point, sizeof point);
  }
}

void ReadEditorArray(RegularFile& file, WaveformRead& read) {
  std::uint8_t* const block = read.block.Prepare(kBlockHead + kArrayBytes);
  std::uint8_t* const points = block + kBlockHead;
  for (std::size_t done = 0; done < kArrayBytes; done += kArrayPiece) {
    const auto got = file.ReadAt(kArrayOffset + static_cast<std::int64_t>(done), points + done, kArrayPiece);
    if (!got) return FailReading(read);
    if (*got < kArrayPiece) return FailArrayEnd(read);
    SwapPoints(points + done, kArrayPiece);
  }
  Finish(read, true, kMaxWaveformPoints, block, kPointBytes);
}

// Position (32 bits) and value (16 bits) of each pair, high byte first; the reserved last two bytes of the
// file's pair are left out.
void LayPairs(const std::uint8_t* from, std::size_t pairs, std::uint8_t* to) {
  for (std::size_t i = 0; i < pairs; ++i, from += kFilePairBytes, to += kBlockPairBytes) {
    std::reverse_copy(from, from + 4, to);
    std::reverse_copy(from + 4, from + 6, to + 4);
  }
}

void CheckPairs(const RegularFile& file, std::uint32_t count, WaveformRead& read) {
  if (count == 0) return Fail(read, WaveformProblem::BadCount, TextId::WavePairCount, "0");
  const std::int64_t needed = kPairsOffset + static_cast<std::int64_t>(kFilePairBytes) * count;
  if (file.Size() < needed) {
    return Fail(read, WaveformProblem::Insufficient, TextId::WaveEndsInPoints, std::to_string(count));
  }
  if (count > static_cast<std::uint32_t>(kMaxWaveformPoints)) {
    return Fail(read, WaveformProblem::BadCount, TextId::WavePairCount, std::to_string(count));
  }
}

void ReadEditorPairs(RegularFile& file, std::size_t count, WaveformRead& read) {
  std::uint8_t* const block = read.block.Prepare(kBlockHead + kBlockPairBytes * count);
  std::array<std::uint8_t, kPairPiece> piece;
  constexpr std::size_t kPairsInPiece = kPairPiece / kFilePairBytes;
  for (std::size_t done = 0; done < count; done += kPairsInPiece) {
    const std::size_t pairs = std::min<std::size_t>(kPairsInPiece, count - done);
    const std::int64_t offset = kPairsOffset + static_cast<std::int64_t>(done * kFilePairBytes);
    const auto got = file.ReadAt(offset, piece.data(), pairs * kFilePairBytes);
    if (!got) return FailReading(read);
    if (*got < pairs * kFilePairBytes) {
      return Fail(read, WaveformProblem::Insufficient, TextId::WaveCannotRead);
    }
    LayPairs(piece.data(), pairs, block + kBlockHead + kBlockPairBytes * done);
  }
  Finish(read, false, static_cast<std::int32_t>(count), block, kBlockPairBytes);
}

// Form and number of points, and whether the file is long enough for them.
void ReadEditorHead(RegularFile& file, WaveformRead& read) {
  std::array<std::uint8_t, kHeadBytes> head{};
  const auto got = file.ReadAt(kFormOffset, head.data(), head.size());
  if (!got) return FailReading(read);
  if (*got < head.size()) return Fail(read, WaveformProblem::Insufficient, TextId::WaveEndsInHeader);
  const int form = head[0] | head[1] << 8;
  if (form != kFormPairs) {
    read.pointCount = kMaxWaveformPoints;
    if (file.Size() < kArrayOffset + static_cast<std::int64_t>(kArrayBytes)) FailArrayEnd(read);
    return;
  }
  const std::uint32_t count = LittleEndian32(head.data() + kPairCountInHead);
  CheckPairs(file, count, read);
  if (read.problem != WaveformProblem::None) return;
  read.arrayForm = false;
  read.pointCount = static_cast<std::int32_t>(count);
}

void ReadEditorFile(RegularFile& file, WaveformRead& read) {
  ReadEditorHead(file, read);
  if (read.problem != WaveformProblem::None) return;
  if (read.arrayForm) {
    ReadEditorArray(file, read);
  } else {
    ReadEditorPairs(file, static_cast<std::size_t>(read.pointCount), read);
  }
}

void CheckTextCount(const TextWaveform& values, bool shortened, WaveformRead& read) {
  const std::int32_t count = values.Count();
  const bool taken = count >= kMinWaveformPoints && count <= kMaxWaveformPoints &&
                     std::has_single_bit(static_cast<std::uint32_t>(count));
  if (shortened) {
    return Fail(read, WaveformProblem::Insufficient, TextId::WaveCannotRead);
  }
  if (!taken) {
    const std::string number = values.Full() ? "> 524288" : std::to_string(count);
    return Fail(read, WaveformProblem::BadCount, TextId::WaveValueCount, number);
  }
  if (values.FirstInvalid() != 0) {
    return Fail(read, WaveformProblem::Invalid, TextId::WaveNoInteger, std::to_string(values.FirstInvalid()));
  }
}

void ReadTextFile(RegularFile& file, WaveformRead& read) {
  std::uint8_t* const block = read.block.Prepare(kBlockHead + kPointBytes * kMaxWaveformPoints);
  TextWaveform values(block + kBlockHead);
  const auto buffer = std::make_unique_for_overwrite<char[]>(kTextPiece + 1);
  std::size_t held = 0;  // the beginning of a value that the next piece completes
  std::int64_t offset = 0;
  bool atEnd = false;
  while (!atEnd && !values.Full()) {
    const auto got = file.ReadAt(offset, buffer.get() + held, kTextPiece - held);
    if (!got) return FailReading(read);
    atEnd = *got < kTextPiece - held;
    std::string_view text(buffer.get(), held + *got);
    if (offset == 0 && text.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
      text.remove_prefix(kByteOrderMark.size());
    }
    offset += static_cast<std::int64_t>(*got);
    if (atEnd) {
      buffer[held + *got] = '\n';
      text = {text.data(), text.size() + 1};
    }
    const std::size_t complete = text.find_last_of(",\r\n") + 1;
    if (complete == 0) {
      return Fail(read, WaveformProblem::Invalid, TextId::WaveNoSeparator, std::to_string(kTextPiece));
    }
    values.Take(text.substr(0, complete));
    held = text.size() - complete;
    std::memmove(buffer.get(), text.data() + complete, held);
  }
  CheckTextCount(values, atEnd && offset < file.Size(), read);
  if (read.problem == WaveformProblem::None) Finish(read, true, values.Count(), block, kPointBytes);
}

void Start(WaveformRead& read) {
  read.problem = WaveformProblem::None;
  read.reason = {};
  read.arrayForm = true;
  read.pointCount = 0;
  read.block.SetSize(0);
}

// The last three characters, whatever stands before them.
bool IsTextWaveform(const std::string& path) {
  return EndsWithIgnoringCase(path, "txt");
}

bool IsEditorWaveform(const std::string& path) {
  return EndsWithIgnoringCase(path, "wdb");
}

}  // namespace

std::optional<TextId> MessageOf(WaveformProblem problem) {
  switch (problem) {
    case WaveformProblem::CannotAccess:
      return TextId::ArbCannotAccess;
    case WaveformProblem::BadExtension:
      return TextId::WrongFileName;
    case WaveformProblem::Insufficient:
      return TextId::ArbTooShort;
    case WaveformProblem::Invalid:
      return TextId::ArbInvalid;
    case WaveformProblem::None:
    case WaveformProblem::BadCount:
      break;
  }
  return std::nullopt;
}

std::string ReasonText(const WaveformReason& reason, const MessageCatalogue& catalogue) {
  return reason.text ? catalogue.GetResString(*reason.text, {reason.number}) : std::string();
}

std::uint8_t* WaveformBlock::Prepare(std::size_t size) {
  size_ = 0;
  if (size > capacity_) {
    bytes_.reset();
    capacity_ = 0;
    bytes_ = std::make_unique_for_overwrite<std::uint8_t[]>(size);
    capacity_ = size;
  }
  return bytes_.get();
}

void ReadArbFile(const std::string& path, WaveformRead& read) {
  Start(read);
  RegularFile file(path);
  if (!file.IsOpen()) return Fail(read, WaveformProblem::CannotAccess, TextId::WaveCannotOpen);
  if (IsTextWaveform(path)) {
    ReadTextFile(file, read);
  } else if (IsEditorWaveform(path)) {
    ReadEditorFile(file, read);
  } else {
    Fail(read, WaveformProblem::BadExtension, TextId::WaveNeitherWdbNorTxt);
  }
  if (read.problem != WaveformProblem::None) read.pointCount = 0;
}

bool ReadArbHeader(const std::string& path, WaveformRead& read) {
  Start(read);
  RegularFile file(path);
  if (!file.IsOpen()) {
    Fail(read, WaveformProblem::CannotAccess, TextId::WaveCannotOpen);
  } else if (IsTextWaveform(path)) {
    return false;
  } else if (IsEditorWaveform(path)) {
    ReadEditorHead(file, read);
  } else {
    Fail(read, WaveformProblem::BadExtension, TextId::WaveNeitherWdbNorTxt);
  }
  if (read.problem != WaveformProblem::None) read.pointCount = 0;
  return true;
}

WaveformRead ReadArbFile(const std::string& path) {
  WaveformRead read;
  ReadArbFile(path, read);
  return read;
}

}  // namespace corlune
