// The decoder of the scan engine. It comes with the engine, not with DVLORQPAL.dll, and is played
// here: it "reads" the lines of codes.txt, one after the other. Put that of your device in its
// place.
#ifndef STOCKROOM_DECODER_H_
#define STOCKROOM_DECODER_H_

#include <windows.h>

namespace stockroom {

class Decoder {
 public:
  static constexpr DWORD kLongestCode = 48;

  Decoder();
  ~Decoder();
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;

  // Waits for a code, with the trigger pulled. False where the engine sees none.
  bool Read(char (&code)[kLongestCode + 1]);

 private:
  HANDLE file_;
};

}  // namespace stockroom

#endif  // STOCKROOM_DECODER_H_
