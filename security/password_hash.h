// The hash under which a password is kept.
#ifndef SECURITY_PASSWORD_HASH_H_
#define SECURITY_PASSWORD_HASH_H_

#include <span>

#include "frame/text.h"
#include "security/secret_bytes.h"

namespace pal {

// SHA-1 of the salt and of the password's characters. False where CryptoAPI fails or has no key set
// yet; in that case one is made for the next call. Every failure is traced but one: a provider that
// cannot be acquired for another reason than a missing key set.
[[nodiscard]] bool HashPassword(std::span<const BYTE> salt, WideText password, SecretBytes& hash);

// Takes the same time wherever the two differ.
[[nodiscard]] bool AreEqualInConstantTime(std::span<const BYTE> left, std::span<const BYTE> right);

}  // namespace pal

#endif  // SECURITY_PASSWORD_HASH_H_
