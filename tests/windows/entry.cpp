// The entry of a program of the platform on a PC. Windows ends a process with its last thread and
// not with its first, and its library of sounds has threads of its own.
extern "C" int WinMain(void* program, void* previous, char16_t* command, int show);
extern "C" [[noreturn]] void ExitProcess(unsigned code);

extern "C" void Entry() {
  ExitProcess(static_cast<unsigned>(WinMain(nullptr, nullptr, nullptr, 0)));
}
