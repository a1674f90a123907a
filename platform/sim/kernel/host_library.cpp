// Loads a shared object of the host.
#include <dlfcn.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <set>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/sim/host_file.h"
#include "platform/sim/kernel/loaded_library.h"

namespace sim {
namespace {

// A file of this user alone, which is gone with the process or before.
class PrivateFile {
 public:
  PrivateFile(int descriptor, std::string path) : descriptor_(descriptor), path_(std::move(path)) {}
  ~PrivateFile() { close(descriptor_); }
  PrivateFile(const PrivateFile&) = delete;
  PrivateFile& operator=(const PrivateFile&) = delete;

  [[nodiscard]] const std::string& path() const { return path_; }

  [[nodiscard]] bool Write(std::string_view bytes) const {
    while (!bytes.empty()) {
      const ssize_t written = write(descriptor_, bytes.data(), bytes.size());
      if (written < 0 && errno != EINTR) return false;
      bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    return true;
  }

 private:
  int descriptor_;
  std::string path_;
};

// A file without a name, in memory. Its path holds the number of the process, so that a debugger
// and the reports of a sanitizer find the symbols by it.
std::unique_ptr<PrivateFile> FileInMemory() {
  const int descriptor = memfd_create("DVLORQPAL", MFD_CLOEXEC);
  if (descriptor < 0) return nullptr;
  return std::make_unique<PrivateFile>(descriptor,
                                       fmt::format("/proc/{}/fd/{}", getpid(), descriptor));
}

// A file with a name that nobody can guess.
std::unique_ptr<PrivateFile> FileInFolder(const std::filesystem::path& folder) {
  std::string path = folder / "DVLORQPAL.XXXXXX";
  const int descriptor = mkostemp(path.data(), O_CLOEXEC);
  if (descriptor < 0) return nullptr;
  return std::make_unique<PrivateFile>(descriptor, path);
}

// The folders for a host that loads nothing from memory.
std::vector<std::filesystem::path> Folders() {
  std::vector<std::filesystem::path> folders;
  for (const char* variable : {"XDG_RUNTIME_DIR", "TMPDIR"}) {
    const char* const folder = std::getenv(variable);
    if (folder != nullptr && *folder != '\0') folders.emplace_back(folder);
  }
  folders.emplace_back("/tmp");
  return folders;
}

// An address range of a loaded object.
struct AddressRange {
  std::uintptr_t begin = 0;
  std::uintptr_t end = 0;
};

struct Search {
  std::uintptr_t base;  // which object
  AddressRange all;
  AddressRange writable;  // the part of its data that is still writable after relocation
};

int FindRanges(dl_phdr_info* info, std::size_t /*size*/, void* argument) {
  auto& search = *static_cast<Search*>(argument);
  if (search.base != info->dlpi_addr) return 0;
  std::uintptr_t protected_end = 0;
  search.all.begin = search.base;
  for (const ElfW(Phdr) & header : std::span(info->dlpi_phdr, info->dlpi_phnum)) {
    const std::uintptr_t begin = info->dlpi_addr + header.p_vaddr;
    const std::uintptr_t end = begin + header.p_memsz;
    if (header.p_type == PT_LOAD) search.all.end = std::max(search.all.end, end);
    if (header.p_type == PT_LOAD && (header.p_flags & PF_W) != 0) search.writable = {begin, end};
    if (header.p_type == PT_GNU_RELRO) {
      const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
      protected_end = end / page * page;
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

// The first that loads a file needs no copy of it, and every tool of the host finds its symbols.
bool IsFirst(const std::filesystem::path& library) {
  static std::mutex mutex;
  static std::set<std::filesystem::path> loaded;
  const std::lock_guard lock(mutex);
  return loaded.insert(library).second;
}

class HostLibrary : public LoadedLibrary {
 public:
  explicit HostLibrary(const std::filesystem::path& library) {
    const std::filesystem::path path = std::filesystem::canonical(library);
    if (IsFirst(path)) module_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module_ == nullptr) LoadCopy(ReadHostFile(path));
    KeepWritableData();
  }
  ~HostLibrary() override { dlclose(module_); }

  // Every process asks for all exports anew.
  [[nodiscard]] void* Symbol(const char* name) const override {
    const auto [symbol, is_new] = symbols_.try_emplace(name);
    if (is_new) symbol->second = dlsym(module_, name);
    return symbol->second;
  }
  [[nodiscard]] bool Contains(const void* address) const override {
    const auto at = reinterpret_cast<std::uintptr_t>(address);
    return at >= range_.begin && at < range_.end;
  }
  void Reset() override {
    CopyWords(counters_, counted_.size(), counted_.data());
    CopyWords(at_first_.data(), at_first_.size(), writable_);
    CopyWords(counted_.data(), counted_.size(), counters_);
  }

 private:
  bool Load(std::unique_ptr<PrivateFile> file, std::string_view image, std::string& reason);
  void LoadCopy(std::string_view image);
  void KeepWritableData();

  std::unique_ptr<PrivateFile> file_;  // open as long as it is loaded: no other gets its path
  void* module_ = nullptr;
  mutable std::unordered_map<std::string, void*> symbols_;  // those that were asked for
  AddressRange range_;
  std::uint64_t* writable_ = nullptr;
  std::vector<std::uint64_t> at_first_;
  // The counters of a build for coverage, which a reset leaves as they are.
  std::uint64_t* counters_ = nullptr;
  std::vector<std::uint64_t> counted_;
};

bool HostLibrary::Load(std::unique_ptr<PrivateFile> file, std::string_view image,
                       std::string& reason) {
  if (file == nullptr || !file->Write(image)) {
    reason = std::generic_category().message(errno);
    return false;
  }
  file_ = std::move(file);
  module_ = dlopen(file_->path().c_str(), RTLD_NOW | RTLD_LOCAL);
  if (module_ == nullptr) reason = dlerror();
  return module_ != nullptr;
}

void HostLibrary::LoadCopy(std::string_view image) {
  std::string reason;
  if (Load(FileInMemory(), image, reason)) return;
  for (const std::filesystem::path& folder : Folders()) {
    std::unique_ptr<PrivateFile> file = FileInFolder(folder);
    const std::string path = file == nullptr ? "" : file->path();
    const bool loaded = Load(std::move(file), image, reason);
    unlink(path.c_str());
    if (loaded) return;
  }
  throw std::runtime_error("cannot load the library: " + reason);
}

void HostLibrary::KeepWritableData() {
  const link_map* map = nullptr;
  dlinfo(module_, RTLD_DI_LINKMAP, &map);
  Search search{map->l_addr, {}, {}};
  dl_iterate_phdr(&FindRanges, &search);
  range_ = search.all;
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
