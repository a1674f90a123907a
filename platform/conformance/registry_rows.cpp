#include "platform/conformance/rows.h"

namespace conformance {
namespace {

constexpr const WCHAR* kPath = TEXT("DVLORQPALcheck");

HKEY Open(HKEY parent, const WCHAR* path) {
  HKEY key = nullptr;
  return RegOpenKeyExW(parent, path, 0, KEY_ALL_ACCESS, &key) == ERROR_SUCCESS ? key : nullptr;
}

HKEY Create(HKEY parent, const WCHAR* path) {
  HKEY key = nullptr;
  DWORD disposition = 0;
  RegCreateKeyExW(parent, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, &disposition);
  return key;
}

// With its subkeys one by one: a platform may delete no key that has some.
void RemoveTestKey() {
  for (const WCHAR* path : {TEXT("DVLORQPALcheck\\zebra\\deep"), TEXT("DVLORQPALcheck\\zebra"),
                            TEXT("DVLORQPALcheck\\ant"), kPath}) {
    RegDeleteKeyW(HKEY_CURRENT_USER, path);
  }
}

// A key of the row's own under HKEY_CURRENT_USER, gone with the row. Another one that a program has
// left there when it was ended goes first.
class TestKey {
 public:
  TestKey() {
    RemoveTestKey();
    key_ = Create(HKEY_CURRENT_USER, kPath);
  }
  ~TestKey() {
    RegCloseKey(key_);
    RemoveTestKey();
  }
  TestKey(const TestKey&) = delete;
  TestKey& operator=(const TestKey&) = delete;

  [[nodiscard]] HKEY get() const { return key_; }
  void AddSubkeys() const {
    for (const WCHAR* path : {TEXT("zebra"), TEXT("ant"), TEXT("zebra\\deep")}) {
      RegCloseKey(Create(key_, path));
    }
  }
  LONG Set(const WCHAR* name, DWORD type, const void* data, DWORD bytes) const {
    return RegSetValueExW(key_, name, 0, type, static_cast<const BYTE*>(data), bytes);
  }
  void SetText() const { Set(TEXT("zText"), REG_SZ, TEXT("abc"), 4 * sizeof(WCHAR)); }
  void SetNumber() const {
    constexpr DWORD kSeven = 7;
    Set(TEXT("aNumber"), REG_DWORD, &kSeven, sizeof(kSeven));
  }

 private:
  HKEY key_ = nullptr;
};

void AddOpen(Answer& answer, const WCHAR* path) {
  const TestKey own;
  own.AddSubkeys();
  HKEY key = nullptr;
  const LONG error = RegOpenKeyExW(HKEY_CURRENT_USER, path, 0, KEY_QUERY_VALUE, &key);
  if (error == ERROR_SUCCESS) RegCloseKey(key);
  answer.Add("%d", error);
}

void AddQuery(Answer& answer, const WCHAR* name, DWORD room) {
  const TestKey key;
  key.SetText();
  BYTE data[64] = {};
  DWORD type = 0;
  DWORD bytes = room;
  const LONG error =
      RegQueryValueExW(key.get(), name, nullptr, &type, room == 0 ? nullptr : data, &bytes);
  answer.Add("%d bytes %d", error, bytes);
}

void CreateTwice(Answer& answer) {
  const TestKey own;
  HKEY key = nullptr;
  DWORD disposition = 0;
  const LONG error = RegCreateKeyExW(HKEY_CURRENT_USER, TEXT("dvlorqpalCHECK"), 0, nullptr, 0,
                                     KEY_ALL_ACCESS, nullptr, &key, &disposition);
  if (error == ERROR_SUCCESS) RegCloseKey(key);
  answer.Add("%d disposition %d", error, disposition);
}

void SetLastErrorOfOpen(Answer& answer) {
  SetLastError(0);
  HKEY key = nullptr;
  const LONG error = RegOpenKeyExW(HKEY_CURRENT_USER, TEXT("none such"), 0, 0, &key);
  answer.Add("%d last error %d", error, GetLastError());
}

void SetEmpty(Answer& answer) {
  const TestKey key;
  answer.Add("%d", key.Set(TEXT("empty"), REG_BINARY, nullptr, 0));
}

void QueryWithoutCount(Answer& answer) {
  const TestKey key;
  key.SetText();
  BYTE data[64];
  answer.Add("%d", RegQueryValueExW(key.get(), TEXT("zText"), nullptr, nullptr, data, nullptr));
}

void QueryUnterminated(Answer& answer) {
  const TestKey key;
  key.Set(TEXT("zText"), REG_SZ, TEXT("abc"), 3 * sizeof(WCHAR));
  DWORD bytes = 0;
  const LONG error = RegQueryValueExW(key.get(), TEXT("zText"), nullptr, nullptr, nullptr, &bytes);
  answer.Add("%d bytes %d", error, bytes);
}

void EnumerateValues(Answer& answer) {
  const TestKey key;
  key.SetText();
  key.SetNumber();
  for (DWORD index = 0; index < 3; ++index) {
    WCHAR name[64] = {};
    DWORD units = 64;
    const LONG error =
        RegEnumValueW(key.get(), index, name, &units, nullptr, nullptr, nullptr, nullptr);
    answer.Add("%d", error);
    if (error == ERROR_SUCCESS) answer.Add("%ls units %d", name, units);
  }
}

void EnumerateKeys(Answer& answer) {
  const TestKey key;
  key.AddSubkeys();
  for (DWORD index = 0; index < 3; ++index) {
    WCHAR name[64] = {};
    DWORD units = 64;
    const LONG error =
        RegEnumKeyExW(key.get(), index, name, &units, nullptr, nullptr, nullptr, nullptr);
    answer.Add("%d", error);
    if (error == ERROR_SUCCESS) answer.Add("%ls", name);
  }
}

void EnumerateShort(Answer& answer) {
  const TestKey key;
  key.SetText();
  key.AddSubkeys();
  WCHAR name[64] = {};
  DWORD units = 5;
  answer.Add("value %d",
             RegEnumValueW(key.get(), 0, name, &units, nullptr, nullptr, nullptr, nullptr));
  units = 3;
  answer.Add("key %d",
             RegEnumKeyExW(key.get(), 0, name, &units, nullptr, nullptr, nullptr, nullptr));
}

void DeleteTree(Answer& answer) {
  const TestKey key;
  key.AddSubkeys();
  answer.Add("%d", RegDeleteKeyW(key.get(), TEXT("zebra")));
  const HKEY left = Open(key.get(), TEXT("zebra"));
  answer.Add("left %d", left != nullptr);
  if (left != nullptr) RegCloseKey(left);
}

void DeleteOpenKey(Answer& answer) {
  const TestKey key;
  key.AddSubkeys();
  const HKEY open = Open(key.get(), TEXT("ant"));
  answer.Add("%d", RegDeleteKeyW(key.get(), TEXT("ant")));
  RegCloseKey(open);
}

void WriteThroughQueryAccess(Answer& answer) {
  const TestKey key;
  HKEY query_only = nullptr;
  RegOpenKeyExW(HKEY_CURRENT_USER, kPath, 0, KEY_QUERY_VALUE, &query_only);
  constexpr DWORD kOne = 1;
  answer.Add("%d", RegSetValueExW(query_only, TEXT("x"), 0, REG_DWORD,
                                  reinterpret_cast<const BYTE*>(&kOne), sizeof(kOne)));
  RegCloseKey(query_only);
}

void DeleteValueTwice(Answer& answer) {
  const TestKey key;
  key.SetText();
  answer.Add("%d", RegDeleteValueW(key.get(), TEXT("ztext")));
  answer.Add("%d", RegDeleteValueW(key.get(), TEXT("ztext")));
}

void Flush(Answer& answer) {
  const TestKey key;
  answer.Add("%d", RegFlushKey(key.get()));
}

void AddCreate(Answer& answer, HKEY parent, const WCHAR* path) {
  HKEY key = nullptr;
  const LONG error =
      RegCreateKeyExW(parent, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
  if (error == ERROR_SUCCESS) RegCloseKey(key);
  answer.Add("%d", error);
}

void AddNameLength(Answer& answer, size_t units) {
  const TestKey key;
  WCHAR name[300] = {};
  for (size_t unit = 0; unit < units; ++unit) name[unit] = TEXT('k');
  AddCreate(answer, key.get(), name);
  RegDeleteKeyW(key.get(), name);
}

// A path of `levels` keys below the row's own.
void AddDepth(Answer& answer, size_t levels) {
  const TestKey key;
  WCHAR path[64] = {};
  for (size_t level = 0; level < levels; ++level) {
    path[2 * level] = TEXT('a');
    path[2 * level + 1] = level + 1 < levels ? TEXT('\\') : WCHAR{};
  }
  AddCreate(answer, key.get(), path);
  for (size_t end = 2 * levels; end > 0; end -= 2) {  // from the deepest to the first
    path[end - 1] = WCHAR{};
    RegDeleteKeyW(key.get(), path);
  }
}

constexpr Row kRegistryRows[] = {
    {"registry: create a key again, in other case", Basis::kDocumented, &CreateTwice},
    {"registry: open a path with a leading backslash", Basis::kChosen,
     [](Answer& answer) { AddOpen(answer, TEXT("\\DVLORQPALcheck")); }},
    {"registry: open a path with a doubled backslash", Basis::kChosen,
     [](Answer& answer) { AddOpen(answer, TEXT("DVLORQPALcheck\\\\ant")); }},
    {"registry: open a missing key", Basis::kDocumented,
     [](Answer& answer) { AddOpen(answer, TEXT("DVLORQPALcheck\\none such")); }},
    {"registry: open without a path", Basis::kChosen,
     [](Answer& answer) { AddOpen(answer, nullptr); }},
    {"registry: the last error after a failed open", Basis::kChosen, &SetLastErrorOfOpen},
    {"registry: set null data of 0 bytes", Basis::kChosen, &SetEmpty},
    {"registry: query in other case", Basis::kDocumented,
     [](Answer& answer) { AddQuery(answer, TEXT("ZTEXT"), 64); }},
    {"registry: query into 6 of 8 bytes", Basis::kDocumented,
     [](Answer& answer) { AddQuery(answer, TEXT("zText"), 6); }},
    {"registry: query the size alone", Basis::kDocumented,
     [](Answer& answer) { AddQuery(answer, TEXT("zText"), 0); }},
    {"registry: query a missing value", Basis::kDocumented,
     [](Answer& answer) { AddQuery(answer, TEXT("none"), 64); }},
    {"registry: query the unnamed value", Basis::kDocumented,
     [](Answer& answer) { AddQuery(answer, nullptr, 64); }},
    {"registry: query without a size", Basis::kChosen, &QueryWithoutCount},
    {"registry: size of a text set without terminator", Basis::kChosen, &QueryUnterminated},
    {"registry: order of values", Basis::kChosen, &EnumerateValues},
    {"registry: order of keys", Basis::kChosen, &EnumerateKeys},
    {"registry: enumerate names without room for their ends", Basis::kDocumented, &EnumerateShort},
    {"registry: delete a key with subkeys", Basis::kDocumented, &DeleteTree},
    {"registry: delete a key that is open", Basis::kChosen, &DeleteOpenKey},
    {"registry: write through query access", Basis::kDocumented, &WriteThroughQueryAccess},
    {"registry: delete a value twice", Basis::kDocumented, &DeleteValueTwice},
    {"registry: flush", Basis::kDocumented, &Flush},
    {"registry: 16 levels", Basis::kDocumented, [](Answer& answer) { AddDepth(answer, 15); }},
    {"registry: 17 levels", Basis::kChosen, [](Answer& answer) { AddDepth(answer, 16); }},
    {"registry: a key's name of 255 letters", Basis::kDocumented,
     [](Answer& answer) { AddNameLength(answer, 255); }},
    {"registry: a key's name of 256 letters", Basis::kChosen,
     [](Answer& answer) { AddNameLength(answer, 256); }},
};

}  // namespace

std::span<const Row> RegistryRows() {
  return kRegistryRows;
}

}  // namespace conformance
