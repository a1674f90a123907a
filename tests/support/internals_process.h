// A process whose copy of the library gives its internals out.
#ifndef TESTS_SUPPORT_INTERNALS_PROCESS_H_
#define TESTS_SUPPORT_INTERNALS_PROCESS_H_

#include <string>

#include "platform/sim/device.h"
#include "tests/support/internals.h"

// They are called within Run or Start.
class InternalsProcess : public sim::Process {
 public:
  explicit InternalsProcess(sim::Device& device, const std::string& name = "caller.exe");
  const Internals* operator->() const { return internals_; }

 private:
  const Internals* internals_;
};

#endif  // TESTS_SUPPORT_INTERNALS_PROCESS_H_
