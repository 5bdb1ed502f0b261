#include "ec/ec_key.h"

#include <openssl/err.h>

#include <array>
#include <cstdio>
#include <utility>

#include "ec/curve_lookup.h"
#include "ec/curve_state.h"
#include "ec/curve_table.h"
#include "sig/openssl_error.h"
#include "sig/sig_handles.h"
#include "text/diagnostics.h"
#include "text/owner.h"

namespace runner {
namespace {

using EcGroup = Owner<EC_GROUP, EC_GROUP_free>;

const CurveParams& curveAt(int index) { return curveTable[static_cast<std::size_t>(index)]; }

// recordQueuedErrors empties OpenSSL's error queue, with a line for each error.
void recordQueuedErrors() {
  std::array<char, 256> text{};
  while (const unsigned long code = ERR_get_error()) {
    recordOpensslError(code);
    ERR_error_string_n(code, text.data(), text.size());
    std::printf("  %s\n", text.data());
  }
}

int importEcPoint_gnutls(OwnedPubKey& keyOut, std::span<const std::uint8_t> x,
                         std::span<const std::uint8_t> y, int curveIndex) {
  GnutlsKey key = newGnutlsKey();
  if (!key) return -1;
  const gnutls_datum_t xDatum = datum(x);
  const gnutls_datum_t yDatum = datum(y);
  const auto curve = static_cast<gnutls_ecc_curve_t>(curveAt(curveIndex).gnutlsId);
  const int result = gnutls_pubkey_import_ecc_raw(key.get(), curve, &xDatum, &yDatum);
  if (result < 0) {
    std::printf("pubkey_import_ecc_raw failed(%d)!!\n", result);
    return -1;
  }
  keyOut = ownPubKey(std::move(key));
  return 0;
}

}  // namespace

int importEcPublicKey(CryptEngine engine, OwnedPubKey& keyOut, const EcParams& params) {
  keyOut.reset();
  if (curveLookupPending != 0) {
    curveId = findCurve(params);
    std::printf("curveid: %d\n", curveId);
  }
  if (curveId < 0) return -1;
  const auto point = splitPoint(params[SLOT_Q]);
  if (!point) return failWith("Unsupported format of a public key!!");
  return importEcPoint(engine, keyOut, point->x, point->y, curveId);
}

int importEcPoint(CryptEngine engine, OwnedPubKey& keyOut, std::span<const std::uint8_t> x,
                  std::span<const std::uint8_t> y, int curveIndex) {
  keyOut.reset();
  switch (engine) {
    case CryptEngine::GNUTLS:
      return importEcPoint_gnutls(keyOut, x, y, curveIndex);
    case CryptEngine::OPENSSL:
      return makeEcKey(keyOut, x, y, curveIndex);
    default:
      return failWith("unsupported engine!!");
  }
}

int makeEcKey(OwnedPubKey& keyOut, std::span<const std::uint8_t> x, std::span<const std::uint8_t> y,
              int curveIndex) {
  keyOut.reset();
  EcKey key(EC_KEY_new());
  if (!key) return failWith("EC_KEY_new failed!!");
  const EcGroup group(EC_GROUP_new_by_curve_name(curveAt(curveIndex).opensslNid));
  if (!group) return failWith("EC_GROUP_new failed!!");
  if (EC_KEY_set_group(key.get(), group.get()) != 1) return failWith("EC_KEY_set_group failed!!");
  const BigNumber xNumber = bigNumber(x);
  const BigNumber yNumber = bigNumber(y);
  ERR_clear_error();
  if (EC_KEY_set_public_key_affine_coordinates(key.get(), xNumber.get(), yNumber.get()) != 1) {
    failWith("EC_KEY_set_public_key failed!!");
    recordQueuedErrors();
    return -1;
  }
  keyOut = ownPubKey(std::move(key));
  return 0;
}

}  // namespace runner
