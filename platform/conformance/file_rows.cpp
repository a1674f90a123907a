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

void CreateInMissingFolder(Answer& answer) {
  SetLastError(0);
  const HANDLE file =
      CreateFileW(TEXT("\\none such\\file"), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  answer.Add("%d error %d", file != INVALID_HANDLE_VALUE, GetLastError());
}

void GetAttributes(Answer& answer) {
  SetLastError(0);
  answer.Add("%x", GetFileAttributesW(TEXT("\\none such")));
  answer.Add("error %d", GetLastError());
  answer.Add("folder %x", GetFileAttributesW(TEXT("\\Windows")) & FILE_ATTRIBUTE_DIRECTORY);
}

constexpr Row kFileRows[] = {
    {"file: open a missing one", Basis::kDocumented,
     [](Answer& answer) { AddOpen(answer, TEXT("\\none such")); }},
    {"file: open one in a missing folder", Basis::kChosen,
     [](Answer& answer) { AddOpen(answer, TEXT("\\none such\\file")); }},
    {"file: create one in a missing folder", Basis::kDocumented, &CreateInMissingFolder},
    {"file: attributes", Basis::kDocumented, &GetAttributes},
    {"driver: open a missing one", Basis::kChosen,
     [](Answer& answer) { AddOpen(answer, TEXT("ZZZ9:")); }},
};

}  // namespace

std::span<const Row> FileRows() {
  return kFileRows;
}

}  // namespace conformance
