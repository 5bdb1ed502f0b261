#include "sig/openssl_error.h"

#include <openssl/ec.h>
#include <openssl/err.h>

#include <array>
#include <cstdio>

namespace runner {
namespace {

constexpr std::size_t kErrorTextCapacity = 256;

// inOldLayout rewrites the two codes that are compared with. OpenSSL 3 has no function numbers, and
// counts a bad ECDSA signature among the errors of the EC library.
unsigned long inOldLayout(unsigned long code) {
  if (ERR_GET_LIB(code) != ERR_LIB_EC) return code;
  switch (ERR_GET_REASON(code)) {
    case EC_R_POINT_IS_NOT_ON_CURVE:
      return kPointIsNotOnCurve;
    case EC_R_BAD_SIGNATURE:
      return kBadSignature;
    default:
      return code;
  }
}

}  // namespace

unsigned long lastOpensslError = 0;

void recordOpensslError(unsigned long code) { lastOpensslError = inOldLayout(code); }

void reportVerifyError(const char* operation) {
  const unsigned long code = ERR_get_error();
  recordOpensslError(code);
  std::array<char, kErrorTextCapacity> text{};
  ERR_error_string(code, text.data());
  std::printf("%s failed!!(%s)\n", operation, text.data());
}

}  // namespace runner
