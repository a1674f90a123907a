// Starting programs.
#include <algorithm>

#include "platform/sim/coredll/call.h"
#include "platform/sim/kernel/program_process.h"

namespace sim {
namespace {

constexpr LONG kBadProgram = 193;  // ERROR_BAD_EXE_FORMAT

// Finds the installed program that has this file.
const Program* FindProgram(const Kernel& kernel, const FileNode& file) {
  const auto found = std::ranges::find_if(kernel.programs, [&](const Program& program) {
    return kernel.files.Find(program.path).get() == &file;
  });
  return found == kernel.programs.end() ? nullptr : &*found;
}

}  // namespace
}  // namespace sim

using sim::Call;
using sim::CallId;

// Security, inheritance, environment, directory and start-up information must be empty.
BOOL CreateProcessW(LPCWSTR image, LPCWSTR command_line, LPSECURITY_ATTRIBUTES process_security,
                    LPSECURITY_ATTRIBUTES thread_security, BOOL inherit, DWORD flags,
                    LPVOID environment, LPWSTR directory, STARTUPINFOW* startup,
                    PROCESS_INFORMATION* information) {
  Call call(CallId::CreateProcessW);
  if (call.fault() != 0) return call.Fail(call.fault(), FALSE);
  if (flags != 0) call.Misuse("was given flags that nothing simulates");
  const bool usable = image != nullptr && process_security == nullptr &&
                      thread_security == nullptr && inherit == FALSE && environment == nullptr &&
                      directory == nullptr && startup == nullptr;
  if (!usable) return call.Fail(ERROR_INVALID_PARAMETER, FALSE);
  const auto file = call.kernel().files.Find(sim::ToUtf8(image));
  if (file == nullptr || file->is_folder) return call.Fail(ERROR_FILE_NOT_FOUND, FALSE);
  const sim::Program* program = sim::FindProgram(call.kernel(), *file);
  if (program == nullptr) return call.Fail(sim::kBadProgram, FALSE);
  if (!call.kernel().HasRoomForProcess()) return call.Fail(ERROR_NOT_ENOUGH_MEMORY, FALSE);

  const std::string arguments = command_line == nullptr ? "" : sim::ToUtf8(command_line);
  const auto process = sim::StartProgram(call.kernel(), *program, arguments);
  if (information == nullptr) return TRUE;
  information->hProcess = call.AddHandle(process->object);
  information->hThread = call.AddHandle(process->main_thread->object);
  information->dwProcessId = process->id;
  information->dwThreadId = process->main_thread->id;
  return TRUE;
}
