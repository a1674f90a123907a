// Keeps the thread's last error over calls that may change it.
#ifndef FRAME_LAST_ERROR_H_
#define FRAME_LAST_ERROR_H_

#include "platform/wince.h"

namespace pal {

class PreservedLastError {
 public:
  PreservedLastError() : error_(GetLastError()) {}
  ~PreservedLastError() { SetLastError(error_); }
  PreservedLastError(const PreservedLastError&) = delete;
  PreservedLastError& operator=(const PreservedLastError&) = delete;

 private:
  DWORD error_;
};

}  // namespace pal

#endif  // FRAME_LAST_ERROR_H_
