// palcheck.exe: started on a handheld, it writes to \palcheck.txt what the platform answers to the
// questions behind the simulated device, and what the library's queries give there.
#include <tuple>
#include <type_traits>

#include "include/pal.h"
#include "platform/conformance/rows.h"
#include "platform/wince.h"

namespace {

using conformance::Answer;

// One line a row. What cannot be written is lost: there is nobody to tell.
class Report {
 public:
  Report()
      : file_(CreateFileW(TEXT("\\palcheck.txt"), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0,
                          nullptr)) {}
  ~Report() { CloseHandle(file_); }
  Report(const Report&) = delete;
  Report& operator=(const Report&) = delete;

  [[nodiscard]] bool is_open() const { return file_ != INVALID_HANDLE_VALUE; }
  void Write(const char* text) {
    DWORD written = 0;
    WriteFile(file_, text, static_cast<DWORD>(strlen(text)), &written, nullptr);
  }
  void WriteRow(const char* name, const char* answer, const char* mark) {
    for (const char* part : {name, " = ", answer, mark, "\r\n"}) Write(part);
  }

 private:
  HANDLE file_;
};

// What an export gets for a parameter, and what it gave there. A number that goes in is 0; where a
// buffer's length goes in, it is that of the room.
template <typename T>
struct Argument {
  static_assert(std::is_integral_v<T>);
  T value = 0;
  void AddTo(Answer& /*answer*/) const {}
};
template <>
struct Argument<const char*> {
  const char* value = "Camera";
  void AddTo(Answer& /*answer*/) const {}
};
template <>
struct Argument<const WCHAR*> {
  const WCHAR* value = TEXT("Camera");
  void AddTo(Answer& /*answer*/) const {}
};
template <typename Number>
struct OutNumber {
  Number number = 64;
  Number* value = &number;
  void AddTo(Answer& answer) const { answer.Add("%d", number); }
};
template <>
struct Argument<DWORD*> : OutNumber<DWORD> {};
template <>
struct Argument<LONG*> : OutNumber<LONG> {};
template <>
struct Argument<char*> {
  char text[64] = {};
  char* value = text;
  void AddTo(Answer& answer) const { answer.Add("'%s'", text); }
};
template <>
struct Argument<WCHAR*> {
  WCHAR text[64] = {};
  WCHAR* value = text;
  void AddTo(Answer& answer) const { answer.Add("'%ls'", text); }
};

template <typename Result, typename... Parameters>
void Call(Answer& answer, Result (*function)(Parameters...)) {
  std::tuple<Argument<Parameters>...> arguments;
  std::apply(
      [&](auto&... argument) {
        answer.Add("0x%x", function(argument.value...));
        (argument.AddTo(answer), ...);
      },
      arguments);
}

using AnyFunction = void (*)();  // the one that compilers let a function pointer pass through

struct Query {
  const char* name;
  const WCHAR* wide_name;
  void (*ask)(Answer& answer, FARPROC entry);
};

constexpr Query kQueries[] = {
#define QUERY(name)                                                                           \
  {#name, TEXT(#name), [](Answer& answer, FARPROC entry) {                                    \
     Call(answer, reinterpret_cast<decltype(&::name)>(reinterpret_cast<AnyFunction>(entry))); \
   }},
#include "platform/device/queries.inc"
#undef QUERY
};

void AskLibrary(Report& report) {
  const HMODULE library = LoadLibraryW(TEXT("DVLORQPAL.dll"));
  if (library == nullptr) {
    Answer answer;
    answer.Add("error %d", GetLastError());
    report.WriteRow("DVLORQPAL.dll cannot be loaded", answer.text(), "");
    return;
  }
  for (const Query& query : kQueries) {
    Answer answer;
    const FARPROC entry = GetProcAddressW(library, query.wide_name);
    if (entry == nullptr) {
      answer.Add("not exported");
    } else {
      query.ask(answer, entry);
    }
    report.WriteRow(query.name, answer.text(), "");
  }
  FreeLibrary(library);
}

}  // namespace

// The program's entry. The platform ends the process when it returns.
extern "C" int WINAPI WinMain(HINSTANCE /*program*/, HINSTANCE /*previous*/, WCHAR* /*command*/,
                              int /*show*/) {
  Report report;
  if (!report.is_open()) return 1;
  report.Write(
      "palcheck: does not restart the device, plays no sound and leaves nothing but this file\r\n");
  conformance::ForEachRow([&report](const conformance::Row& row) {
    Answer answer;
    row.ask(answer);
    report.WriteRow(row.name, answer.text(),
                    row.basis == conformance::Basis::kChosen ? " [chosen]" : "");
  });
  AskLibrary(report);
  report.Write("palcheck: done\r\n");
  return 0;
}
