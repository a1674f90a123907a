#include "decoder.h"

#include "text_file.h"

namespace stockroom {

Decoder::Decoder() : file_(OpenTextFile(kCodes, GENERIC_READ, OPEN_EXISTING)) {}

Decoder::~Decoder() {
  if (file_ != INVALID_HANDLE_VALUE) CloseHandle(file_);
}

bool Decoder::Read(char (&code)[kLongestCode + 1]) {
  Sleep(80);  // as long as an engine takes
  DWORD length = 0;
  DWORD bytes = 0;
  char character = 0;
  while (ReadFile(file_, &character, 1, &bytes, nullptr) != 0 && bytes == 1 && character != '\n') {
    if (character == '\r') continue;
    if (length < kLongestCode) code[length] = character;
    ++length;
  }
  if (length > kLongestCode) return false;
  code[length] = 0;
  return length > 0;
}

}  // namespace stockroom
