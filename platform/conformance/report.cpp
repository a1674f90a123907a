#include "platform/conformance/report.h"

#include "platform/conformance/queries.h"
#include "platform/conformance/rows.h"

namespace conformance {
namespace {

// What cannot be written is lost: there is nobody to tell.
class Report {
 public:
  Report()
      : file_(CreateFileW(kReportPath, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr)) {}
  ~Report() {
    if (is_open()) CloseHandle(file_);
  }
  Report(const Report&) = delete;
  Report& operator=(const Report&) = delete;

  [[nodiscard]] bool is_open() const { return file_ != INVALID_HANDLE_VALUE; }
  void Write(const char* text) {
    DWORD written = 0;
    WriteFile(file_, text, static_cast<DWORD>(strlen(text)), &written, nullptr);
  }
  void WriteLine(const char* text) {
    Write(text);
    Write("\r\n");
  }
  // `ask(answer)` asks. The question stands in the file before it is put.
  template <typename Ask>
  void WriteAnswer(const char* question, const char* mark, Ask ask) {
    Write(question);
    Write(kEquals);
    Answer answer;
    ask(answer);
    Write(answer.text());
    WriteLine(mark);
  }

 private:
  HANDLE file_;
};

void AskPlatform(Report& report) {
  ForEachRow([&report](const Row& row) {
    report.WriteAnswer(row.name, row.basis == Basis::kChosen ? kChosenMark : "", row.ask);
  });
}

void AskQuery(Answer& answer, const Query& query, HMODULE library) {
  const FARPROC entry = GetProcAddressW(library, query.wide_name);
  if (entry == nullptr) {
    answer.Add("not exported");
  } else {
    query.ask(answer, entry);
  }
}

void AskLibrary(Report& report) {
  HMODULE library = nullptr;
  report.WriteAnswer("library: load DVLORQPAL.dll", "", [&library](Answer& answer) {
    library = LoadLibraryW(TEXT("DVLORQPAL.dll"));
    answer.Add("error %d", library != nullptr ? ERROR_SUCCESS : GetLastError());
  });
  if (library == nullptr) return;
  for (const Query& query : Queries()) {
    report.WriteAnswer(query.name, "",
                       [&query, library](Answer& answer) { AskQuery(answer, query, library); });
  }
  FreeLibrary(library);
}

}  // namespace

bool WriteReport() {
  Report report;
  if (!report.is_open()) return false;
  report.WriteLine(kHeading);
  AskPlatform(report);
  AskLibrary(report);
  report.WriteLine(kEnd);
  return true;
}

}  // namespace conformance
