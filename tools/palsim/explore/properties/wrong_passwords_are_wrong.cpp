#include <fmt/format.h>

#include <algorithm>
#include <boost/uuid/detail/sha1.hpp>

#include "platform/sim/text.h"
#include "platform/wince.h"
#include "tools/palsim/argument.h"
#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"

namespace palsim {
namespace {

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
bool SeemsToBeMissing(Scene& scene, const WatchedCall& call) {
  if (call.faults == 0) return false;
  const std::vector<std::string> faulted = scene.device().faulted_calls();
  return std::ranges::count(faulted, "RegOpenKeyExW") != 0 ||
         std::ranges::count(call.process->errors_of_call(), ERROR_FILE_NOT_FOUND) != 0;
}

class Passwords : public Property {
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

}  // namespace

std::unique_ptr<Property> WrongPasswordsAreWrong() {
  return std::make_unique<Passwords>();
}

}  // namespace palsim
