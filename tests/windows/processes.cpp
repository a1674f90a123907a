// Real processes of Windows with the library loaded: a good read, a key change and a provisioning
// at the same time, while a fourth process ends with the beeper in its hands. Without an argument
// it is the process that starts the others and looks at what they leave.
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <regex>
#include <string>
#include <vector>

#include "include/pal.h"

namespace {

constexpr int kReads = 5;
constexpr DWORD kPreset = 7;
constexpr DWORD kLongestMs = 30000;  // that anything takes here; else the test hangs

int faults = 0;

void Expect(bool is_so, const std::string& what) {
  std::printf("%s: %s\n", is_so ? "ok" : "FAILED", what.c_str());
  if (!is_so) ++faults;
}

// Every process waits for this event, so that the calls begin together.
HANDLE StartEvent() {
  return CreateEventW(nullptr, TRUE, FALSE, L"PROCESSES_TEST_START");
}
HANDLE ReadyCount() {
  return CreateSemaphoreW(nullptr, 0, 100, L"PROCESSES_TEST_READY");
}

bool ReadCodes() {
  for (int read = 0; read < kReads; ++read) {
    if (PALBEEPGoodReadEx(0) != S_OK) return false;
  }
  return true;
}

bool SeesPreset() {
  DWORD preset = 0;
  return PALVIBGetVibratePreset(&preset) == S_OK && preset == kPreset;
}

struct Role {
  const char* name;
  bool (*play)();
};
constexpr Role kRoles[] = {
    {"read", [] { return SeesPreset() && ReadCodes(); }},
    {"key", [] { return SeesPreset() && PALKEYSetButtonAction(5, PAL_KEY_ACTION_SCAN) == S_OK; }},
    {"provision", [] { return SeesPreset() && PALMFGOpt_ConfigStoreRegUpdate() == S_OK; }},
    {"hold", [] { return PALBEEPChangeConfig() == S_OK; }},
};

int Play(const char* name) {
  for (const Role& role : kRoles) {
    if (std::strcmp(role.name, name) != 0) continue;
    ReleaseSemaphore(ReadyCount(), 1, nullptr);
    if (std::strcmp(name, "hold") != 0) WaitForSingleObject(StartEvent(), kLongestMs);
    return role.play() ? 0 : 1;
  }
  return 2;
}

PROCESS_INFORMATION Start(const std::string& role) {
  std::string command = "processes.exe " + role;
  STARTUPINFOA startup{};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION started{};
  const BOOL is_started = CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0,
                                         nullptr, nullptr, &startup, &started);
  Expect(is_started != FALSE && WaitForSingleObject(ReadyCount(), kLongestMs) == WAIT_OBJECT_0,
         "the process starts: " + role);
  return started;
}

// Gives all processes another name for the value of the preset, in the memory that they share.
void RenameSharedValue() {
  auto* const base = reinterpret_cast<char*>(GetModuleHandleW(L"DVLORQPAL.dll"));
  const auto* const dos = reinterpret_cast<IMAGE_DOS_HEADER*>(base);
  const auto* const headers = reinterpret_cast<IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
  const auto* section = reinterpret_cast<const IMAGE_SECTION_HEADER*>(headers + 1);
  while (std::memcmp(section->Name, ".shared", 8) != 0) ++section;
  auto* unit = reinterpret_cast<wchar_t*>(base + section->VirtualAddress);
  while (std::wcsncmp(unit, L"VibratePresetIndex", 18) != 0) ++unit;
  unit[17] = L'y';
}

std::string TextOf(const char* file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

// What "reg query" prints of a value below HKEY_LOCAL_MACHINE.
std::string Query(const std::string& key, const std::string& name) {
  std::remove("query.txt");
  const std::string path = R"(HKCU\Software\DVLORQPAL\HKEY_LOCAL_MACHINE\)" + key;
  std::system(("reg query \"" + path + "\" /v " + name + " >query.txt").c_str());
  return TextOf("query.txt");
}

void ExpectValue(const std::string& key, const std::string& name, const std::string& value) {
  const std::string found = Query(key, name);
  Expect(found.find(value) != std::string::npos,
         "reg query shows " + key + "\\" + name + " " + value);
}

struct Counts {
  int entries = 0;
  int exits = 0;
  int others = 0;  // the last line of another call
  int abandoned = 0;
  int timeouts = 0;
};

// The lines of the event log by process; a line that is not whole is a fault.
std::map<std::string, Counts> ReadLog() {
  std::map<std::string, Counts> counts;
  const std::regex form(R"(\[(\d+)\] [0-9a-f]{8} (.*\S)\r)");
  const std::regex entry(R"(PALBEEP(GoodReadEx|ChangeConfig)\(.*\) - Entry)");
  const std::regex exit(R"(0x0=PALBEEP(GoodReadEx|ChangeConfig)\(.*\) - Exit)");
  const std::regex other("0x00000000=SetButtonAction.*|Exit PALMFGOpt_ConfigStoreRegUpdate");
  std::ifstream log("eventlog.txt", std::ios::binary);
  int torn = 0;
  for (std::string line; std::getline(log, line);) {
    std::smatch parts;
    if (!std::regex_match(line, parts, form)) {
      if (++torn == 1) std::printf("torn: '%s'\n", line.c_str());
      continue;
    }
    const std::string text = parts[2];
    Counts& of_process = counts[parts[1]];
    if (std::regex_match(text, entry)) ++of_process.entries;
    if (std::regex_match(text, exit)) ++of_process.exits;
    if (std::regex_match(text, other)) ++of_process.others;
    if (text.starts_with("PALWaitForMutex - ERROR abandoned")) ++of_process.abandoned;
    if (text.starts_with("PALWaitForMutex - ERROR timeout")) ++of_process.timeouts;
  }
  Expect(torn == 0, "every line of the event log is whole");
  return counts;
}

void RunTogether() {
  RenameSharedValue();
  Expect(PALVIBSetVibratePreset(kPreset) == S_OK, "the preset is set");
  const HANDLE beeper = CreateMutexW(nullptr, FALSE, L"DVLORQPAL_BEEP_MUTEX");
  const PROCESS_INFORMATION holder = Start("hold");
  while (WaitForSingleObject(beeper, 0) != WAIT_TIMEOUT) {
    ReleaseMutex(beeper);
    Sleep(10);
  }
  std::vector<PROCESS_INFORMATION> others;
  for (const char* role : {"read", "key", "provision"}) others.push_back(Start(role));
  SetEvent(StartEvent());
  Sleep(300);  // the reader waits for the beeper now
  TerminateProcess(holder.hProcess, 9);
  for (const PROCESS_INFORMATION& other : others) {
    DWORD result = STILL_ACTIVE;
    WaitForSingleObject(other.hProcess, kLongestMs);
    GetExitCodeProcess(other.hProcess, &result);
    Expect(result == 0, "process " + std::to_string(other.dwProcessId) + " did what it should");
  }
  auto counts = ReadLog();
  const Counts held = counts[std::to_string(holder.dwProcessId)];
  Expect(held.entries == 1 && held.exits == 0, "the holder ended in its call");
  const Counts read = counts[std::to_string(others.front().dwProcessId)];
  Expect(read.entries == kReads && read.exits == kReads, "each line of the reader is there");
  for (const PROCESS_INFORMATION& other : {others[1], others[2]}) {
    Expect(counts[std::to_string(other.dwProcessId)].others == 1, "each call's last line is there");
  }
  Expect(read.abandoned == 1 && read.timeouts == 0, "the reader got the beeper from the dead");
  ExpectValue(R"(SOFTWARE\Dravonel\PAL)", "VibratePresetIndex", "REG_DWORD    0x3");
  ExpectValue(R"(SOFTWARE\Dravonel\PAL)", "VibratePresetIndey", "REG_DWORD    0x7");
  ExpectValue(R"(Hardware\Devicemap\Keybd\Layout\Numeric\EVENTS\DELTA)", "Event5", "DeltaLeftScan");
  ExpectValue(R"(Drivers\Dravonel\EA1)", "AimDuration", "REG_DWORD    0x1f4");
  ExpectValue(R"(Software\Dravonel\DCEDriver)", "ReadRetries", "REG_DWORD    0xffffffff");
  ExpectValue(R"(Drivers\Dravonel\EA2)", "Exposure", "REG_BINARY    0A01FF");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1) return Play(argv[1]);
  RunTogether();
  return faults == 0 ? 0 : 1;
}
