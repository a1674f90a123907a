// The hash that is stored for a password.
#ifndef SECURITY_PASSWORD_HASH_H_
#define SECURITY_PASSWORD_HASH_H_

#include <span>

#include "frame/text.h"
#include "security/secret_bytes.h"

namespace pal {

// SHA-1 of the salt and of the password's characters. False where CryptoAPI fails, also where it
// has no key set yet: one is then created for the next call. Failures are traced, but not that of a
// provider that cannot be acquired for another reason.
[[nodiscard]] bool HashPassword(std::span<const BYTE> salt, WideText password, SecretBytes& hash);

// Takes the same time wherever the first difference is.
[[nodiscard]] bool AreEqualInConstantTime(std::span<const BYTE> left, std::span<const BYTE> right);

}  // namespace pal

#endif  // SECURITY_PASSWORD_HASH_H_
