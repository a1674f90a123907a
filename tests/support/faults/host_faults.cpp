// Loaded before the host's library (LD_PRELOAD). Of the calls that change files, the one with the
// number FAULT_AT kills the process. With FAULT_ERROR it fails instead, and so does each behind it
// that needs room.
#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

bool Fails(bool needs_room = true) {
  static const char* const at = std::getenv("FAULT_AT");
  static const char* const error = std::getenv("FAULT_ERROR");
  static int calls = 0;
  if (at == nullptr || ++calls < std::atoi(at)) return false;
  if (error == nullptr) kill(getpid(), SIGKILL);
  if (!needs_room) return false;
  errno = std::atoi(error);
  return true;
}

template <class Function>
Function* Next(Function* /*of the type*/, const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

int mkdir(const char* path, mode_t mode) noexcept {
  return Fails() ? -1 : Next(&mkdir, "mkdir")(path, mode);
}

int rename(const char* from, const char* to) noexcept {
  return Fails() ? -1 : Next(&rename, "rename")(from, to);
}

int unlink(const char* path) noexcept {
  return Fails(false) ? -1 : Next(&unlink, "unlink")(path);
}

int rmdir(const char* path) noexcept {
  return Fails(false) ? -1 : Next(&rmdir, "rmdir")(path);
}

int unlinkat(int folder, const char* path, int flags) noexcept {
  return Fails(false) ? -1 : Next(&unlinkat, "unlinkat")(folder, path, flags);
}

FILE* fopen(const char* path, const char* mode) {
  const bool writes = std::string_view(mode).starts_with('w');
  return writes && Fails() ? nullptr : Next(&fopen, "fopen")(path, mode);
}

int fflush(FILE* file) {
  const bool is_output = file == stdout || file == stderr;
  return !is_output && Fails() ? EOF : Next(&fflush, "fflush")(file);
}

// The disk of a test need not spin.
int fsync(int /*descriptor*/) {
  return Fails() ? -1 : 0;
}
}
