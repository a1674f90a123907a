#include "platform/conformance/report.h"
#include "platform/conformance/rows.h"

namespace conformance {
namespace {

// Opens for reading and closes again; adds whether that went well, and else the error.
void AddOpen(Answer& answer, const WCHAR* path) {
  SetLastError(0);
  const HANDLE file =
      CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    answer.Add("error %d", GetLastError());
    return;
  }
  CloseHandle(file);
  answer.Add("opened");
}

// The platform has a call for it, which no program here needs otherwise.
void DeleteAgain(const WCHAR* path) {
  using AnyFunction = void (*)();  // the one that compilers let a function pointer pass through
  const HMODULE coredll = LoadLibraryW(TEXT("coredll.dll"));
  const auto entry = reinterpret_cast<AnyFunction>(GetProcAddressW(coredll, TEXT("DeleteFileW")));
  if (entry != nullptr) reinterpret_cast<BOOL(WINAPI*)(LPCWSTR)>(entry)(path);
  FreeLibrary(coredll);
}

void CreateInMissingFolder(Answer& answer) {
  constexpr const WCHAR* kPath = TEXT("\\none such\\file");
  SetLastError(0);
  const HANDLE file = CreateFileW(kPath, GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
  answer.Add("%d error %d", file != INVALID_HANDLE_VALUE, GetLastError());
  if (file == INVALID_HANDLE_VALUE) return;
  CloseHandle(file);
  DeleteAgain(kPath);
}

void GetAttributes(Answer& answer) {
  SetLastError(0);
  answer.Add("%x", GetFileAttributesW(TEXT("\\none such")));
  answer.Add("error %d", GetLastError());
  for (const WCHAR* path : {TEXT("\\Windows"), TEXT("\\wINDOWS")}) {
    answer.Add("folder %x", GetFileAttributesW(path) & FILE_ATTRIBUTE_DIRECTORY);
  }
}

constexpr Row kFileRows[] = {
    {"file: open a missing one", Basis::kDocumented,
     [](Answer& answer) { AddOpen(answer, TEXT("\\none such")); }},
    {"file: open one in a missing folder", Basis::kChosen,
     [](Answer& answer) { AddOpen(answer, TEXT("\\none such\\file")); }},
    {"file: create one in a missing folder", Basis::kDocumented, &CreateInMissingFolder},
    {"file: open this report, which is open without sharing", Basis::kDocumented,
     [](Answer& answer) { AddOpen(answer, kReportPath); }},
    {"file: attributes", Basis::kDocumented, &GetAttributes},
    {"driver: open a missing one", Basis::kChosen,
     [](Answer& answer) { AddOpen(answer, TEXT("ZZZ9:")); }},
};

}  // namespace

std::span<const Row> FileRows() {
  return kFileRows;
}

}  // namespace conformance
