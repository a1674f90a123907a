// A device on a test bench: what the requests of docs/test-bench.md do.
#ifndef TOOLS_PALSIM_SERVE_BENCH_H_
#define TOOLS_PALSIM_SERVE_BENCH_H_

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/sim/device.h"
#include "tools/palsim/scenario/played_device.h"
#include "tools/palsim/serve/json_rpc.h"

namespace palsim {

class Bench {
 public:
  static constexpr int kProtocol = 1;

  // A device as the folder has it; the folder itself stays as it is. Throws
  // sim::DeviceFolderError.
  explicit Bench(std::filesystem::path folder);

  // Throws RpcError.
  Json Call(const std::string& method, const Json& parameters);

 private:
  struct Method;
  static const std::vector<Method>& Methods();

  Json Initialize(const Json& given);
  Json Start(const Json& given);
  Json End(const Json& given);
  Json Kill(const Json& given);
  Json CallOnce(const Json& given);
  Json Begin(const Json& given);
  Json Await(const Json& given);
  Json Set(const Json& given);
  Json Get(const Json& given);
  Json Expect(const Json& given);
  Json Play(const Json& given);
  Json Advance(const Json& given);
  Json ReadJournal(const Json& given);
  Json Snapshot(const Json& given);
  Json Restore(const Json& given);
  Json Reset(const Json& given);
  Json Finish(const Json& given);
  Json Save(const Json& given);

  PlayedDevice played_;
  std::map<std::string, std::unique_ptr<sim::Device>> snapshots_;
};

}  // namespace palsim

#endif  // TOOLS_PALSIM_SERVE_BENCH_H_
