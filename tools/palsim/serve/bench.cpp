#include "tools/palsim/serve/bench.h"

#include <fmt/format.h>

#include <algorithm>

#include "frame/version.h"
#include "platform/sim/hardware/hardware.h"
#include "tools/palsim/nearest.h"
#include "tools/palsim/scenario/statements.h"
#include "tools/palsim/scenario/values.h"
#include "tools/palsim/serve/parameters.h"

namespace palsim {
namespace {

constexpr std::uint32_t kLongestAdvanceMs = 24U * 60 * 60 * 1000;
constexpr const char* kExpect = "expect";

// Runs something whose UsageError is about the request alone.
template <class Function>
auto Checked(const Function& function) {
  try {
    return function();
  } catch (const UsageError& error) {
    throw RpcError(kInvalidParameters, error.what());
  }
}

Scenario Statements(const std::string& name, const std::string& text) {
  return Checked([&] { return ParseScenario(name, text); });
}

Filled FilledWith(std::initializer_list<std::pair<std::string_view, Words>> parts) {
  Filled filled;
  for (const auto& [name, words] : parts) filled.AddBefore(name, words);
  Checked([&] { CheckValues(filled); });
  return filled;
}

std::string ProcessOf(const Json& given) {
  std::string name = TextOf(given, "process");
  if (name.empty() || !sim::FileSystem::IsPathAllowed(name)) {
    throw RpcError(kInvalidParameters, fmt::format("'{}' is no name of a process", name));
  }
  return name;
}

Json ToJson(const sim::JournalEntry& entry) {
  return {{"time_ms", entry.time_ms},   {"process", entry.process_id},
          {"thread", entry.thread_id},  {"effect", sim::EffectName(entry.effect)},
          {"category", entry.category}, {"text", entry.text}};
}

// What is answered where expectations are checked.
Json Held(const std::vector<std::string>& failures) {
  return {{"holds", failures.empty()}, {"failures", failures}};
}

}  // namespace

struct Bench::Method {
  std::string_view name;
  std::vector<std::string_view> parameters;  // in their order; those with '?' may be missing
  Json (Bench::*run)(const Json& given);
};

const std::vector<Bench::Method>& Bench::Methods() {
  static const std::vector<Method> methods{
      {"initialize", {"protocol?"}, &Bench::Initialize},
      {"start", {"process"}, &Bench::Start},
      {"end", {"process"}, &Bench::End},
      {"kill", {"process"}, &Bench::Kill},
      {"call", {"process", "export", "arguments?"}, &Bench::CallOnce},
      {"begin", {"process", "export", "arguments?", "as?"}, &Bench::Begin},
      {"await", {"call"}, &Bench::Await},
      {"set", {"value", "data"}, &Bench::Set},
      {"get", {"value"}, &Bench::Get},
      {kExpect, {"statement"}, &Bench::Expect},
      {"play", {"statements"}, &Bench::Play},
      {"advance", {"ms"}, &Bench::Advance},
      {"journal", {"from?", "effect?"}, &Bench::ReadJournal},
      {"snapshot", {"name?"}, &Bench::Snapshot},
      {"restore", {"name?"}, &Bench::Restore},
      {"reset", {}, &Bench::Reset},
      {"finish", {}, &Bench::Finish},
      {"save", {"folder"}, &Bench::Save},
  };
  return methods;
}

Bench::Bench(std::filesystem::path folder) : played_(std::move(folder)) {}

Json Bench::Call(const std::string& method, const Json& parameters) {
  const auto row = std::ranges::find(Methods(), method, &Method::name);
  if (row == Methods().end()) {
    std::vector<std::string_view> names;
    for (const Method& known : Methods()) names.push_back(known.name);
    throw RpcError(kMethodNotFound,
                   fmt::format("there is no method '{}'{}", method, DidYouMean(method, names)));
  }
  try {
    return (this->*row->run)(ByName(parameters, row->parameters));
  } catch (const UsageError& error) {
    throw RpcError(kNotPossible, error.what());
  } catch (const std::invalid_argument& error) {
    throw RpcError(kNotPossible, error.what());
  } catch (const sim::DeviceFolderError& error) {
    throw RpcError(kFileError, error.what());
  } catch (const std::filesystem::filesystem_error& error) {
    throw RpcError(kFileError, error.what());
  }
}

Json Bench::Initialize(const Json& given) {
  if (given.contains("protocol") && given["protocol"] != kProtocol) {
    throw RpcError(kInvalidParameters, fmt::format("the protocol is {}", kProtocol));
  }
  return {{"protocol", kProtocol},
          {"library", pal::kLibraryVersion},
          {"device", played_.identity().name},
          {"description", played_.identity().description}};
}

Json Bench::Start(const Json& given) {
  const std::string name = ProcessOf(given);
  played_.stage().StartProcess(name);
  return {{"process", played_.stage().ProcessId(name)}};
}

Json Bench::End(const Json& given) {
  played_.stage().EndProcess(TextOf(given, "process"), false);
  return nullptr;
}

Json Bench::Kill(const Json& given) {
  played_.stage().EndProcess(TextOf(given, "process"), true);
  return nullptr;
}

Json Bench::CallOnce(const Json& given) {
  const std::string process = TextOf(given, "process");
  const std::string name = TextOf(given, "export");
  played_.stage().Call(process, name, ArgumentsOf(given, name));
  return palsim::ToJson(played_.stage().outcome(process));
}

Json Bench::Begin(const Json& given) {
  const std::string process = TextOf(given, "process");
  const std::string name = TextOf(given, "export");
  const std::string as = TextOf(given, "as", process);
  played_.stage().Begin(process, name, ArgumentsOf(given, name), as);
  return {{"call", as}};
}

Json Bench::Await(const Json& given) {
  const std::string call = TextOf(given, "call");
  played_.stage().AwaitCall(call);
  return palsim::ToJson(played_.stage().outcome(call));
}

Json Bench::Set(const Json& given) {
  const std::string value = TextOf(given, "value");
  const Words data = DataOf(given, "data");
  if (value == "volume") {
    PlaySetVolume(played_.stage(), FilledWith({{"NUMBER", data}}));
  } else if (value == "gain") {
    PlaySetGain(played_.stage(), FilledWith({{"NUMBER", data}}));
  } else {
    PlaySetValue(played_.stage(), FilledWith({{"VALUE", {{value}}}, {"DATA", data}}));
  }
  return nullptr;
}

Json Bench::Get(const Json& given) {
  const std::string value = TextOf(given, "value");
  const auto& levels = played_.device().hardware().audio.levels;
  if (value == "volume") return levels.volume;
  if (value == "gain") return levels.gain;
  const ValuePath path = Checked([&] { return ParseValuePath(value); });
  return palsim::ToJson(played_.device().registry().FindValue(path.key, path.name));
}

Json Bench::Expect(const Json& given) {
  const Scenario scenario =
      Statements(kExpect, fmt::format("{} {}", kExpect, TextOf(given, "statement")));
  if (scenario.statements.size() != 1) {
    throw RpcError(kInvalidParameters, "the statement has to be one line");
  }
  const std::vector<std::string> failures = played_.Play(scenario);
  if (failures.empty()) return {{"holds", true}, {"message", nullptr}};
  // Without the place: "expect:1: expected ...; there was ...".
  const std::string& message = failures.front();
  return {{"holds", false}, {"message", message.substr(message.find(": ") + 2)}};
}

Json Bench::Play(const Json& given) {
  return Held(played_.Play(Statements("play", LinesOf(given, "statements"))));
}

Json Bench::Advance(const Json& given) {
  played_.device().Advance(NumberOf(given, "ms", kLongestAdvanceMs));
  return {{"time_ms", played_.device().now_ms()}};
}

Json Bench::ReadJournal(const Json& given) {
  const auto& entries = played_.stage().journal();
  const std::size_t from = given.contains("from") ? NumberOf(given, "from", UINT32_MAX) : 0;
  const std::string name = TextOf(given, "effect", "");
  const std::optional<sim::Effect> effect = sim::EffectFromName(name);
  if (!name.empty() && !effect) {
    throw RpcError(kInvalidParameters, fmt::format("there is no effect '{}'", name));
  }
  Json found = Json::array();
  for (std::size_t place = from; place < entries.size(); ++place) {
    if (!effect || entries[place].effect == *effect) found.push_back(ToJson(entries[place]));
  }
  return {{"entries", std::move(found)}, {"next", entries.size()}};
}

Json Bench::Snapshot(const Json& given) {
  const std::string name = TextOf(given, "name", "");
  played_.RequireNoProcess();
  auto copy = std::make_unique<sim::Device>();
  copy->CopyFrom(played_.device());
  snapshots_[name] = std::move(copy);
  return nullptr;
}

Json Bench::Restore(const Json& given) {
  const std::string name = TextOf(given, "name", "");
  played_.RequireNoProcess();
  const auto found = snapshots_.find(name);
  if (found == snapshots_.end()) throw UsageError("there is no snapshot '" + name + "'");
  played_.device().CopyFrom(*found->second);
  return nullptr;
}

Json Bench::Reset(const Json& /*given*/) {
  played_.Reset();
  return nullptr;
}

Json Bench::Finish(const Json& /*given*/) {
  return Held(played_.Finish());
}

Json Bench::Save(const Json& given) {
  played_.Save(TextOf(given, "folder"), "On a test bench");
  return nullptr;
}

}  // namespace palsim
