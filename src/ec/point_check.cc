#include "ec/point_check.h"

#include "sig/sig_handles.h"
#include "text/diagnostics.h"

// GnuTLS has the function since 3.3.0. Bound weakly, it is null when the program is loaded with a
// library that lacks it.
// NOLINTNEXTLINE(readability-redundant-declaration): declared again to say so
extern "C" int gnutls_pubkey_verify_params(gnutls_pubkey_t key) __attribute__((weak));

namespace runner {

int checkPoint(CryptEngine engine, PubKey key) {
  if (engine == CryptEngine::OPENSSL) return 0;
  if (gnutls_pubkey_verify_params == nullptr) {
    failWith("gnutls_pubkey_verify_params is not supported!!");
    return 1;
  }
  return gnutls_pubkey_verify_params(asGnutlsKey(key)) == 0 ? 0 : 1;
}

}  // namespace runner
