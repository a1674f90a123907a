#include "platform/device/loader/image.h"

#include <fmt/format.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>

#include "platform/device/loader/imports.h"
#include "platform/device/loader/unwinding.h"

namespace sim {
namespace {

// What the loader reads of the headers, counted from the begin of their parts.
constexpr std::size_t kHeaderAddress = 0x3C;
constexpr std::size_t kMachine = 4, kSectionCount = 6, kOptionalSize = 20, kOptional = 24;
constexpr std::size_t kEntry = 16, kPreferredBase = 28, kImageSize = 56, kHeadersSize = 60;
constexpr std::size_t kExports = 96, kImports = 104, kRelocations = 136;
constexpr std::size_t kSectionHeaderSize = 40;
constexpr std::uint32_t kSignature = 0x00004550;  // "PE"
constexpr std::uint16_t kMachines[] = {0x1C0, 0x1C2};
constexpr std::uint32_t kExecuted = 0x20000000, kWritten = 0x80000000;
constexpr std::uint16_t kNothing = 0, kAddress = 3;  // kinds of relocations
// Behind the image, as far from its begin as it was linked, there is room for unwinding tables.
constexpr std::size_t kMostMemory = 0x200000;

std::vector<std::byte> ReadFile(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  if (!stream) throw std::runtime_error("it cannot be read");
  const std::string content{std::istreambuf_iterator<char>(stream), {}};
  const auto bytes = std::as_bytes(std::span(content));
  return {bytes.begin(), bytes.end()};
}

}  // namespace

std::string Bytes::TextAt(std::size_t at) const {
  std::string text;
  while (const char next = At<char>(at++)) text += next;
  return text;
}

Image::Image(const std::filesystem::path& file) {
  try {
    std::vector<std::byte> content = ReadFile(file);
    Load(Bytes(content));
    AddUnwindingTables(memory_, file.string() + ".exidx");
    Protect();
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(fmt::format("cannot load {}: {}", file.string(), error.what()));
  }
}

Image::~Image() {
  RemoveUnwindingTables(memory_);
}

void Image::Load(const Bytes& file) {
  if (file.At<char>(0) != 'M' || file.At<char>(1) != 'Z') {
    throw std::runtime_error("it is no image");
  }
  const auto header = file.At<std::uint32_t>(kHeaderAddress);
  if (file.At<std::uint32_t>(header) != kSignature) throw std::runtime_error("it is no image");
  const auto machine = file.At<std::uint16_t>(header + kMachine);
  if (std::ranges::count(kMachines, machine) == 0) {
    throw std::runtime_error(fmt::format("it is for machine {:#x}, not for ARM", machine));
  }
  const std::size_t optional = header + kOptional;
  Allocate(file.At<std::uint32_t>(optional + kImageSize));
  const auto headers_size = file.At<std::uint32_t>(optional + kHeadersSize);
  std::ranges::copy(file.Part(0, headers_size), memory_.Part(0, headers_size).begin());
  const std::size_t sections = optional + file.At<std::uint16_t>(header + kOptionalSize);
  for (std::size_t i = 0; i < file.At<std::uint16_t>(header + kSectionCount); ++i) {
    LoadSection(file, sections + i * kSectionHeaderSize);
  }
  entry_ = file.At<std::uint32_t>(optional + kEntry);
  const auto base = reinterpret_cast<std::uintptr_t>(memory_.all().data());
  Relocate(base - file.At<std::uint32_t>(optional + kPreferredBase),
           file.At<Directory>(optional + kRelocations));
  Bind(file.At<Directory>(optional + kImports));
  ReadExports(file.At<Directory>(optional + kExports));
}

void Image::Allocate(std::size_t size) {
  if (size > kMostMemory) throw std::runtime_error(fmt::format("it wants {} bytes", size));
  void* const memory =
      mmap(nullptr, kMostMemory, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw std::runtime_error("there is no memory for it");
  mapping_ = {memory, [](void* mapped) { munmap(mapped, kMostMemory); }};
  memory_ = Bytes({static_cast<std::byte*>(memory), kMostMemory});
}

void Image::LoadSection(const Bytes& file, std::size_t header) {
  const auto size = file.At<std::uint32_t>(header + 8), begin = file.At<std::uint32_t>(header + 12);
  const auto in_file = std::min(size, file.At<std::uint32_t>(header + 16));
  const auto flags = file.At<std::uint32_t>(header + 36);
  const std::span<std::byte> section = memory_.Part(begin, size);
  std::ranges::copy(file.Part(file.At<std::uint32_t>(header + 20), in_file), section.begin());
  if ((flags & kExecuted) != 0) code_.push_back(section);
  if ((flags & kWritten) != 0) writable_.push_back({section, {}});
}

// Blocks, each of them for a page: the page's address, the block's size, and 16-bit entries.
void Image::Relocate(std::uint32_t distance, const Directory& blocks) {
  std::uint32_t block = blocks.begin;
  while (block < blocks.begin + blocks.size) {
    const auto page = memory_.At<std::uint32_t>(block);
    const std::uint32_t end = block + memory_.At<std::uint32_t>(block + 4);
    if (end < block + 8) throw std::runtime_error("its relocations are damaged");
    for (std::uint32_t at = block + 8; at < end; at += 2) {
      const auto entry = memory_.At<std::uint16_t>(at);
      const int kind = entry >> 12;
      if (kind == kAddress) {
        memory_.At<std::uint32_t>(page + (entry & 0xFFF)) += distance;
      } else if (kind != kNothing) {
        throw std::runtime_error(fmt::format("it has a relocation of kind {}", kind));
      }
    }
    block = end;
  }
}

// Descriptors, each of them for a library: its slots hold the names or ordinals of its functions.
void Image::Bind(const Directory& imports) {
  for (std::size_t at = imports.begin; memory_.At<std::uint32_t>(at + 12) != 0; at += 20) {
    const std::string library = memory_.TextAt(memory_.At<std::uint32_t>(at + 12));
    std::size_t slot = memory_.At<std::uint32_t>(at + 16);
    while (const auto entry = memory_.At<std::uint32_t>(slot)) {
      constexpr std::uint32_t kByOrdinal = 0x80000000;
      const std::string name = (entry & kByOrdinal) != 0 ? fmt::format("#{}", entry & ~kByOrdinal)
                                                         : memory_.TextAt(entry + 2);
      void* const function = FindImport(library, name);
      if (function == nullptr) {
        throw std::runtime_error(fmt::format("{} has no function {}", library, name));
      }
      memory_.At<void*>(slot) = function;
      slot += sizeof(entry);
    }
  }
}

void Image::ReadExports(const Directory& exports) {
  if (exports.size == 0) return;  // a program
  const auto count = memory_.At<std::uint32_t>(exports.begin + 24);
  const auto functions = memory_.At<std::uint32_t>(exports.begin + 28);
  const auto names = memory_.At<std::uint32_t>(exports.begin + 32);
  const auto numbers = memory_.At<std::uint32_t>(exports.begin + 36);
  for (std::size_t i = 0; i < count; ++i) {
    const auto number = memory_.At<std::uint16_t>(numbers + 2 * i);
    exports_[memory_.TextAt(memory_.At<std::uint32_t>(names + 4 * i))] =
        memory_.At<std::uint32_t>(functions + 4U * number);
  }
}

void Image::Protect() {
  for (Writable& writable : writable_) {
    writable.at_first.assign(writable.section.begin(), writable.section.end());
  }
  for (const std::span<std::byte> code : code_) {
    mprotect(code.data(), code.size(), PROT_READ | PROT_EXEC);
    auto* const begin = reinterpret_cast<char*>(code.data());
    __builtin___clear_cache(begin, begin + code.size());
  }
}

void* Image::Export(const std::string& name) const {
  const auto found = exports_.find(name);
  return found == exports_.end() ? nullptr : &memory_.At<std::byte>(found->second);
}

bool Image::Contains(const void* address) const {
  const auto* const at = static_cast<const std::byte*>(address);
  return at >= memory_.all().data() && at < memory_.all().data() + memory_.all().size();
}

void Image::Reset() {
  for (const Writable& writable : writable_) {
    std::ranges::copy(writable.at_first, writable.section.begin());
  }
}

}  // namespace sim
