// What only its own calls may change, and passwords.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <boost/uuid/detail/sha1.hpp>
#include <map>

#include "platform/sim/kernel/kernel.h"
#include "platform/sim/kernel/process_state.h"
#include "platform/sim/text.h"
#include "platform/wince.h"
#include "tools/palsim/argument.h"
#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"

namespace palsim {
namespace {

constexpr std::array kCommands{R"(HKCR\tdyskin\Shell\Open\Command)",
                               R"(HKCR\cabfile\Shell\Open\Command)"};
constexpr std::size_t kProgramBytes = 14;  // seven UTF-16 characters

class CommandsKeepTheirRest : public Property {
  using Command = std::optional<sim::RegistryValue>;

  void DeviceChanged(Scene& scene) override { commands_ = Read(scene); }

  void RegistryChanged(Scene& scene) override {
    const std::array<Command, 2> now = Read(scene);
    for (std::size_t at = 0; at < now.size(); ++at) {
      if (commands_.at(at)) Met();
      if (HasSameRest(commands_.at(at), now.at(at))) continue;
      Violated(fmt::format("{} has changed otherwise", kCommands.at(at)));
    }
    commands_ = now;
  }

  static bool HasSameRest(const Command& before, const Command& now) {
    if (before.has_value() != now.has_value()) return false;
    if (!before) return true;
    if (before->type != now->type || before->data.size() != now->data.size()) return false;
    const std::size_t kept = std::min(kProgramBytes, before->data.size());
    return std::equal(before->data.begin() + static_cast<std::ptrdiff_t>(kept), before->data.end(),
                      now->data.begin() + static_cast<std::ptrdiff_t>(kept));
  }

  static std::array<Command, 2> Read(Scene& scene) {
    std::array<Command, 2> commands;
    for (std::size_t at = 0; at < commands.size(); ++at) {
      const auto* const value = scene.registry().FindValue(kCommands.at(at), "");
      if (value != nullptr) commands.at(at) = *value;
    }
    return commands;
  }

  std::array<Command, 2> commands_;
};

// The sum of a file's 32-bit words and of the bytes behind them; 0 where there is none.
std::uint32_t ChecksumOfFile(const Scene& scene, const std::string& path) {
  const auto* const file = scene.device.files().Read(path);
  if (file == nullptr) return 0;
  constexpr std::size_t kWord = sizeof(std::uint32_t);
  const std::size_t words = file->size() / kWord;
  std::uint32_t sum = 0;
  for (std::size_t at = 0; at < file->size(); ++at) {
    const std::size_t shift = at / kWord < words ? 8 * (at % kWord) : 0;
    sum += std::uint32_t{(*file)[at]} << shift;
  }
  return sum;
}

class ChecksumsFollowImports : public Property {
  static constexpr const char* kChecksums = R"(HKLM\Software\Dravonel\REGCHKSUMS)";
  static constexpr std::string_view kImport = "PALREG_LoadRegistry";
  using Values = std::map<std::u16string, std::vector<std::uint8_t>>;

  void DeviceChanged(Scene& scene) override { checksums_ = Read(scene); }

  void CallBegins(Scene& scene, const WatchedCall& call) override {
    if (call.name != kImport) return;
    const sim::Kernel& kernel = scene.device.kernel();
    next_process_ = kernel.next_process_id;
    // The importer of a killed process may still read the file, which cannot be opened then.
    another_imports_ = std::ranges::any_of(kernel.program_processes, [](const auto& process) {
      return process->alive && process->name.ends_with("orqautoreg.exe");
    });
  }

  void CallEnds(Scene& scene, const WatchedCall& call) override {
    if (call.name != kImport || scene.programs > 0) return;
    const bool has_run = scene.device.kernel().next_process_id != next_process_;
    const std::string& file = call.arguments->at(1);
    const bool is_plain = has_run && !another_imports_ && call.undisturbed();
    if (is_plain && call.returned() && call.outcome->code == 0) {
      Met();
      const std::uint32_t sum = ChecksumOfFile(scene, call.arguments->at(0) + '\\' + file);
      if (scene.Dword(kChecksums, file) != sum) {
        Violated(fmt::format("{} is imported, and its checksum {:#x} is not stored", file, sum));
      }
    }
    const Values now = Read(scene);
    if (now == checksums_) return;
    Met();
    if (!has_run) Violated("a checksum has changed without an import");
    if (call.returned() && call.outcome->code != 0) {
      Violated(fmt::format("the import of {} has failed, and its checksum is stored", file));
    }
    if (call.alone && Without(file, now) != Without(file, checksums_)) {
      Violated(fmt::format("the import of {} changes another's", file));
    }
    checksums_ = now;
  }

  void RegistryChanged(Scene& scene) override {
    if (scene.running > 0) return;  // an import's checksum is stored before its call ends
    if (Read(scene) != checksums_) Violated("a checksum has changed without its import");
  }

  static Values Without(const std::string& file, Values values) {
    std::erase_if(values, [name = sim::ToUtf16(file)](const auto& value) {
      return sim::EqualNoCase(value.first, name);
    });
    return values;
  }

  static Values Read(const Scene& scene) {
    Values values;
    const auto key = scene.registry().Find(kChecksums);
    if (key == nullptr) return values;
    for (const sim::RegistryValue& value : key->values()) values.emplace(value.name, value.data);
    return values;
  }

  Values checksums_;
  std::uint32_t next_process_ = 0;  // when the import began
  bool another_imports_ = false;    // then
};

std::string BytesOf(std::u16string_view text) {
  std::string bytes;
  for (const char16_t unit : text) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

std::string Sha1(const std::string& bytes) {
  boost::uuids::detail::sha1 hash;
  hash.process_bytes(bytes.data(), bytes.size());
  boost::uuids::detail::sha1::digest_type words{};
  hash.get_digest(words);
  std::string digest;
  for (const unsigned int word : words) {
    for (const unsigned shift : {24U, 16U, 8U, 0U}) digest += static_cast<char>(word >> shift);
  }
  return digest;
}

// Empty where there is no such value.
std::string ValueOf(Scene& scene, const std::string& key, std::string_view name) {
  const sim::RegistryValue* value = scene.registry().FindValue(key, name);
  return value == nullptr ? std::string() : std::string(value->data.begin(), value->data.end());
}

bool IsRight(Scene& scene, const std::string& member, const std::string& password) {
  const std::string key = R"(HKLM\Software\Dravonel\SN\)" + member;
  const std::string salt = ValueOf(scene, key, "s");
  const std::string hash = ValueOf(scene, key, "h");
  const std::string text = IsNull(password) ? "" : password;
  if (salt.empty() || hash.empty()) return text.empty();
  return Sha1(salt + BytesOf(sim::ToUtf16(text))) == hash;
}

// Of a member whose key cannot be opened, or whose value is missing, the empty password is right.
bool SeemsToBeMissing(const Scene& scene, const WatchedCall& call) {
  return std::ranges::count(scene.FailedIn(call), sim::CallId::RegOpenKeyExW) != 0 ||
         (call.faults > 0 &&
          std::ranges::count(call.process->errors_of_call(), ERROR_FILE_NOT_FOUND) != 0);
}

class WrongPasswordsAreWrong : public Property {
  void CallEnds(Scene& scene, const WatchedCall& call) override {
    constexpr std::uint32_t kRight = 0;
    if (call.name != "PALSecurity_CheckPx" || !call.returned() || !call.alone) return;
    const std::string& password = call.arguments->at(1);
    if (IsRight(scene, call.arguments->at(0), password)) return;
    const bool is_empty = password.empty() || IsNull(password);
    if (is_empty && SeemsToBeMissing(scene, call)) return;
    Met();
    if (call.outcome->code == kRight) {
      Violated(fmt::format("a wrong password of '{}' is right", call.arguments->at(0)));
    }
  }
};

constexpr std::array kSecurityRows{
    PropertyRow{"commands-keep-their-rest",
                "A CAB package's command changes in its first seven characters only.",
                &Make<CommandsKeepTheirRest>},
    PropertyRow{"checksums-follow-imports",
                "The checksum of a registry file changes only with its import.",
                &Make<ChecksumsFollowImports>},
    PropertyRow{"wrong-passwords-are-wrong", "A wrong password is never right, whatever fails.",
                &Make<WrongPasswordsAreWrong>},
};

}  // namespace

std::span<const PropertyRow> SecurityProperties() {
  return kSecurityRows;
}

}  // namespace palsim
