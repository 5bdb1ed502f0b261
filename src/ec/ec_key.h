#ifndef RUNNER_EC_EC_KEY_H_
#define RUNNER_EC_EC_KEY_H_

#include <cstdint>
#include <span>

#include "driver/test_config.h"
#include "ec/ec_params.h"
#include "sig/pubkey.h"

// EC public keys of the engines. Each operation here fills `keyOut` and returns 0, or leaves it
// empty and returns -1. Coordinates are big-endian numbers; a curve index is one of curveTable.

namespace runner {

// importEcPublicKey makes the key of the point in SLOT_Q. While curveLookupPending is not 0 it
// first sets curveId to the curve that findCurve finds in the other slots, which it does not look
// at otherwise, and prints "curveid: %d". Without a curve it fails in silence; a point that is not
// uncompressed prints "Unsupported format of a public key!!", a base point that is not "Unsupported
// format of G!!"; for the rest see importEcPoint.
[[nodiscard]] int importEcPublicKey(CryptEngine engine, OwnedPubKey& keyOut,
                                    const EcParams& params);

// importEcPoint makes the key of the point (x, y). GnuTLS takes points off the curve too, but none
// with an empty or a zero coordinate, and prints "pubkey_import_ecc_raw failed(%d)!!" with its
// code, or "pubkey init failed!!". OpenSSL is makeEcKey. Any other engine prints "unsupported
// engine!!".
[[nodiscard]] int importEcPoint(CryptEngine engine, OwnedPubKey& keyOut,
                                std::span<const std::uint8_t> x, std::span<const std::uint8_t> y,
                                int curveIndex);

// makeEcKey makes OpenSSL's key of the point (x, y), which must lie on the curve. A refused point
// prints "EC_KEY_set_public_key failed!!" and the library's queued errors, two blanks and the text
// a line; lastOpensslError is left at the last of them. A curve that the installed library does not
// offer prints "EC_GROUP_new failed!!". Without memory it prints that, "EC_KEY_new failed!!" or
// "EC_KEY_set_group failed!!".
[[nodiscard]] int makeEcKey(OwnedPubKey& keyOut, std::span<const std::uint8_t> x,
                            std::span<const std::uint8_t> y, int curveIndex);

}  // namespace runner

#endif  // RUNNER_EC_EC_KEY_H_
