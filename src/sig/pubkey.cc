#include "sig/pubkey.h"

#include "sig/sig_handles.h"

namespace runner {

void freePubKey(const ModeId& mode, const CryptEngine& engine, PubKey key) {
  if (key == nullptr) return;
  if (engine == CryptEngine::GNUTLS) {
    gnutls_pubkey_deinit(asGnutlsKey(key));
    return;
  }
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

}  // namespace runner
