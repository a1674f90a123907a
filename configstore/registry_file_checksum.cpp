#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>
#include <numeric>
#include <span>

#include "configstore/registry_file.h"
#include "frame/trace.h"
#include "frame/unique_handle.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kRegistryFile};

// The size of one read. A multiple of the word size: only the last part can end inside a word.
constexpr DWORD kPartBytes = 16 * 1024;

// Words in the device's byte order, which is little-endian. Additions to different sums do not wait
// for each other.
DWORD SumOfWords(std::span<const DWORD> words) {
  std::array<DWORD, 4> sums{};
  for (; words.size() >= sums.size(); words = words.subspan(sums.size())) {
    for (size_t lane = 0; lane < sums.size(); ++lane) sums[lane] += words[lane];
  }
  const DWORD sum = std::accumulate(sums.begin(), sums.end(), DWORD{0});
  return std::accumulate(words.begin(), words.end(), sum);
}

DWORD SumOf(std::span<const DWORD> buffer, DWORD bytes) {
  const std::span<const DWORD> words = buffer.first(bytes / sizeof(DWORD));
  const auto* const behind = reinterpret_cast<const BYTE*>(buffer.data() + words.size());
  return std::accumulate(behind, behind + bytes % sizeof(DWORD), SumOfWords(words));
}

// False where the read fails. Bytes that were not read count as zeros.
bool ReadPart(HANDLE file, std::span<DWORD> buffer, DWORD bytes) {
  DWORD bytes_read = 0;
  if (!ReadFile(file, buffer.data(), bytes, &bytes_read, nullptr)) return false;
  if (bytes_read < bytes) {
    std::memset(reinterpret_cast<BYTE*>(buffer.data()) + bytes_read, 0, bytes - bytes_read);
  }
  return true;
}

DWORD SumOfFile(HANDLE file, DWORD size) {
  const size_t words = (std::min(size, kPartBytes) + sizeof(DWORD) - 1) / sizeof(DWORD);
  const std::unique_ptr<DWORD[]> memory(new (std::nothrow_t{}) DWORD[words]());
  if (memory == nullptr) return 0;
  const std::span<DWORD> buffer(memory.get(), words);
  DWORD sum = 0;
  for (DWORD left = size; left > 0;) {
    const DWORD part = std::min(left, kPartBytes);
    if (!ReadPart(file, buffer, part)) return 0;
    sum += SumOf(buffer, part);
    left -= part;
  }
  return sum;
}

}  // namespace

DWORD PALInitChecksumFile(const WCHAR* path) {
  kTrace.Info("PALInitChecksumFile(%ls) Entry", path);
  const UniqueFile file(
      CreateFileW(path, GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) {
    kTrace.Error("PALInitChecksumFile - CreateFile(%ls) failed winerr:0x%x", path, GetLastError());
    return 0;
  }
  const DWORD size = GetFileSize(file.get(), nullptr);
  if (size == INVALID_FILE_SIZE) {
    kTrace.Error("PALInitChecksumFile - %d=GetFileSize()", size);
    return 0;
  }
  if (size == 0) {
    kTrace.Info("PALInitChecksumFile - %d=GetFileSize()", size);
    return 0;
  }
  return SumOfFile(file.get(), size);
}

}  // namespace pal
