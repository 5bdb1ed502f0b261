#include "check/library_versions.h"

#include <gnutls/gnutls.h>
#include <openssl/crypto.h>

namespace runner {

std::string libraryVersions() {
  return std::string("GnuTLS ") + gnutls_check_version(nullptr) + ", OpenSSL " +
         OpenSSL_version(OPENSSL_VERSION_STRING);
}

}  // namespace runner
