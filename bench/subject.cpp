#include "bench/subject.h"

#include "bench/bare_trace.h"
#include "platform/sim/device_folder.h"
#include "platform/wince.h"

namespace bench {
namespace {

const char* LibraryOf(Build build) {
  switch (build) {
    case Build::kLibrary:
      return BINARY_DIR "/DVLORQPAL.so";
    case Build::kWithoutTraceLines:
      return BINARY_DIR "/DVLORQPAL_untraced.so";
    case Build::kHandWritten:
      return BINARY_DIR "/DVLORQPAL_bare.so";
  }
  return "";
}

int Succeed() {
  return 1;
}
int Allocate(unsigned /*a*/, unsigned /*b*/, unsigned* address) {
  *address = 0x1000;
  return 0;
}
int Map(unsigned /*a*/, unsigned /*b*/, unsigned /*c*/, unsigned /*d*/, unsigned* address) {
  *address = 0x2000;
  return 0;
}

template <typename Function>
int (*AsEntry(Function* function))() {
  return reinterpret_cast<int (*)()>(reinterpret_cast<void (*)()>(function));
}

// The library behind the forwarded services.
sim::Module Provider() {
  return {"DVLORQPAL.dll",
          {{"PALVER_LogVersion", &Succeed},
           {"PALSysio_VirtualAllocCopy", AsEntry(&Allocate)},
           {"PALSysio_MmMapIoSpace", AsEntry(&Map)},
           {"PALSysio_ImagerAllocPhysMem", AsEntry(&Allocate)},
           {"PALSysio_ImagerFreePhysMem", &Succeed},
           {"PALSysio_DVLEnableCamera", &Succeed},
           {"PALSysio_DVLEnableCameraClock", &Succeed},
           {"PALSysio_DVLEnableCameraPower", &Succeed}}};
}

sim::Device& Prepared(sim::Device& device) {
  sim::LoadDevice(device, PROJECT_DIR "/devices/rm21");
  device.InstallModule(QuietEventLog());
  device.InstallModule(Provider());
  device.set_library_path(R"(\Program Files\Dravonel\DVLPAL.dll)");  // not the provider's name
  return device;
}

}  // namespace

const char* NameOf(Build build) {
  switch (build) {
    case Build::kLibrary:
      return "library";
    case Build::kWithoutTraceLines:
      return "untraced";
    case Build::kHandWritten:
      return "bare";
  }
  return "";
}

Subject::Subject(Build build)
    : process_(Prepared(device_), "caller.exe", LibraryOf(build)),
      entry_(reinterpret_cast<Entry>(process_.Symbol("DllMain"))) {
  // Held once more, as a caller that links to it does, so that a detach and attach unload nothing.
  process_.Run(
      [this] { module_ = LoadLibraryW(TEXT("\\Program Files\\Dravonel\\DVLORQPAL.dll")); });
}

}  // namespace bench
