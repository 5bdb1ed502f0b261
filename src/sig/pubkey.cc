#include "sig/pubkey.h"

#include "sig/sig_handles.h"

namespace runner {
namespace {

void freePubKey_openssl(ModeId mode, PubKey key) {
  switch (mode) {
    case ModeId::DSA:
      DSA_free(asDsa(key));
      break;
    case ModeId::ECDSA:
      EC_KEY_free(asEcKey(key));
      break;
    case ModeId::RSASSA:
      RSA_free(asRsa(key));
      break;
    default:
      break;
  }
}

}  // namespace

void freePubKey(const ModeId& mode, const CryptEngine& engine, PubKey key) {
  if (key == nullptr) return;
  switch (engine) {
    case CryptEngine::GNUTLS:
      gnutls_pubkey_deinit(asGnutlsKey(key));
      break;
    default:  // any other engine is OpenSSL here
      freePubKey_openssl(mode, key);
      break;
  }
}

}  // namespace runner
