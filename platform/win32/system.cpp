// What Windows has in another form: modules, processes, threads, events, sounds, texts.
#include <windows.h>

#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "platform/sim/hardware/wave_file.h"
#include "platform/sim/host_file.h"
#include "platform/win32/host_folder.h"

namespace win32 {
namespace {

BOOL Refuse(DWORD error) {
  SetLastError(error);
  return FALSE;
}

// Nothing where the file is missing, or no wave file.
std::optional<DWORD> SoundLength(const std::wstring& path) {
  try {
    const std::string bytes = sim::ReadHostFile(path);
    const auto wave =
        sim::ReadWaveFile({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    if (wave) return wave->length_ms();
  } catch (const std::exception&) {
    return std::nullopt;
  }
  return std::nullopt;
}

// Windows' library of sounds, which takes its time to load and stays: for a program that plays one.
struct Sounds {
  HMODULE library = LoadLibraryW(L"winmm.dll");
  decltype(&waveOutGetNumDevs) count_outputs =
      Find<decltype(&waveOutGetNumDevs)>("waveOutGetNumDevs");
  decltype(&PlaySoundW) play = Find<decltype(&PlaySoundW)>("PlaySoundW");
  bool has_output = count_outputs != nullptr && play != nullptr && count_outputs() != 0;

 private:
  template <typename Function>
  [[nodiscard]] Function Find(const char* name) const {
    return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(library, name)));
  }
};

const Sounds& TheSounds() {
  static const Sounds sounds;
  return sounds;
}

}  // namespace
}  // namespace win32

extern "C" {

// The device tells libraries apart by their file names alone.
HMODULE Win32LoadLibraryW(LPCWSTR name) {
  if (name == nullptr) return LoadLibraryW(nullptr);
  const std::wstring_view path(name);
  if (!path.starts_with(L'\\')) return LoadLibraryW(name);
  const std::wstring file(path.substr(path.rfind(L'\\') + 1));
  return LoadLibraryW(GetModuleHandleW(file.c_str()) != nullptr ? file.c_str()
                                                                : win32::HostPath(path).c_str());
}

FARPROC Win32GetProcAddressW(HMODULE module, LPCWSTR name) {
  char narrow[256] = {};
  WideCharToMultiByte(CP_ACP, 0, name, -1, narrow, sizeof(narrow) - 1, nullptr, nullptr);
  return GetProcAddress(module, narrow);
}

// The device's command line does not begin with the program, Windows' own does.
BOOL Win32CreateProcessW(LPCWSTR image, LPCWSTR command_line, LPSECURITY_ATTRIBUTES process,
                         LPSECURITY_ATTRIBUTES thread, BOOL inherit, DWORD flags,
                         LPVOID environment, LPCWSTR directory, LPSTARTUPINFOW /*startup*/,
                         LPPROCESS_INFORMATION information) {
  const std::wstring program = win32::HostPath(image);
  std::wstring command = L"\"" + program + L"\" " + (command_line != nullptr ? command_line : L"");
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION started{};
  if (!CreateProcessW(program.c_str(), command.data(), process, thread, inherit, flags, environment,
                      directory, &startup, &started)) {
    return FALSE;
  }
  if (information != nullptr) {
    *information = started;
  } else {
    CloseHandle(started.hThread);
    CloseHandle(started.hProcess);
  }
  return TRUE;
}

// Windows takes the size of the stack in a word of 64 bits.
HANDLE Win32CreateThread(LPSECURITY_ATTRIBUTES security, DWORD stack_bytes,
                         LPTHREAD_START_ROUTINE start, LPVOID argument, DWORD flags,
                         LPDWORD thread_id) {
  return CreateThread(security, stack_bytes, start, argument, flags, thread_id);
}

BOOL Win32EventModify(HANDLE event, DWORD action) {
  switch (action) {
    case 1:
      return PulseEvent(event);
    case 2:
      return ResetEvent(event);
    case 3:
      return SetEvent(event);
    default:
      return win32::Refuse(ERROR_INVALID_PARAMETER);
  }
}

// The text as it is: the library gives a whole line for the format, and no arguments.
void Win32NKDbgPrintfW(LPCWSTR format, ...) {
  OutputDebugStringW(format);
}

// A PC without a sound output is silent for the length of the sound.
BOOL Win32PlaySoundW(LPCWSTR sound, HMODULE /*module*/, DWORD flags) {
  const win32::Sounds& sounds = win32::TheSounds();
  if (sound == nullptr) return !sounds.has_output || sounds.play(nullptr, nullptr, 0);
  const std::wstring path = win32::HostPath(sound);
  const std::optional<DWORD> length_ms = win32::SoundLength(path);
  if (!length_ms) return win32::Refuse(ERROR_FILE_NOT_FOUND);
  if (sounds.has_output) return sounds.play(path.c_str(), nullptr, flags | SND_NODEFAULT);
  if ((flags & SND_ASYNC) == 0) Sleep(*length_ms);
  return TRUE;
}

// A letter that the device's 8-bit texts do not have becomes a question mark; Windows would stop.
size_t Win32Wcstombs(char* narrow, LPCWSTR wide, size_t count) {
  size_t length = 0;
  for (; wide[length] != L'\0' && (narrow == nullptr || length < count); ++length) {
    if (narrow != nullptr)
      narrow[length] = static_cast<char>(wide[length] <= 0xFF ? wide[length] : '?');
  }
  if (narrow != nullptr && length < count) narrow[length] = '\0';
  return length;
}

}  // extern "C"
