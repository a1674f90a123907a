#include "platform/device/loader/unwinding.h"

#include <dlfcn.h>

#include <cstring>
#include <fstream>
#include <map>
#include <mutex>

namespace sim {
namespace {

// How the file begins; the tables follow.
struct FileHeader {
  char mark[4];
  std::uint32_t tables_at;  // from the image's begin
  std::uint32_t index_at;
  std::uint32_t count;  // of the index's rows, one a function
};
constexpr std::size_t kRowSize = 8;

struct Index {
  std::uintptr_t end_of_image;
  const void* rows;
  int count;
};

std::mutex mutex;
std::map<std::uintptr_t, Index> index_by_image;

const Index* FindIndex(std::uintptr_t address) {
  const std::lock_guard lock(mutex);
  const auto next = index_by_image.upper_bound(address);
  if (next == index_by_image.begin()) return nullptr;
  const Index& index = std::prev(next)->second;
  return address < index.end_of_image ? &index : nullptr;
}

}  // namespace

void AddUnwindingTables(const Bytes& memory, const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  FileHeader header{};
  stream.read(reinterpret_cast<char*>(&header), sizeof(header));
  if (!stream || std::memcmp(header.mark, "EXID", sizeof(header.mark)) != 0) {
    throw std::runtime_error(file.string() + " has no unwinding tables for it");
  }
  const std::size_t size = header.index_at - header.tables_at + header.count * kRowSize;
  stream.read(reinterpret_cast<char*>(memory.Part(header.tables_at, size).data()),
              static_cast<std::streamsize>(size));
  if (!stream) throw std::runtime_error(file.string() + " is cut short");
  const auto begin = reinterpret_cast<std::uintptr_t>(memory.all().data());
  const std::lock_guard lock(mutex);
  index_by_image[begin] = {begin + memory.all().size(), memory.all().data() + header.index_at,
                           static_cast<int>(header.count)};
}

void RemoveUnwindingTables(const Bytes& memory) {
  const std::lock_guard lock(mutex);
  index_by_image.erase(reinterpret_cast<std::uintptr_t>(memory.all().data()));
}

}  // namespace sim

// The runtime asks this function, before that of the C library, for the index of the code at an
// address.
extern "C" const void* __gnu_Unwind_Find_exidx(std::uintptr_t address, int* count) {
  if (const sim::Index* const index = sim::FindIndex(address)) {
    *count = index->count;
    return index->rows;
  }
  using Find = const void* (*)(std::uintptr_t, int*);
  static const auto host = reinterpret_cast<Find>(dlsym(RTLD_NEXT, "__gnu_Unwind_Find_exidx"));
  return host(address, count);
}
