#include "platform/sim/kernel/library_copy.h"

#include <dlfcn.h>
#include <fmt/format.h>
#include <link.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <mutex>
#include <span>
#include <stdexcept>
#include <string_view>

#include "platform/sim/kernel/kernel.h"

namespace sim {
namespace {

// Unique on the host, also beside other devices and other test runs.
std::filesystem::path CopyPath() {
  static std::atomic<unsigned> copies = 0;
  return std::filesystem::temp_directory_path() /
         fmt::format("DVLORQPAL.{}.{}.so", getpid(), copies++);
}

}  // namespace

// Copies that no process uses now, by the library's path.
class IdleCopies {
 public:
  std::unique_ptr<LoadedLibrary> TakeOrLoad(const std::filesystem::path& library) {
    {
      const std::lock_guard lock(mutex_);
      auto& idle = by_library_[library];
      if (!idle.empty()) {
        std::unique_ptr<LoadedLibrary> taken = std::move(idle.back());
        idle.pop_back();
        taken->Reset();
        return taken;
      }
    }
    return std::make_unique<LoadedLibrary>(library);
  }

  void Keep(const std::filesystem::path& library, std::unique_ptr<LoadedLibrary> loaded) {
    const std::lock_guard lock(mutex_);
    by_library_[library].push_back(std::move(loaded));
  }

 private:
  std::mutex mutex_;
  std::map<std::filesystem::path, std::vector<std::unique_ptr<LoadedLibrary>>> by_library_;
};

namespace {

std::shared_ptr<IdleCopies> Idle() {
  static const auto idle = std::make_shared<IdleCopies>();
  return idle;
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

}  // namespace

LoadedLibrary::LoadedLibrary(const std::filesystem::path& library)
    : path_(CopyPath()), module_(nullptr) {
  std::filesystem::copy_file(library, path_, std::filesystem::copy_options::overwrite_existing);
  module_ = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (module_ == nullptr) {
    const std::string reason = dlerror();
    std::filesystem::remove(path_);
    throw std::runtime_error("cannot load the library: " + reason);
  }
  KeepWritableData();
}

LoadedLibrary::~LoadedLibrary() {
  dlclose(module_);
  std::error_code ignored;
  std::filesystem::remove(path_, ignored);
}

void* LoadedLibrary::Symbol(const char* name) const {
  return dlsym(module_, name);
}

bool LoadedLibrary::Contains(const void* address) const {
  Dl_info info{};
  return dladdr(address, &info) != 0 && path_ == info.dli_fname;
}

void LoadedLibrary::KeepWritableData() {
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

void LoadedLibrary::Reset() {
  CopyWords(counters_, counted_.size(), counted_.data());
  CopyWords(at_first_.data(), at_first_.size(), writable_);
  CopyWords(counted_.data(), counted_.size(), counters_);
}

LibraryCopy::LibraryCopy(const std::filesystem::path& library)
    : library_(library), idle_(Idle()), loaded_(idle_->TakeOrLoad(library)) {}

LibraryCopy::~LibraryCopy() {
  idle_->Keep(library_, std::move(loaded_));
}

std::filesystem::path DefaultLibrary() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&DefaultLibrary), &info) == 0) {
    throw std::runtime_error("cannot tell where the simulator's library lies");
  }
  return std::filesystem::path(info.dli_fname).parent_path() / "DVLORQPAL.so";
}

}  // namespace sim
