#include "sig/rsa_engine.h"

#include <cstdio>
#include <utility>

#include "sig/sig_handles.h"
#include "sig/signature_primitives.h"
#include "text/diagnostics.h"

namespace runner {
namespace {

int makeRsaKey_gnutls(OwnedPubKey& keyOut, std::span<const std::uint8_t> modulus,
                      std::span<const std::uint8_t> exponent) {
  GnutlsKey key = newGnutlsKey();
  if (!key) return -1;
  const gnutls_datum_t n = datum(modulus);
  const gnutls_datum_t e = datum(exponent);
  if (const int result = gnutls_pubkey_import_rsa_raw(key.get(), &n, &e); result != 0) {
    std::printf("pubkey_import_rsa_raw failed!! ret:%d\n", result);
    return -1;
  }
  keyOut = ownPubKey(std::move(key));
  return 0;
}

int makeRsaKey_openssl(OwnedPubKey& keyOut, std::span<const std::uint8_t> modulus,
                       std::span<const std::uint8_t> exponent) {
  RsaKey key(RSA_new());
  if (!key) return failWith("creating RSA instance failed!!");
  BigNumber n = bigNumber(modulus);
  BigNumber e = bigNumber(exponent);
  if (!n || !e) return -1;
  if (RSA_set0_key(key.get(), n.get(), e.get(), nullptr) == 0) return -1;
  (void)n.release();
  (void)e.release();
  keyOut = ownPubKey(std::move(key));
  return 0;
}

int verifyRsa_openssl(HashId hashId, PubKey key, std::span<const std::uint8_t> message,
                      std::span<const std::uint8_t> signature) {
  const auto digest = digestMessage(hashId, message);
  if (!digest) return -1;
  const int result =
      RSA_verify(digest->nid, digest->bytes.data(), static_cast<unsigned>(digest->length),
                 signature.data(), static_cast<unsigned>(signature.size()), asRsa(key));
  return result != 0 ? kVerified : kNotVerified;
}

}  // namespace

int makeRsaKey(CryptEngine engine, OwnedPubKey& keyOut, std::span<const std::uint8_t> modulus,
               std::span<const std::uint8_t> exponent) {
  keyOut.reset();
  switch (engine) {
    case CryptEngine::GNUTLS:
      return makeRsaKey_gnutls(keyOut, modulus, exponent);
    default:  // any other engine is OpenSSL here
      return makeRsaKey_openssl(keyOut, modulus, exponent);
  }
}

int verifyRsa(const TestConfig& config, PubKey key, std::span<const std::uint8_t> message,
              std::span<const std::uint8_t> signature) {
  switch (config.engine) {
    case CryptEngine::GNUTLS:
      return verify_gnutls(config, key, message, signature);
    default:  // any other engine is OpenSSL here
      return verifyRsa_openssl(config.hashId, key, message, signature);
  }
}

}  // namespace runner
