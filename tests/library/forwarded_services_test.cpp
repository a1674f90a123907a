// The services that this library passes on to a provider of its own name: where that is found, what
// its answers become, and what is traced of it.
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/device_test.h"

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kBeside = R"(\Program Files\DVLORQPAL.dll)";
// Where an installer puts this library so that the provider can be loaded beside it.
constexpr const char* kLibrary = R"(\Program Files\Dravonel\DVLPAL.dll)";

// The one provider of a test, as its entries see it.
struct Provider {
  HRESULT result = S_OK;
  DWORD address = 0;  // 0: the target writes none
  DWORD seen_address = 1;
  std::vector<DWORD> seen;
};
Provider provider;

HRESULT Answer(std::vector<DWORD> seen) {
  provider.seen = std::move(seen);
  return provider.result;
}

HRESULT AnswerAddress(std::vector<DWORD> seen, DWORD* address) {
  provider.seen_address = *address;
  if (provider.address != 0) *address = provider.address;
  return Answer(std::move(seen));
}

HRESULT LogVersion() {
  return Answer({});
}
HRESULT OfTwo(DWORD a, DWORD b, DWORD* address) {
  return AnswerAddress({a, b}, address);
}
HRESULT OfFour(DWORD a, DWORD b, DWORD c, DWORD d, DWORD* address) {
  return AnswerAddress({a, b, c, d}, address);
}
HRESULT OfOne(DWORD a) {
  return Answer({a});
}

using Entries = decltype(sim::Module::entries);

template <class Function>
int (*Entry(Function* function))() {
  return reinterpret_cast<int (*)()>(reinterpret_cast<void*>(function));
}

Entries AllEntries() {
  return {{"PALSysio_VirtualAllocCopy", Entry(&OfTwo)},
          {"PALSysio_MmMapIoSpace", Entry(&OfFour)},
          {"PALSysio_ImagerAllocPhysMem", Entry(&OfTwo)},
          {"PALSysio_ImagerFreePhysMem", Entry(&OfOne)},
          {"PALSysio_DVLEnableCamera", Entry(&OfOne)},
          {"PALSysio_DVLEnableCameraClock", Entry(&OfOne)},
          {"PALSysio_DVLEnableCameraPower", Entry(&OfOne)},
          {"PALVER_LogVersion", Entry(&LogVersion)}};
}

struct AddressService {
  const char* name;
  std::function<HRESULT(const sim::Exports&, DWORD*)> call;
  std::vector<DWORD> passed_on;
};
const std::vector<AddressService> kAddressServices = {
    {"PALSysio_VirtualAllocCopy",
     [](const sim::Exports& exports, DWORD* address) {
       return exports.PALSysio_VirtualAllocCopy(1, 0xFFFFFFFF, address);
     },
     {1, 0xFFFFFFFF}},
    {"PALSysio_MmMapIoSpace",
     [](const sim::Exports& exports, DWORD* address) {
       return exports.PALSysio_MmMapIoSpace(1, 2, 3, 0xFFFFFFFF, address);
     },
     {1, 2, 3, 0xFFFFFFFF}},
    {"PALSysio_ImagerAllocPhysMem",
     [](const sim::Exports& exports, DWORD* address) {
       return exports.PALSysio_ImagerAllocPhysMem(1, 0xFFFFFFFF, address);
     },
     {1, 0xFFFFFFFF}},
};

struct OneArgumentService {
  const char* name;
  sim::Export<HRESULT(DWORD)> sim::Exports::*call;
  bool can_fail;
};
constexpr OneArgumentService kOneArgumentServices[] = {
    {"PALSysio_ImagerFreePhysMem", &sim::Exports::PALSysio_ImagerFreePhysMem, false},
    {"PALSysio_DVLEnableCamera", &sim::Exports::PALSysio_DVLEnableCamera, true},
    {"PALSysio_DVLEnableCameraClock", &sim::Exports::PALSysio_DVLEnableCameraClock, true},
    {"PALSysio_DVLEnableCameraPower", &sim::Exports::PALSysio_DVLEnableCameraPower, true},
};

class ForwardedServices : public DeviceTest {
 protected:
  ForwardedServices() {
    provider = {};
    device.RemoveModule("DVLORQPAL.dll");
    device.set_library_path(kLibrary);
  }
  void Install(Entries entries = AllEntries(), const char* folder = "\\Windows") {
    device.InstallModule({"DVLORQPAL.dll", std::move(entries), folder});
  }
  // A process with nothing in the journal yet, whatever its start wrote there, and with a last
  // error that no call has touched since.
  void Begin(sim::Process& process) {
    device.journal().Clear();
    process.Run([] { SetLastError(0x55); });
  }
  Lines ProviderLoads() {
    Lines lines = device.journal().Texts(sim::Effect::kModule);
    std::erase_if(lines, [](const std::string& line) { return line.starts_with("DVLEvent"); });
    return lines;
  }
};

TEST_F(ForwardedServices, GiveTheAddressOfATargetThatDidNotFail) {
  Install();
  sim::Process process(device);
  struct Case {
    HRESULT target_result;
    DWORD target_address;
    HRESULT result;
    DWORD address;
  };
  for (const AddressService& service : kAddressServices) {
    for (const Case& test :
         {Case{S_OK, 0x1000, S_OK, 0x1000}, Case{S_FALSE, 1, S_OK, 1},
          Case{0x7FFFFFFF, 0xFFFFFFFF, S_OK, 0xFFFFFFFF}, Case{S_OK, 0, E_FAIL, 0},
          Case{-1, 0x1000, E_FAIL, 0}, Case{E_NOTIMPL, 0, E_FAIL, 0}}) {
      provider = {test.target_result, test.target_address, 1, {}};
      DWORD address = 0xDEADBEEF;
      EXPECT_EQ(service.call(process.exports(), &address), test.result)
          << service.name << " with " << test.target_result;
      EXPECT_EQ(address, test.address) << service.name << " with " << test.target_result;
      EXPECT_EQ(provider.seen, service.passed_on) << service.name;
      EXPECT_EQ(provider.seen_address, 0u) << "what the target finds";
    }
  }
}

TEST_F(ForwardedServices, RefuseANullAddressBeforeAnythingIsLoaded) {
  Install();
  sim::Process process(device);
  const unsigned calls = device.calls();
  for (const AddressService& service : kAddressServices) {
    EXPECT_EQ(service.call(process.exports(), nullptr), E_FAIL) << service.name;
  }
  EXPECT_EQ(device.calls(), calls);
}

TEST_F(ForwardedServices, PassOneArgumentOn) {
  Install();
  sim::Process process(device);
  for (const OneArgumentService& service : kOneArgumentServices) {
    for (const HRESULT target_result : {0, 1, -1}) {
      provider = {target_result, 0, 1, {}};
      const HRESULT failed = service.can_fail && target_result == 0 ? E_FAIL : S_OK;
      EXPECT_EQ((process.exports().*service.call)(0x80000001), failed)
          << service.name << " with " << target_result;
      EXPECT_EQ(provider.seen, std::vector<DWORD>{0x80000001}) << service.name;
    }
  }
}

TEST_F(ForwardedServices, LoadTheProviderOnceAndHaveItLogItsVersion) {
  Entries entries = AllEntries();
  entries["PALVER_LogVersion"] = Entry(+[]() -> HRESULT {
    provider.seen_address = 99;
    return E_FAIL;
  });
  Install(std::move(entries));
  sim::Process process(device);
  Begin(process);
  process.exports().PALSysio_DVLEnableCamera(1);
  EXPECT_EQ(provider.seen_address, 99u) << "its version comes first";
  const unsigned lookups = device.calls("GetProcAddressW");
  for (int call = 0; call < 3; ++call) process.exports().PALSysio_DVLEnableCamera(1);
  EXPECT_EQ(device.calls("GetProcAddressW"), lookups);
  process.exports().PALSysio_DVLEnableCameraClock(1);
  EXPECT_EQ(device.calls("GetProcAddressW"), lookups + 1);
  EXPECT_EQ(CategorisedLines(),
            Lines{"0x442C0000 Loading DVLORQPAL.dll,winerr:0x55,proc:0x1\\r\\n"});
  EXPECT_EQ(ProviderLoads(), Lines{"DVLORQPAL.dll loaded"});
}

TEST_F(ForwardedServices, TakeTheProviderBesideTheProgram) {
  Install(AllEntries(), "\\Tools\\Deep");
  sim::Process elsewhere(device, "elsewhere.exe");
  sim::Process process(device, R"(\Tools\Deep\tool.exe)");
  EXPECT_EQ(elsewhere.exports().PALSysio_DVLEnableCamera(1), E_FAIL);
  Begin(process);
  provider.result = TRUE;
  EXPECT_EQ(process.exports().PALSysio_DVLEnableCamera(1), S_OK);
  EXPECT_EQ(TraceLines(), (Lines{"Loading DVLORQPAL.dll,winerr:0x7e,proc:0x2\\r\\n",
                                 R"(Loading \Tools\Deep\DVLORQPAL.dll,winerr:0x7e,proc:0x2\r\n)"}));
  EXPECT_EQ(ProviderLoads(),
            (Lines{"DVLORQPAL.dll not found", R"(\Tools\Deep\DVLORQPAL.dll loaded)"}));
}

// The platform does not look at the folders of libraries: both loads give this library once more.
TEST_F(ForwardedServices, AreMissingWhereThisLibraryHasTheProvidersName) {
  Install();
  Install(AllEntries(), R"(\Program Files\Dravonel)");
  device.set_library_path(R"(\Tools\dvlorqpal.DLL)");
  sim::Process process(device, R"(\Program Files\Dravonel\caller.exe)");
  for (const AddressService& service : kAddressServices) {
    for (int call = 0; call < 2; ++call) {
      DWORD address = 0xDEADBEEF;
      EXPECT_EQ(service.call(process.exports(), &address), E_FAIL) << service.name;
      EXPECT_EQ(address, 0u) << service.name;
    }
  }
  for (const OneArgumentService& service : kOneArgumentServices) {
    for (int call = 0; call < 2; ++call) {
      EXPECT_EQ((process.exports().*service.call)(1), service.can_fail ? E_FAIL : S_OK)
          << service.name;
    }
  }
  EXPECT_EQ(TraceLines("Loaded PAL version"), Lines{}) << "it is no provider";
  EXPECT_EQ(TraceLines("Loading DVLORQPAL.dll,").size(), 7u) << "once for each export";
  EXPECT_EQ(TraceLines(R"(Loading \Program Files\Dravonel\DVLORQPAL.dll,)").size(), 7u);
  EXPECT_EQ(TraceLines("All PAL load attempts failed. proc:0x1\\r\\n").size(), 7u);
  EXPECT_EQ(device.calls("FreeLibrary"), 14u) << "every load of itself is given back";
  EXPECT_EQ(ProviderLoads(), Lines{});
}

// However looking into it fails, what is loaded is known not to be a provider.
TEST_F(ForwardedServices, NeverCallThemselves) {
  device.set_library_path(std::string(sim::kLibraryPath));
  for (unsigned nth = 1; nth <= 4; ++nth) {
    sim::Process process(device);
    device.PlanFault({.call = "GetProcAddressW", .nth = nth, .error = 127});
    EXPECT_EQ(process.exports().PALSysio_DVLEnableCamera(1), E_FAIL);
    device.ClearFaults();
  }
}

TEST_F(ForwardedServices, SayWhatFailedToLoad) {
  sim::Process process(device);
  process.exports().PALVER_LogVersion();
  Begin(process);
  device.PlanFault({.call = "LoadLibraryW", .error = 8});
  DWORD address = 1;
  EXPECT_EQ(process.exports().PALSysio_MmMapIoSpace(1, 2, 3, 4, &address), E_FAIL);
  EXPECT_EQ(address, 0u);
  EXPECT_EQ(CategorisedLines(),
            (Lines{"0x442C0000 Loading DVLORQPAL.dll,winerr:0x8,proc:0x1\\r\\n",
                   R"(0x442C0000 Loading \Program Files\DVLORQPAL.dll,winerr:0x7e,proc:0x1\r\n)",
                   "0xC42C0000 All PAL load attempts failed. proc:0x1\\r\\n"}));
}

TEST_F(ForwardedServices, LookOncePerExportForAMissingEntry) {
  Install({});
  sim::Process process(device);
  Begin(process);
  for (int call = 0; call < 2; ++call) {
    DWORD address = 1;
    EXPECT_EQ(process.exports().PALSysio_MmMapIoSpace(1, 2, 3, 4, &address), E_FAIL);
    EXPECT_EQ(address, 0u);
    EXPECT_EQ(process.exports().PALSysio_ImagerFreePhysMem(1), S_OK);
    EXPECT_EQ(process.exports().PALSysio_DVLEnableCamera(1), E_FAIL);
  }
  EXPECT_EQ(CategorisedLines(),
            (Lines{"0x442C0000 Loading DVLORQPAL.dll,winerr:0x55,proc:0x1\\r\\n",
                   "0xC42C0000 PALVER_LogVersion not supported\\r\\n",
                   "0xC42C0000 PALSysio_MmMapIoSpace not supported\\r\\n",
                   "0xC42C0000 PALSysio_ImagerFreePhysMem not supported\\r\\n",
                   "0xC42C0000 PALSysio_DVLEnableCamera not supported\\r\\n"}));
}

TEST_F(ForwardedServices, AProviderThatComesLaterServesTheExportsThatHaveNotLooked) {
  sim::Process process(device);
  EXPECT_EQ(process.exports().PALSysio_DVLEnableCamera(1), E_FAIL);
  Install();
  provider.result = TRUE;
  EXPECT_EQ(process.exports().PALSysio_DVLEnableCamera(1), E_FAIL);
  EXPECT_EQ(process.exports().PALSysio_DVLEnableCameraClock(1), S_OK);
  sim::Process other(device);
  EXPECT_EQ(other.exports().PALSysio_DVLEnableCamera(1), S_OK) << "each process looks for itself";
}

// The provider's path beside a program at this depth has `units` units.
std::string FolderForProviderPath(std::size_t units) {
  const std::size_t name = std::string("\\DVLORQPAL.dll").size();
  return "\\" + std::string(units - name - 1, 'f');
}

TEST_F(ForwardedServices, TakeAPathOfUpTo259Units) {
  provider.result = TRUE;
  for (const auto& [units, result] : {std::pair{259u, S_OK}, std::pair{260u, E_FAIL}}) {
    device.journal().Clear();
    const std::string folder = FolderForProviderPath(units);
    Install(AllEntries(), folder.c_str());
    sim::Process process(device, folder + "\\a.exe");
    EXPECT_EQ(process.exports().PALSysio_DVLEnableCamera(1), result) << units;
    EXPECT_EQ(TraceLines("Loading \\f").size(), result == S_OK ? 1u : 0u);
    EXPECT_EQ(TraceLines("All PAL").size(), result == S_OK ? 0u : 1u);
  }
  sim::Process process(device, FolderForProviderPath(255) + "\\a_program_of_its_own.exe");
  EXPECT_EQ(process.exports().PALSysio_DVLEnableCamera(1), E_FAIL) << "the program's path is cut";
}

TEST_F(ForwardedServices, GoOnWithoutTheProgramsPath) {
  Install(AllEntries(), "\\Program Files");
  device.PlanFault({.call = "GetModuleFileNameW", .from_then_on = true});
  sim::Process process(device);
  EXPECT_EQ(process.exports().PALSysio_DVLEnableCamera(1), E_FAIL);
  EXPECT_EQ(TraceLines("All PAL load attempts failed.").size(), 1u);
  EXPECT_EQ(ProviderLoads(), Lines{"DVLORQPAL.dll not found"}) << kBeside;
}

}  // namespace
