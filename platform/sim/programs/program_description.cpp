// [programs] of device.toml.
#include <cstdint>
#include <limits>

#include "platform/sim/description_part.h"
#include "platform/sim/device.h"
#include "platform/sim/programs/registry_importer.h"
#include "platform/wince.h"

namespace sim {
namespace {

std::uint32_t ReadNumber(const Part& part, const toml::table& table, std::string_view key) {
  const toml::node* node = table.get(key);
  if (node == nullptr) return 0;
  const std::string expected = fmt::format("a number from 0 up: {} = 0", key);
  const std::int64_t number = part.As<toml::value<std::int64_t>>(*node, expected).get();
  if (number < 0 || number >= std::numeric_limits<std::uint32_t>::max()) {
    part.Fail(node->source(), fmt::format("expected {}", expected));
  }
  return static_cast<std::uint32_t>(number);
}

Program Idler(std::uint32_t takes_ms, std::uint32_t exit_code) {
  return {{}, [takes_ms, exit_code](const std::string& /*command_line*/) {
            if (takes_ms > 0) Sleep(takes_ms);
            return exit_code;
          }};
}

Program ReadProgram(const Part& part, const toml::key& path, const toml::node& node) {
  const auto& table = part.As<toml::table>(node, R"(a table: { does = "import", takes_ms = 0 })");
  const toml::node* does = table.get("does");
  if (does == nullptr) part.Fail(path.source(), "the key 'does' is missing");
  constexpr std::string_view kExpected = R"(does = "import" or "nothing")";
  const std::string& word = part.As<toml::value<std::string>>(*does, kExpected).get();
  if (word == "import") {
    part.Allow(table, {"does", "takes_ms"});
    return RegistryImporter(ReadNumber(part, table, "takes_ms"));
  }
  if (word != "nothing") part.Fail(does->source(), fmt::format("expected {}", kExpected));
  part.Allow(table, {"does", "takes_ms", "exit_code"});
  return Idler(ReadNumber(part, table, "takes_ms"), ReadNumber(part, table, "exit_code"));
}

}  // namespace

void ReadPrograms(const Part& part, const toml::node& node, Device& device) {
  for (const auto& [key, row] : part.As<toml::table>(node, "a table of programs by their paths")) {
    const std::string path(key.str());
    if (!path.starts_with('\\') || !FileSystem::IsPathAllowed(path)) {
      part.Fail(key.source(), "expected a path from the root: '\\Windows\\program.exe'");
    }
    Program program = ReadProgram(part, key, row);
    program.path = path;
    device.InstallProgram(std::move(program));
  }
}

}  // namespace sim
