#include "platform/sim/programs/registry_importer.h"

#include <fmt/format.h>

#include <optional>
#include <string>

#include "platform/sim/kernel/kernel.h"
#include "platform/sim/kernel/registry_text.h"
#include "platform/wince.h"

namespace sim {
namespace {

constexpr std::uint32_t kImported = 0;
constexpr std::uint32_t kCannotRead = 1;

// Through the platform's calls: a file that somebody holds open without sharing cannot be read.
std::optional<std::string> ReadRegistryFile(const std::string& path) {
  const HANDLE file = CreateFileW(ToUtf16(path).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return std::nullopt;
  const DWORD size = GetFileSize(file, nullptr);
  std::string text(size == INVALID_FILE_SIZE ? 0 : size, '\0');
  DWORD bytes_read = 0;
  const BOOL is_read =
      ReadFile(file, text.data(), static_cast<DWORD>(text.size()), &bytes_read, nullptr);
  CloseHandle(file);
  if (size == INVALID_FILE_SIZE || !is_read) return std::nullopt;
  text.resize(bytes_read);
  return text;
}

std::uint32_t Import(const std::string& path) {
  const std::optional<std::string> text = ReadRegistryFile(path);
  if (!text) return kCannotRead;
  const ThreadState* thread = CurrentThread();
  Kernel& kernel = thread->process.kernel;
  const Scheduler::Lock lock(kernel.mutex);
  for (const std::string& fault : ImportRegistryText(kernel.registry, *text)) {
    kernel.Log(thread, Effect::kRegistry, fmt::format("{}:{}", path, fault));
  }
  kernel.Log(thread, Effect::kRegistry, fmt::format("{} imported", path));
  return kImported;
}

}  // namespace

Program RegistryImporter(std::uint32_t takes_ms) {
  return {kRegistryImporterPath, [takes_ms](const std::string& command_line) {
            if (takes_ms > 0) Sleep(takes_ms);
            return Import(command_line);
          }};
}

}  // namespace sim
