#include "tools/palsim/serve/json_rpc.h"

#include <fmt/format.h>

namespace palsim {
namespace {

Json Parse(std::string_view text) try {
  if (text.size() > kLongestLine) {
    throw RpcError(kInvalidRequest, fmt::format("a line has at most {} bytes", kLongestLine));
  }
  return Json::parse(text, [](int depth, Json::parse_event_t /*event*/, const Json& /*parsed*/) {
    if (depth <= kDeepestNesting) return true;
    throw RpcError(kInvalidRequest, fmt::format("nested deeper than {}", kDeepestNesting));
  });
} catch (const Json::exception& error) {
  throw RpcError(kParseError, error.what());
}

Json ErrorAnswer(const Json& id, RpcErrorCode code, std::string_view message) {
  return {{"jsonrpc", "2.0"}, {"id", id}, {"error", {{"code", code}, {"message", message}}}};
}

bool IsId(const Json& value) {
  return value.is_null() || value.is_string() || value.is_number();
}

// What is wrong with the form of a request; empty: nothing.
std::string_view FormFault(const Json& request) {
  if (!request.is_object()) return "a request is an object";
  if (request.value("jsonrpc", Json()) != "2.0") return "jsonrpc has to be \"2.0\"";
  if (!request.value("method", Json()).is_string()) return "method has to be a text";
  if (!IsId(request.value("id", Json()))) return "an id is a text, a number or null";
  if (!request.value("params", Json::array()).is_structured()) {
    return "params has to be an array or an object";
  }
  return {};
}

// A notification is answered by nothing, also where it fails.
void AnswerRequest(const Json& request, const CallMethod& call, Json& answers) {
  const Json given = request.is_object() ? request.value("id", Json()) : Json();
  const Json id = IsId(given) ? given : Json();
  const std::string_view fault = FormFault(request);
  if (!fault.empty()) return answers.push_back(ErrorAnswer(id, kInvalidRequest, fault));
  Json answer;
  try {
    answer = {{"jsonrpc", "2.0"}, {"id", id}};
    answer["result"] = call(request["method"], request.value("params", Json::object()));
  } catch (const RpcError& error) {
    answer = ErrorAnswer(id, error.code(), error.what());
  } catch (const std::exception& error) {
    answer = ErrorAnswer(id, kInternalError, error.what());
  }
  if (request.contains("id")) answers.push_back(std::move(answer));
}

std::string Line(const Json& answer) {
  // What is no UTF-8 becomes U+FFFD.
  return answer.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string AnswerBatch(const Json& batch, const CallMethod& call) {
  if (batch.empty() || batch.size() > kLargestBatch) {
    throw RpcError(kInvalidRequest, fmt::format("a batch has 1 to {} requests", kLargestBatch));
  }
  Json answers = Json::array();
  for (const Json& request : batch) AnswerRequest(request, call, answers);
  return answers.empty() ? std::string() : Line(answers);
}

}  // namespace

std::string AnswerTo(std::string_view text, const CallMethod& call) try {
  const Json request = Parse(text);
  if (request.is_array()) return AnswerBatch(request, call);
  Json answers = Json::array();
  AnswerRequest(request, call, answers);
  return answers.empty() ? std::string() : Line(answers.front());
} catch (const RpcError& error) {
  return Line(ErrorAnswer(nullptr, error.code(), error.what()));
}

}  // namespace palsim
