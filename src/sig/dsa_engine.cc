#include "sig/dsa_engine.h"

#include <openssl/err.h>

#include <utility>

#include "sig/openssl_error.h"
#include "sig/sig_handles.h"
#include "sig/signature_primitives.h"
#include "text/diagnostics.h"

namespace runner {
namespace {

int makeDsaKey_gnutls(OwnedPubKey& keyOut, const DsaKeyValues& values) {
  GnutlsKey key = newGnutlsKey();
  if (!key) return -1;
  const gnutls_datum_t p = datum(values.p);
  const gnutls_datum_t q = datum(values.q);
  const gnutls_datum_t g = datum(values.g);
  const gnutls_datum_t y = datum(values.y);
  if (gnutls_pubkey_import_dsa_raw(key.get(), &p, &q, &g, &y) != 0) {
    return failWith("pubkey_import_dsa_raw failed!!");
  }
  keyOut = ownPubKey(std::move(key));
  return 0;
}

int makeDsaKey_openssl(OwnedPubKey& keyOut, const DsaKeyValues& values) {
  DsaKey key(DSA_new());
  if (!key) return failWith("creating DSA instance failed!!");
  BigNumber p = bigNumber(values.p);
  BigNumber q = bigNumber(values.q);
  BigNumber g = bigNumber(values.g);
  BigNumber y = bigNumber(values.y);
  if (!p || !q || !g || !y) return -1;
  if (DSA_set0_pqg(key.get(), p.get(), q.get(), g.get()) == 0) return -1;
  (void)p.release();
  (void)q.release();
  (void)g.release();
  if (DSA_set0_key(key.get(), y.get(), nullptr) == 0) return -1;
  (void)y.release();
  keyOut = ownPubKey(std::move(key));
  return 0;
}

int verifyDsa_openssl(HashId hashId, PubKey key, std::span<const std::uint8_t> message,
                      std::span<const std::uint8_t> r, std::span<const std::uint8_t> s) {
  const auto digest = digestMessage(hashId, message);
  if (!digest) return -1;
  const Buffer encoding = encodeForVerify(r, s);
  if (encoding.size() == 0) return -1;
  ERR_clear_error();
  const int result = DSA_verify(digest->nid, digest->bytes.data(), static_cast<int>(digest->length),
                                encoding.data(), static_cast<int>(encoding.size()), asDsa(key));
  if (result == -1) reportVerifyError("DSA_verify");
  return result == 1 ? kVerified : kNotVerified;
}

}  // namespace

int makeDsaKey(CryptEngine engine, OwnedPubKey& keyOut, const DsaKeyValues& values) {
  keyOut.reset();
  switch (engine) {
    case CryptEngine::GNUTLS:
      return makeDsaKey_gnutls(keyOut, values);
    default:  // any other engine is OpenSSL here
      return makeDsaKey_openssl(keyOut, values);
  }
}

int verifyDsa(const TestConfig& config, PubKey key, std::span<const std::uint8_t> message,
              std::span<const std::uint8_t> r, std::span<const std::uint8_t> s) {
  switch (config.engine) {
    case CryptEngine::GNUTLS:
      return verifyPair_gnutls(config, key, message, r, s);
    default:  // any other engine is OpenSSL here
      return verifyDsa_openssl(config.hashId, key, message, r, s);
  }
}

}  // namespace runner
