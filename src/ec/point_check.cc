#include "ec/point_check.h"

#include "sig/sig_handles.h"
#include "text/diagnostics.h"

// GnuTLS has the function since 3.3.0. Bound weakly, it is null when the program is loaded with a
// library that lacks it.
// NOLINTNEXTLINE(readability-redundant-declaration): declared again to say so
extern "C" int gnutls_pubkey_verify_params(gnutls_pubkey_t key) __attribute__((weak));

namespace runner {
namespace {

int checkPoint_gnutls(PubKey key) {
  if (gnutls_pubkey_verify_params == nullptr) {
    failWith("gnutls_pubkey_verify_params is not supported!!");
    return kNotVerified;
  }
  return gnutls_pubkey_verify_params(asGnutlsKey(key)) == 0 ? kVerified : kNotVerified;
}

}  // namespace

int checkPoint(CryptEngine engine, PubKey key) {
  switch (engine) {
    case CryptEngine::GNUTLS:
      return checkPoint_gnutls(key);
    case CryptEngine::OPENSSL:  // checked when the key was made
      return kVerified;
    default:
      return failWith("unsupported engine!!");
  }
}

}  // namespace runner
