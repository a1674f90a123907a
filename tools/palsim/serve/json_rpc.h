// JSON-RPC 2.0 without its methods: requests, notifications and batches, each in a text of its own.
#ifndef TOOLS_PALSIM_SERVE_JSON_RPC_H_
#define TOOLS_PALSIM_SERVE_JSON_RPC_H_

#include <cstddef>
#include <functional>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>

namespace palsim {

using Json = nlohmann::json;

enum RpcErrorCode : int {
  kParseError = -32700,      // no JSON
  kInvalidRequest = -32600,  // no request, or one beyond the limits
  kMethodNotFound = -32601,
  kInvalidParameters = -32602,  // whatever the device is like
  kInternalError = -32603,
  kNotPossible = -32000,  // as the device and its processes stand
  kFileError = -32001,    // a folder of the host
};

class RpcError : public std::runtime_error {
 public:
  RpcError(RpcErrorCode code, const std::string& message)
      : std::runtime_error(message), code_(code) {}
  [[nodiscard]] RpcErrorCode code() const { return code_; }

 private:
  RpcErrorCode code_;
};

inline constexpr std::size_t kLongestLine = std::size_t{1024} * 1024;
inline constexpr int kDeepestNesting = 32;
inline constexpr std::size_t kLargestBatch = 1000;

// Calls a method with its parameters, an array or an object. Throws RpcError; any other exception
// is answered as an internal error.
using CallMethod = std::function<Json(const std::string& method, const Json& parameters)>;

// The answer to a text, as one line; empty where none is due.
[[nodiscard]] std::string AnswerTo(std::string_view text, const CallMethod& call);

}  // namespace palsim

#endif  // TOOLS_PALSIM_SERVE_JSON_RPC_H_
