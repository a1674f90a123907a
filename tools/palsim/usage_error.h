// What the person typed cannot be done.
#ifndef TOOLS_PALSIM_USAGE_ERROR_H_
#define TOOLS_PALSIM_USAGE_ERROR_H_

#include <stdexcept>

namespace palsim {

// Exit status 2.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace palsim

#endif  // TOOLS_PALSIM_USAGE_ERROR_H_
