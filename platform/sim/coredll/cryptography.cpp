// Calls that nothing simulates yet: they fail and are recorded as misuse, so that nothing pretends.
#include "platform/sim/coredll/call.h"

using sim::CallId;
using sim::NotSimulated;

BOOL CryptAcquireContextW(HCRYPTPROV* /*provider*/, LPCWSTR /*container*/,
                          LPCWSTR /*provider_name*/, DWORD /*type*/, DWORD /*flags*/) {
  return NotSimulated(CallId::CryptAcquireContextW, FALSE);
}

BOOL CryptCreateHash(HCRYPTPROV /*provider*/, ALG_ID /*algorithm*/, HCRYPTKEY /*key*/,
                     DWORD /*flags*/, HCRYPTHASH* /*hash*/) {
  return NotSimulated(CallId::CryptCreateHash, FALSE);
}

BOOL CryptHashData(HCRYPTHASH /*hash*/, const BYTE* /*data*/, DWORD /*bytes*/, DWORD /*flags*/) {
  return NotSimulated(CallId::CryptHashData, FALSE);
}

BOOL CryptGetHashParam(HCRYPTHASH /*hash*/, DWORD /*parameter*/, BYTE* /*data*/, DWORD* /*bytes*/,
                       DWORD /*flags*/) {
  return NotSimulated(CallId::CryptGetHashParam, FALSE);
}

BOOL CryptDestroyHash(HCRYPTHASH /*hash*/) {
  return NotSimulated(CallId::CryptDestroyHash, FALSE);
}

BOOL CryptReleaseContext(HCRYPTPROV /*provider*/, DWORD /*flags*/) {
  return NotSimulated(CallId::CryptReleaseContext, FALSE);
}
