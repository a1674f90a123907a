// The shell's open command for CAB packages, and whether it asks for a password first.
#include <algorithm>
#include <array>
#include <span>

#include "frame/registry.h"
#include "frame/result.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "include/palsecurity.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kImageCapturePolicy};

// Under HKEY_CLASSES_ROOT, in the order in which they are asked and changed.
constexpr auto kCommandPaths = std::to_array<const WCHAR*>(
    {TEXT("tdyskin\\Shell\\Open\\Command"), TEXT("cabfile\\Shell\\Open\\Command")});

// Names of one length: one is written over the other, and the rest of the command stays in place.
constexpr size_t kProgramLength = 7;
constexpr WideText kChecker = TEXT("cabchck");
constexpr WideText kInstaller = TEXT("wceload");
static_assert(kChecker.size() == kProgramLength && kInstaller.size() == kProgramLength);

constexpr DWORD kMaxCommandBytes = 512;

void TraceReadFailure(const WCHAR* path, LONG error) {
  kTrace.Error("Failed to get HKEY_CLASSES_ROOT\\%ls default value. dwRet = %u", path, error);
}

class OpenCommand {
 public:
  explicit OpenCommand(const WCHAR* path) : path_(path) {}

  // Both return the system error, and trace it.
  [[nodiscard]] LONG Read(REGSAM access);
  [[nodiscard]] LONG Write();

  [[nodiscard]] bool AsksForPassword() const {
    return _wcsnicmp(text_.data(), kChecker.data(), kProgramLength) == 0;
  }
  // False, and nothing changes, where the command is shorter than a program's name.
  [[nodiscard]] bool SetProgram(WideText program);

 private:
  [[nodiscard]] std::span<BYTE> Bytes() {
    return {reinterpret_cast<BYTE*>(text_.data()), kMaxCommandBytes};
  }

  const WCHAR* path_;
  UniqueRegistryKey key_;
  StoredValue stored_;
  // With room for the end of a command that is stored without one.
  std::array<WCHAR, kMaxCommandBytes / sizeof(WCHAR) + 1> text_{};
};

LONG OpenCommand::Read(REGSAM access) {
  LONG error = OpenRegistryKey(HKEY_CLASSES_ROOT, path_, access, key_);
  if (error != ERROR_SUCCESS) {
    // The line names another root than the key's. Readers of the log know it so.
    kTrace.Error("Failed to open HKLM\\%ls. dwRet = %u", path_, error);
    return error;
  }
  error = ReadBytes(key_, nullptr, Bytes(), stored_);
  if (error != ERROR_SUCCESS) TraceReadFailure(path_, error);
  return error;
}

bool OpenCommand::SetProgram(WideText program) {
  const std::span<WCHAR> stored = std::span(text_).first(stored_.bytes / sizeof(WCHAR));
  if (Length<WCHAR>(stored) < kProgramLength) {
    TraceReadFailure(path_, ERROR_INVALID_DATA);
    return false;
  }
  std::copy(program.begin(), program.end(), stored.begin());
  return true;
}

LONG OpenCommand::Write() {
  const LONG error = WriteBytes(key_, nullptr, Bytes().first(stored_.bytes), stored_.type);
  if (error != ERROR_SUCCESS) {
    const WCHAR* const command = text_.data();
    kTrace.Error("Error writing %ls to HKEY_CLASSES_ROOT\\%ls. dwRet = %u", command, path_, error);
  }
  return error;
}

bool AsksForPassword(const WCHAR* path) {
  OpenCommand command(path);
  return command.Read(KEY_QUERY_VALUE) == ERROR_SUCCESS && command.AsksForPassword();
}

HRESULT SetProgram(const WCHAR* path, WideText program) {
  OpenCommand command(path);
  const LONG error = command.Read(KEY_QUERY_VALUE | KEY_SET_VALUE);
  if (error != ERROR_SUCCESS) return HResultFromWin32(error);
  return command.SetProgram(program) ? HResultFromWin32(command.Write()) : E_FAIL;
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALSecurity_GetCabFilePasswordProtect(DWORD* enabled) {
  if (enabled == nullptr) return E_FAIL;
  *enabled = std::ranges::any_of(pal::kCommandPaths, &pal::AsksForPassword) ? 1 : 0;
  return S_OK;
}

HRESULT PALAPI PALSecurity_SetCabFilePasswordProtect(DWORD enable) {
  const pal::WideText program = enable == 1 ? pal::kChecker : pal::kInstaller;
  HRESULT result = S_OK;
  for (const WCHAR* const path : pal::kCommandPaths) {
    result = pal::SetProgram(path, program);
    if (pal::Failed(result)) break;
  }
  return result;
}
