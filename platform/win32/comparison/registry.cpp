// The registry of the simulated device beside that of Windows. The tests' coredll.dll has these
// functions: each makes the library's call on the simulated device and then on Windows, and says
// where the two answer otherwise.
//
// Windows gets what the call is about as the simulated device has it at that moment, below a key of
// the test program that is gone with it. Without PAL_COMPARE_REGISTRY in the environment the
// simulated device answers alone.
#include <fmt/format.h>
#include <windows.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#undef Yield
#include "platform/sim/kernel/kernel.h"
#include "platform/sim/text.h"

extern "C" {
LONG SimulatedRegOpenKeyExW(HKEY key, LPCWSTR path, DWORD options, REGSAM access, PHKEY result);
LONG SimulatedRegCreateKeyExW(HKEY key, LPCWSTR path, DWORD reserved, LPWSTR key_class,
                              DWORD options, REGSAM access, LPSECURITY_ATTRIBUTES security,
                              PHKEY result, LPDWORD disposition);
LONG SimulatedRegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                               LPDWORD bytes);
LONG SimulatedRegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                             DWORD bytes);
LONG SimulatedRegDeleteValueW(HKEY key, LPCWSTR name);
LONG SimulatedRegDeleteKeyW(HKEY key, LPCWSTR path);
LONG SimulatedRegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, LPDWORD units, LPDWORD reserved,
                            LPWSTR key_class, LPDWORD class_units, FILETIME* written);
LONG SimulatedRegEnumValueW(HKEY key, DWORD index, LPWSTR name, LPDWORD units, LPDWORD reserved,
                            LPDWORD type, LPBYTE data, LPDWORD bytes);
LONG SimulatedRegFlushKey(HKEY key);
}

namespace win32 {
namespace {

// What Windows is known to answer otherwise.
struct Difference {
  std::string_view call;
  LONG simulated;
  LONG windows;
  std::string_view why;
};
constexpr Difference kDifferences[] = {
    {"RegDeleteKeyW", ERROR_SUCCESS, ERROR_ACCESS_DENIED,
     "Windows keeps a key that has others below it; the platform deletes them too"},
    {"RegDeleteKeyW", ERROR_ACCESS_DENIED, ERROR_SUCCESS,
     "Windows deletes a key that is open; the simulated device refuses it, to see it misused"},
};

const wchar_t* Wide(const std::u16string& text) {
  return reinterpret_cast<const wchar_t*>(text.c_str());
}

std::u16string Text(LPCWSTR text) {
  return text == nullptr ? std::u16string() : reinterpret_cast<const char16_t*>(text);
}

// The key below which Windows keeps what is compared.
class Root {
 public:
  Root() : path_(L"Software\\DVLORQPAL comparison " + std::to_wstring(GetCurrentProcessId())) {
    RegCreateKeyExW(HKEY_CURRENT_USER, path_.c_str(), 0, nullptr, REG_OPTION_VOLATILE,
                    KEY_ALL_ACCESS, nullptr, &key_, nullptr);
  }
  ~Root() {
    RegCloseKey(key_);
    RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
    fmt::print(stderr, "registry comparison: {} calls, {} answered otherwise\n", calls, otherwise);
  }
  Root(const Root&) = delete;
  Root& operator=(const Root&) = delete;

  [[nodiscard]] HKEY Open(const std::u16string& path, REGSAM access) const {
    HKEY key = nullptr;
    return RegOpenKeyExW(key_, Wide(path), 0, access, &key) == ERROR_SUCCESS ? key : nullptr;
  }
  [[nodiscard]] HKEY Create(const std::u16string& path) const {
    HKEY key = nullptr;
    RegCreateKeyExW(key_, Wide(path), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr,
                    &key, nullptr);
    return key;
  }
  void Delete(const std::u16string& path) const { RegDeleteTreeW(key_, Wide(path)); }

  unsigned calls = 0;
  unsigned otherwise = 0;

 private:
  std::wstring path_;
  HKEY key_ = nullptr;
};

Root& TheRoot() {
  static Root root;
  return root;
}

bool IsAsked() {
  static const bool is_asked = GetEnvironmentVariableW(L"PAL_COMPARE_REGISTRY", nullptr, 0) != 0;
  return is_asked && sim::CurrentThread() != nullptr;
}

// A text is stored as it is given. Windows looks behind it for a terminator: here there is none.
void Put(HKEY key, const sim::RegistryValue& value) {
  std::vector<std::uint8_t> data = value.data;
  data.insert(data.end(), 4, 0xFF);
  RegSetValueExW(key, Wide(value.name), 0, value.type, data.data(),
                 static_cast<DWORD>(value.data.size()));
}

// One call on both registries.
class Comparison {
 public:
  // `name`: of a key or value below the handle's key, or nullptr.
  Comparison(const char* call, HKEY handle, LPCWSTR name = nullptr)
      : call_(call), kernel_(sim::CurrentThread()->process.kernel) {
    const sim::Scheduler::Lock lock(kernel_.mutex);
    const auto number = reinterpret_cast<std::uintptr_t>(handle);
    constexpr std::uintptr_t kFirstRoot = 0x80000000;
    if (number - kFirstRoot < 4) {
      key_ = kernel_.registry.root(static_cast<unsigned>(number - kFirstRoot));
    } else {
      const auto found = kernel_.handles.Find(number, sim::CurrentThread()->process.id);
      if (found.object == nullptr || found.object->kind() != sim::ObjectKind::kKey) return;
      const auto& opened = static_cast<const sim::KeyObject&>(*found.object);
      key_ = opened.key;
      access_ = opened.access;
    }
    if (key_->deleted()) key_ = nullptr;
    if (key_ == nullptr) return;
    path_ = key_->Path();
    subject_ = path_ + u'\\' + Text(name);
    RegCloseKey(TheRoot().Create(path_));
  }

  // Gives Windows the key at a path below this one, or takes it away with what is missing above it.
  void MirrorKey(LPCWSTR below) {
    const std::u16string path = Text(below);
    std::size_t end = 0;
    while (key_ != nullptr && end < path.size()) {
      end = std::min(path.find(u'\\', end + 1), path.size());
      const std::u16string part = path_ + u'\\' + path.substr(0, end);
      if (sim::Registry::Find(key_, path.substr(0, end)) == nullptr) return TheRoot().Delete(part);
      RegCloseKey(TheRoot().Create(part));
    }
  }
  void MirrorValue(LPCWSTR name) {
    if (key_ == nullptr) return;
    const HKEY key = TheRoot().Create(path_);
    const sim::RegistryValue* value = key_->FindValue(Text(name));
    if (value != nullptr) {
      Put(key, *value);
    } else {
      RegDeleteValueW(key, name);
    }
    RegCloseKey(key);
  }
  // The key with its values and the names of the keys below, and nothing else.
  void MirrorContent(const std::u16string& path, const sim::RegistryKey& from) {
    TheRoot().Delete(path);
    const HKEY key = TheRoot().Create(path);
    for (const sim::RegistryValue& value : from.values()) Put(key, value);
    RegCloseKey(key);
    for (const auto& below : from.keys()) {
      RegCloseKey(TheRoot().Create(path + u'\\' + below->name()));
    }
  }
  void MirrorContent() {
    if (key_ != nullptr) MirrorContent(path_, *key_);
  }
  void MirrorContentOf(LPCWSTR below) {
    MirrorKey(below);
    const auto key = key_ == nullptr ? nullptr : sim::Registry::Find(key_, Text(below));
    if (key != nullptr) MirrorContent(key->Path(), *key);
  }

  // Makes the call on the simulated device. Its answer is compared unless a test had it made up, or
  // another thread was active meanwhile.
  template <typename Make>
  LONG Simulate(Make make) {
    const auto calls = kernel_.faults.calls();
    const auto faults = kernel_.faults.faulted().size();
    result_ = make();
    is_comparable_ = key_ != nullptr && !kernel_.on_answer && kernel_.faults.calls() == calls + 1 &&
                     kernel_.faults.faulted().size() == faults;
    return result_;
  }
  // Makes the call on Windows with a handle that has the same access, where it can be compared.
  template <typename Make>
  LONG Compare(Make make) {
    if (!is_comparable_) return result_;
    ++TheRoot().calls;
    const HKEY key = TheRoot().Open(path_, access_);
    const LONG windows = make(key);
    RegCloseKey(key);
    const bool is_known = std::ranges::any_of(kDifferences, [&](const Difference& known) {
      return known.call == call_ && known.simulated == result_ && known.windows == windows;
    });
    if (!is_known) Expect("answer", result_, windows);
    return windows;
  }
  template <typename Number>
  void Expect(const char* what, Number simulated, Number windows) {
    if (simulated != windows)
      Tell(fmt::format("{}: {:#x}, Windows: {:#x}", what, simulated, windows));
  }
  void Tell(const std::string& what) {
    ++TheRoot().otherwise;
    fmt::print(stderr, "registry comparison: {} at {}: {}\n", call_, sim::ToUtf8(subject_), what);
  }
  [[nodiscard]] const std::u16string& path() const { return path_; }

 private:
  const char* call_;
  sim::Kernel& kernel_;
  std::shared_ptr<sim::RegistryKey> key_;
  REGSAM access_ = KEY_ALL_ACCESS;
  std::u16string path_;
  std::u16string subject_;
  LONG result_ = 0;
  bool is_comparable_ = false;
};

// The value as Windows has it, and what the simulated device gave of it.
void CompareData(Comparison& comparison, HKEY key, LPCWSTR name, DWORD type, const BYTE* data,
                 DWORD bytes) {
  DWORD kept_type = 0;
  DWORD kept_bytes = 0;
  RegQueryValueExW(key, name, nullptr, &kept_type, nullptr, &kept_bytes);
  std::vector<BYTE> kept(kept_bytes + 1);
  RegQueryValueExW(key, name, nullptr, &kept_type, kept.data(), &kept_bytes);
  comparison.Expect("type", type, kept_type);
  comparison.Expect("size", bytes, kept_bytes);
  if (bytes == kept_bytes && !std::equal(data, data + bytes, kept.data()))
    comparison.Tell("other data");
}

}  // namespace
}  // namespace win32

using win32::Comparison;

extern "C" {

LONG CompareRegOpenKeyExW(HKEY key, LPCWSTR path, DWORD options, REGSAM access, PHKEY result) {
  const auto make = [&] { return SimulatedRegOpenKeyExW(key, path, options, access, result); };
  if (!win32::IsAsked()) return make();
  Comparison comparison("RegOpenKeyExW", key, path);
  comparison.MirrorKey(path);
  const LONG answer = comparison.Simulate(make);
  comparison.Compare([&](HKEY windows) {
    HKEY opened = nullptr;
    const LONG error =
        RegOpenKeyExW(windows, path, options, access, result == nullptr ? nullptr : &opened);
    RegCloseKey(opened);
    return error;
  });
  return answer;
}

LONG CompareRegCreateKeyExW(HKEY key, LPCWSTR path, DWORD reserved, LPWSTR key_class, DWORD options,
                            REGSAM access, LPSECURITY_ATTRIBUTES security, PHKEY result,
                            LPDWORD disposition) {
  DWORD created = 0;
  const auto make = [&] {
    return SimulatedRegCreateKeyExW(key, path, reserved, key_class, options, access, security,
                                    result, &created);
  };
  const auto give = [&](LONG answer) {
    if (answer == ERROR_SUCCESS && disposition != nullptr) *disposition = created;
    return answer;
  };
  if (!win32::IsAsked()) return give(make());
  Comparison comparison("RegCreateKeyExW", key, path);
  comparison.MirrorKey(path);
  const LONG answer = comparison.Simulate(make);
  comparison.Compare([&](HKEY windows) {
    HKEY opened = nullptr;
    DWORD windows_created = 0;
    const LONG error =
        RegCreateKeyExW(windows, path, reserved, nullptr, REG_OPTION_VOLATILE, access, nullptr,
                        result == nullptr ? nullptr : &opened, &windows_created);
    // Wine calls the key of an empty path new.
    const bool is_named = path != nullptr && path[0] != 0;
    if (answer == ERROR_SUCCESS && is_named) {
      comparison.Expect("disposition", created, windows_created);
    }
    RegCloseKey(opened);
    return error;
  });
  return give(answer);
}

LONG CompareRegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                             LPDWORD bytes) {
  const auto make = [&] {
    return SimulatedRegQueryValueExW(key, name, reserved, type, data, bytes);
  };
  if (!win32::IsAsked()) return make();
  Comparison comparison("RegQueryValueExW", key, name);
  comparison.MirrorValue(name);
  DWORD room = bytes == nullptr ? 0 : *bytes;
  const LONG answer = comparison.Simulate(make);
  comparison.Compare([&](HKEY windows) {
    std::vector<BYTE> copy(room + 1);
    DWORD windows_type = 0;
    const LONG error = RegQueryValueExW(
        windows, name, reserved, type == nullptr ? nullptr : &windows_type,
        data == nullptr ? nullptr : copy.data(), bytes == nullptr ? nullptr : &room);
    if (answer != error || (answer != ERROR_SUCCESS && answer != ERROR_MORE_DATA)) return error;
    if (type != nullptr) comparison.Expect("type", *type, windows_type);
    if (bytes != nullptr) comparison.Expect("size", *bytes, room);
    const bool has_data = answer == ERROR_SUCCESS && data != nullptr;
    if (has_data && !std::equal(data, data + std::min(*bytes, room), copy.data())) {
      comparison.Tell("other data");
    }
    return error;
  });
  return answer;
}

LONG CompareRegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                           DWORD bytes) {
  const auto make = [&] { return SimulatedRegSetValueExW(key, name, reserved, type, data, bytes); };
  if (!win32::IsAsked()) return make();
  Comparison comparison("RegSetValueExW", key, name);
  const LONG answer = comparison.Simulate(make);
  comparison.Compare([&](HKEY windows) {
    std::vector<BYTE> copy;
    if (data != nullptr) copy.assign(data, data + bytes);
    copy.insert(copy.end(), 4, 0xFF);  // no terminator behind the text
    const LONG error = RegSetValueExW(windows, name, reserved, type,
                                      data == nullptr ? nullptr : copy.data(), bytes);
    if (error == ERROR_SUCCESS && answer == ERROR_SUCCESS) {
      const HKEY stored = win32::TheRoot().Open(comparison.path(), KEY_READ);
      win32::CompareData(comparison, stored, name, type, data, bytes);
      RegCloseKey(stored);
    }
    return error;
  });
  return answer;
}

LONG CompareRegDeleteValueW(HKEY key, LPCWSTR name) {
  const auto make = [&] { return SimulatedRegDeleteValueW(key, name); };
  if (!win32::IsAsked()) return make();
  Comparison comparison("RegDeleteValueW", key, name);
  comparison.MirrorValue(name);
  const LONG answer = comparison.Simulate(make);
  comparison.Compare([&](HKEY windows) { return RegDeleteValueW(windows, name); });
  return answer;
}

LONG CompareRegDeleteKeyW(HKEY key, LPCWSTR path) {
  const auto make = [&] { return SimulatedRegDeleteKeyW(key, path); };
  if (!win32::IsAsked()) return make();
  Comparison comparison("RegDeleteKeyW", key, path);
  comparison.MirrorContentOf(path);
  const LONG answer = comparison.Simulate(make);
  comparison.Compare([&](HKEY windows) { return RegDeleteKeyW(windows, path); });
  return answer;
}

// Windows sorts names. So the answers are compared, and that Windows has what was enumerated.
LONG CompareRegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, LPDWORD units, LPDWORD reserved,
                          LPWSTR key_class, LPDWORD class_units, FILETIME* written) {
  const auto make = [&] {
    return SimulatedRegEnumKeyExW(key, index, name, units, reserved, key_class, class_units,
                                  written);
  };
  if (!win32::IsAsked()) return make();
  Comparison comparison("RegEnumKeyExW", key);
  comparison.MirrorContent();
  const LONG answer = comparison.Simulate(make);
  if (answer == ERROR_MORE_DATA) return answer;  // another name may be shorter
  comparison.Compare([&](HKEY windows) {
    std::array<wchar_t, 16384> found;
    DWORD room = found.size();
    if (answer == ERROR_SUCCESS) {
      HKEY below = nullptr;
      if (RegOpenKeyExW(windows, name, 0, KEY_READ, &below) != ERROR_SUCCESS)
        comparison.Tell("no such key");
      RegCloseKey(below);
    }
    return RegEnumKeyExW(windows, index, found.data(), &room, nullptr, nullptr, nullptr, nullptr);
  });
  return answer;
}

LONG CompareRegEnumValueW(HKEY key, DWORD index, LPWSTR name, LPDWORD units, LPDWORD reserved,
                          LPDWORD type, LPBYTE data, LPDWORD bytes) {
  const auto make = [&] {
    return SimulatedRegEnumValueW(key, index, name, units, reserved, type, data, bytes);
  };
  if (!win32::IsAsked()) return make();
  Comparison comparison("RegEnumValueW", key);
  comparison.MirrorContent();
  const LONG answer = comparison.Simulate(make);
  if (answer == ERROR_MORE_DATA) return answer;  // another value may be smaller
  comparison.Compare([&](HKEY windows) {
    std::array<wchar_t, 16384> found;
    DWORD room = found.size();
    if (answer == ERROR_SUCCESS && type != nullptr && data != nullptr) {
      win32::CompareData(comparison, windows, name, *type, data, *bytes);
    }
    return RegEnumValueW(windows, index, found.data(), &room, nullptr, nullptr, nullptr, nullptr);
  });
  return answer;
}

LONG CompareRegFlushKey(HKEY key) {
  const auto make = [&] { return SimulatedRegFlushKey(key); };
  if (!win32::IsAsked()) return make();
  Comparison comparison("RegFlushKey", key);
  const LONG answer = comparison.Simulate(make);
  comparison.Compare([](HKEY windows) { return RegFlushKey(windows); });
  return answer;
}

}  // extern "C"
