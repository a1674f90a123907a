// Loads a DLL of a PC with Windows.
#include <fmt/format.h>
#include <windows.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <span>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/sim/kernel/loaded_library.h"

namespace sim {
namespace {

// A new file in the user's own folder for such files: no other program has made it before.
std::filesystem::path NewFile() {
  std::array<wchar_t, MAX_PATH + 1> path{};
  const auto folder = std::filesystem::temp_directory_path();
  if (GetTempFileNameW(folder.c_str(), L"PAL", 0, path.data()) == 0) {
    throw std::runtime_error(fmt::format("cannot make a file: error {}", GetLastError()));
  }
  return path.data();
}

struct Writable {
  std::span<std::byte> section;
  std::vector<std::byte> at_first;
};

IMAGE_NT_HEADERS& HeadersOf(void* image) {
  const auto* const dos = static_cast<const IMAGE_DOS_HEADER*>(image);
  return *reinterpret_cast<IMAGE_NT_HEADERS*>(static_cast<std::byte*>(image) + dos->e_lfanew);
}

// Throws std::runtime_error where the file cannot be read, or is no image.
std::string ReadImage(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream)
    throw std::runtime_error(fmt::format("cannot load {}: it cannot be read", file.string()));
  std::string image{std::istreambuf_iterator<char>(stream), {}};
  const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(image.data());
  const bool has_headers =
      image.size() > sizeof(*dos) && dos->e_magic == IMAGE_DOS_SIGNATURE && dos->e_lfanew > 0 &&
      static_cast<std::size_t>(dos->e_lfanew) + sizeof(IMAGE_NT_HEADERS) <= image.size();
  if (!has_headers)
    throw std::runtime_error(fmt::format("cannot load {}: it is no image", file.string()));
  return image;
}

class HostLibrary : public LoadedLibrary {
 public:
  explicit HostLibrary(const std::filesystem::path& library) : path_(NewFile()) {
    // The copy has no entry, so that Windows does not call it: the simulated device does.
    std::string image = ReadImage(library);
    entry_ = std::exchange(HeadersOf(image.data()).OptionalHeader.AddressOfEntryPoint, 0);
    std::ofstream copy(path_, std::ios::binary);
    copy << image;
    copy.close();
    if (!copy) throw std::runtime_error(fmt::format("cannot write {}", path_.string()));
    module_ = LoadLibraryW(path_.c_str());
    if (module_ == nullptr) {
      const DWORD error = GetLastError();
      std::filesystem::remove(path_);
      throw std::runtime_error(fmt::format("cannot load the library: error {}", error));
    }
    KeepWritableData();
  }
  ~HostLibrary() override {
    FreeLibrary(module_);
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }

  [[nodiscard]] void* Symbol(const char* name) const override {
    if (name == std::string_view("DllMain")) return &image_[entry_];
    return reinterpret_cast<void*>(GetProcAddress(module_, name));
  }
  [[nodiscard]] bool Contains(const void* address) const override {
    const auto* const at = static_cast<const std::byte*>(address);
    return at >= image_.data() && at < image_.data() + image_.size();
  }
  void Reset() override {
    for (const Writable& writable : writable_) {
      std::ranges::copy(writable.at_first, writable.section.begin());
    }
  }

 private:
  void KeepWritableData();

  std::filesystem::path path_;
  HMODULE module_ = nullptr;
  std::size_t entry_ = 0;
  std::span<std::byte> image_;
  std::vector<Writable> writable_;
};

void HostLibrary::KeepWritableData() {
  const IMAGE_NT_HEADERS& headers = HeadersOf(module_);
  image_ = {reinterpret_cast<std::byte*>(module_), headers.OptionalHeader.SizeOfImage};
  const auto* const sections = reinterpret_cast<const IMAGE_SECTION_HEADER*>(&headers + 1);
  for (const auto& header : std::span(sections, headers.FileHeader.NumberOfSections)) {
    if ((header.Characteristics & IMAGE_SCN_MEM_WRITE) == 0) continue;
    const auto section = image_.subspan(header.VirtualAddress, header.Misc.VirtualSize);
    writable_.push_back({section, {section.begin(), section.end()}});
  }
}

}  // namespace

const char* const kLibraryExtension = ".dll";

std::unique_ptr<LoadedLibrary> LoadLibraryFile(const std::filesystem::path& library) {
  return std::make_unique<HostLibrary>(library);
}

}  // namespace sim
