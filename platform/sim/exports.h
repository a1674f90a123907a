// The library's exports as a typed table, made from exports.def and the public headers.
#ifndef PLATFORM_SIM_EXPORTS_H_
#define PLATFORM_SIM_EXPORTS_H_

#include <functional>
#include <stdexcept>
#include <string>

#include "include/pal.h"

namespace sim {

class ProcessState;

// Runs a body as the calling thread of the process. For the driver that is the main thread.
void RunInProcess(ProcessState& process, const std::function<void()>& body);

// The same for a call into the library. Until it returns, the thread counts as running in it.
void RunInLibrary(ProcessState& process, const std::function<void()>& body);

template <class Signature>
class Export;

// One exported function of one process.
template <class Result, class... Arguments>
class Export<Result(Arguments...)> {
 public:
  Export() = default;
  Export(ProcessState& process, void* address, const char* name)
      : process_(&process),
        function_(reinterpret_cast<Result (*)(Arguments...)>(address)),
        name_(name) {}

  Result operator()(Arguments... arguments) const {
    if (function_ == nullptr) throw std::logic_error(std::string(name_) + " is not exported");
    Result result{};
    RunInLibrary(*process_, [&] { result = function_(arguments...); });
    return result;
  }
  // The address alone, for measurements without the entry into the process.
  [[nodiscard]] auto address() const { return function_; }

 private:
  ProcessState* process_ = nullptr;
  Result (*function_)(Arguments...) = nullptr;
  const char* name_ = "an export of no process";
};

struct Exports {
#define PAL_EXPORT(name) Export<decltype(::name)> name;
#include "exports.inc"
#undef PAL_EXPORT
};

}  // namespace sim

#endif  // PLATFORM_SIM_EXPORTS_H_
