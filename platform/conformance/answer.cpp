#include <cstdarg>

#include "platform/conformance/rows.h"

namespace conformance {

void Answer::Add(const char* format, ...) {
  const size_t room = sizeof(text_) - 1 - length_;
  if (room < 2) return;
  char* const end = text_ + length_;
  if (length_ != 0) *end = ' ';
  const size_t space = length_ != 0 ? 1 : 0;
  va_list arguments;
  va_start(arguments, format);
  const int written = _vsnprintf(end + space, room - space, format, arguments);
  va_end(arguments);
  length_ = written < 0 ? sizeof(text_) - 1 : length_ + space + static_cast<size_t>(written);
}

}  // namespace conformance
