// The program for a handheld, and for a PC.
#include <windows.h>

#include "stockroom.h"

#if defined(_WIN32) && !defined(UNDER_CE)
int main() {
  return stockroom::Run();
}
#else
extern "C" int WINAPI WinMain(HINSTANCE /*program*/, HINSTANCE /*previous*/, WCHAR* /*command*/,
                              int /*show*/) {
  return stockroom::Run();
}
#endif
