#ifndef RUNNER_EC_POINT_CHECK_H_
#define RUNNER_EC_POINT_CHECK_H_

#include "driver/test_config.h"
#include "sig/pubkey.h"

namespace runner {

// checkPoint tells whether a key that importEcPublicKey made is a valid public key of its curve:
// 0 when it is, 1 when it is not. OpenSSL has checked the point when it made the key. A GnuTLS
// library without gnutls_pubkey_verify_params prints "gnutls_pubkey_verify_params is not
// supported!!", and no key is valid. Any other engine prints "unsupported engine!!" and returns -1.
[[nodiscard]] int checkPoint(CryptEngine engine, PubKey key);

}  // namespace runner

#endif  // RUNNER_EC_POINT_CHECK_H_
