// Loads a shared object of the host.
#include <dlfcn.h>
#include <fmt/format.h>
#include <link.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "platform/sim/kernel/loaded_library.h"

namespace sim {
namespace {

// Unique on the host, also beside other devices and other test runs.
std::filesystem::path CopyPath() {
  static std::atomic<unsigned> copies = 0;
  return std::filesystem::temp_directory_path() /
         fmt::format("DVLORQPAL.{}.{}.so", getpid(), copies++);
}

struct AddressRange {
  std::uintptr_t begin = 0;
  std::uintptr_t end = 0;
};

struct Search {
  std::string_view path;
  AddressRange writable;
};

// The part of a library's data that is still writable after relocation.
int FindWritable(dl_phdr_info* info, std::size_t /*size*/, void* argument) {
  auto& search = *static_cast<Search*>(argument);
  if (search.path != info->dlpi_name) return 0;
  std::uintptr_t protected_end = 0;
  for (const ElfW(Phdr) & header : std::span(info->dlpi_phdr, info->dlpi_phnum)) {
    const std::uintptr_t begin = info->dlpi_addr + header.p_vaddr;
    if (header.p_type == PT_LOAD && (header.p_flags & PF_W) != 0) {
      search.writable = {begin, begin + header.p_memsz};
    }
    if (header.p_type == PT_GNU_RELRO) {
      const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
      protected_end = (begin + header.p_memsz) / page * page;
    }
  }
  search.writable.begin = std::max(search.writable.begin, protected_end);
  return 1;
}

// Copies volatile words, without the address sanitizer: its red zones between the statics are
// copied too, and it would report them as overruns.
[[gnu::no_sanitize_address]] void CopyWords(const volatile std::uint64_t* from, std::size_t count,
                                            volatile std::uint64_t* to) {
  for (const volatile std::uint64_t* const end = from + count; from != end;) *to++ = *from++;
}

class HostLibrary : public LoadedLibrary {
 public:
  explicit HostLibrary(const std::filesystem::path& library) : path_(CopyPath()) {
    std::filesystem::copy_file(library, path_, std::filesystem::copy_options::overwrite_existing);
    module_ = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module_ == nullptr) {
      const std::string reason = dlerror();
      std::filesystem::remove(path_);
      throw std::runtime_error("cannot load the library: " + reason);
    }
    KeepWritableData();
  }
  ~HostLibrary() override {
    dlclose(module_);
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }

  [[nodiscard]] void* Symbol(const char* name) const override { return dlsym(module_, name); }
  [[nodiscard]] bool Contains(const void* address) const override {
    Dl_info info{};
    return dladdr(address, &info) != 0 && path_ == info.dli_fname;
  }
  void Reset() override {
    CopyWords(counters_, counted_.size(), counted_.data());
    CopyWords(at_first_.data(), at_first_.size(), writable_);
    CopyWords(counted_.data(), counted_.size(), counters_);
  }

 private:
  void KeepWritableData();

  std::filesystem::path path_;
  void* module_ = nullptr;
  std::uint64_t* writable_ = nullptr;
  std::vector<std::uint64_t> at_first_;
  // The counters of a build for coverage, which a reset leaves as they are.
  std::uint64_t* counters_ = nullptr;
  std::vector<std::uint64_t> counted_;
};

void HostLibrary::KeepWritableData() {
  Search search{path_.native(), {}};
  dl_iterate_phdr(&FindWritable, &search);
  // The last word may reach beyond the data. The page reaches further.
  writable_ = reinterpret_cast<std::uint64_t*>(search.writable.begin);
  at_first_.resize((search.writable.end - search.writable.begin + 7) / sizeof(std::uint64_t));
  CopyWords(writable_, at_first_.size(), at_first_.data());
  using Address = std::uint64_t* (*)();
  if (auto* const begin = reinterpret_cast<Address>(Symbol("CountersBegin"))) {
    auto* const end = reinterpret_cast<Address>(Symbol("CountersEnd"));
    counters_ = begin();
    counted_.resize(static_cast<std::size_t>(end() - begin()));
  }
}

}  // namespace

const char* const kLibraryExtension = ".so";

std::unique_ptr<LoadedLibrary> LoadLibraryFile(const std::filesystem::path& library) {
  return std::make_unique<HostLibrary>(library);
}

}  // namespace sim
