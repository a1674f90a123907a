#include "tools/palsim/serve/parameters.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "platform/sim/text.h"
#include "platform/wince.h"
#include "tools/palsim/declarations.h"

namespace palsim {
namespace {

[[noreturn]] void Refuse(std::string_view name, std::string_view wanted) {
  throw RpcError(kInvalidParameters, fmt::format("{} has to be {}", name, wanted));
}

bool MayBeMissing(std::string_view name) {
  return name.ends_with('?');
}

std::string_view PlainName(std::string_view name) {
  return MayBeMissing(name) ? name.substr(0, name.size() - 1) : name;
}

bool IsText(const Json& value) {
  return value.is_string() && value.get_ref<const std::string&>().find('\0') == std::string::npos;
}

// As a person types it for 'palsim call'.
std::string ArgumentText(const Json& argument) {
  if (argument.is_null()) return "null";
  if (argument.is_boolean()) return argument.get<bool>() ? "1" : "0";
  if (argument.is_number_integer()) return argument.dump();
  if (!IsText(argument)) Refuse("an argument", "a number, a text without NUL, true, false or null");
  return argument;
}

void AddOutParameters(const Declaration& declaration, std::vector<std::string>& arguments) {
  const auto& parameters = declaration.parameters;
  const auto is_in = [](const Parameter& parameter) {
    return !parameter.type.empty() && parameter.direction != "out";
  };
  const auto read = static_cast<std::size_t>(std::ranges::count_if(parameters, is_in));
  if (arguments.size() != read) return;
  for (std::size_t place = 0; place < parameters.size(); ++place) {
    if (parameters.at(place).direction != "out") continue;
    arguments.insert(arguments.begin() + static_cast<std::ptrdiff_t>(place), "out");
  }
}

}  // namespace

Json ByName(const Json& parameters, std::span<const std::string_view> names) {
  Json named = parameters;
  if (parameters.is_array()) {
    named = Json::object();
    if (parameters.size() > names.size()) {
      throw RpcError(kInvalidParameters, fmt::format("at most {} parameters", names.size()));
    }
    for (std::size_t place = 0; place < parameters.size(); ++place) {
      named[std::string(PlainName(names[place]))] = parameters[place];
    }
  }
  for (const auto& [name, value] : named.items()) {
    if (std::ranges::find(names, name, &PlainName) != names.end()) continue;
    throw RpcError(kInvalidParameters, fmt::format("there is no parameter '{}'; there are: {}",
                                                   name, fmt::join(names, ", ")));
  }
  for (const std::string_view name : names) {
    if (MayBeMissing(name) || named.contains(name)) continue;
    throw RpcError(kInvalidParameters, fmt::format("the parameter '{}' is missing", name));
  }
  return named;
}

std::string TextOf(const Json& given, const char* name) {
  if (!IsText(given.at(name))) Refuse(name, "a text without NUL");
  return given.at(name);
}

std::string TextOf(const Json& given, const char* name, const std::string& otherwise) {
  return given.contains(name) ? TextOf(given, name) : otherwise;
}

std::uint32_t NumberOf(const Json& given, const char* name, std::uint32_t most) {
  const Json& value = given.at(name);
  if (!value.is_number_unsigned() || value.get<std::uint64_t>() > most) {
    Refuse(name, fmt::format("a whole number from 0 to {}", most));
  }
  return value;
}

std::string LinesOf(const Json& given, const char* name) {
  if (!given.at(name).is_array()) return TextOf(given, name);
  std::string lines;
  for (const Json& line : given.at(name)) {
    if (!IsText(line)) Refuse(name, "a text or an array of texts");
    lines += line.get_ref<const std::string&>() + "\n";
  }
  return lines;
}

Words DataOf(const Json& given, const char* name) {
  const Json& data = given.at(name);
  if (data.is_number_integer()) return {Word{.text = data.dump()}};
  if (data.is_string()) return {Word{.text = TextOf(given, name), .quoted = true}};
  const auto is_byte = [](const Json& byte) {
    return byte.is_number_unsigned() && byte.get<std::uint64_t>() <= UINT8_MAX;
  };
  if (!data.is_array() || !std::ranges::all_of(data, is_byte)) {
    Refuse(name, "a number, a text, or an array of bytes");
  }
  Words words{Word{.text = "hex"}};
  for (const Json& byte : data) {
    words.push_back({.text = fmt::format("{:02X}", byte.get<unsigned>())});
  }
  return words;
}

std::vector<std::string> ArgumentsOf(const Json& given, const std::string& name) {
  const Json values = given.value("arguments", Json::array());
  if (!values.is_array()) Refuse("arguments", "an array");
  std::vector<std::string> arguments;
  for (const Json& value : values) arguments.push_back(ArgumentText(value));
  if (const auto* declaration = FindDeclaration(name)) AddOutParameters(*declaration, arguments);
  try {
    CheckCall(name, arguments);
  } catch (const UsageError& error) {
    throw RpcError(kInvalidParameters, error.what());
  }
  return arguments;
}

Json ToJson(const std::optional<CallOutcome>& outcome) {
  const bool returned = outcome && !outcome->restart;
  Json json{{"code", nullptr}, {"result", ""},          {"failed", true},
            {"cut", nullptr},  {"out", Json::object()}, {"names", Json::object()}};
  if (!returned) {
    json["cut"] = outcome ? sim::RestartText(*outcome->restart) : "killed";
    return json;
  }
  json["code"] = outcome->code;
  json["result"] = outcome->name;
  json["failed"] = outcome->failed;
  for (const Answer& answer : outcome->answers) {
    const std::string name(answer.name);
    std::visit([&](const auto& content) { json["out"][name] = content; }, answer.content);
    if (!answer.meaning.empty()) json["names"][name] = answer.meaning;
  }
  return json;
}

Json ToJson(const sim::RegistryValue* value) {
  if (value == nullptr) return nullptr;
  if (const auto number = sim::DwordOf(*value)) return *number;
  if (value->type != REG_SZ) return value->data;
  const std::u16string units = sim::UnitsOf(value->data);
  return sim::ToUtf8(std::u16string_view(units).substr(0, units.find(u'\0')));
}

}  // namespace palsim
