// palsim serve: a device for programs that speak JSON-RPC.
#include <cstdio>
#include <iostream>

#include "tools/palsim/commands.h"
#include "tools/palsim/samples.h"
#include "tools/palsim/serve/bench.h"
#include "tools/palsim/serve/json_rpc.h"
#include "tools/streams.h"

namespace palsim {
namespace {

// Of a line that is too long one byte more than allowed is kept. False at the end of the input.
bool ReadLine(std::istream& input, std::string& line) {
  line.clear();
  for (int byte = input.get(); byte != EOF; byte = input.get()) {
    if (byte == '\n') return true;
    if (line.size() <= kLongestLine) line += static_cast<char>(byte);
  }
  return !line.empty();
}

}  // namespace

int Serve(const ServeOptions& options) {
  Bench bench(FolderOf(options.device));
  const CallMethod call = [&bench](const std::string& method, const Json& parameters) {
    return bench.Call(method, parameters);
  };
  for (std::string line; ReadLine(std::cin, line);) {
    tools::PrintAtOnce(AnswerTo(line, call));
    if (std::ferror(stdout) != 0) break;
  }
  return kSuccess;
}

}  // namespace palsim
