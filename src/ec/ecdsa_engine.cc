#include "ec/ecdsa_engine.h"

#include <openssl/err.h>

#include "sig/openssl_error.h"
#include "sig/sig_handles.h"
#include "sig/signature_primitives.h"
#include "text/diagnostics.h"
#include "text/owner.h"

namespace runner {
namespace {

using EcdsaSignature = Owner<ECDSA_SIG, ECDSA_SIG_free>;

// setIntegers gives the signature its integers. Returns false when there is no memory.
bool setIntegers(ECDSA_SIG* signature, std::span<const std::uint8_t> r,
                 std::span<const std::uint8_t> s) {
  BigNumber rNumber = bigNumber(r);
  BigNumber sNumber = bigNumber(s);
  if (ECDSA_SIG_set0(signature, rNumber.get(), sNumber.get()) != 1) return false;
  (void)rNumber.release();
  (void)sNumber.release();
  return true;
}

}  // namespace

int verifyEcdsa(const TestConfig& config, PubKey key, std::span<const std::uint8_t> message,
                std::span<const std::uint8_t> r, std::span<const std::uint8_t> s) {
  switch (config.engine) {
    case CryptEngine::GNUTLS:
      return verifyPair_gnutls(config, key, message, r, s);
    case CryptEngine::OPENSSL:
      return ecdsa_verify_openssl(config.hashId, key, message, r, s);
    default:
      return failWith("unsupported engine!!");
  }
}

int ecdsa_verify_openssl(HashId hashId, PubKey key, std::span<const std::uint8_t> message,
                         std::span<const std::uint8_t> r, std::span<const std::uint8_t> s) {
  const auto digest = digestMessage(hashId, message);
  if (!digest) return -1;
  const EcdsaSignature signature(ECDSA_SIG_new());
  if (!signature) return failWith("ECDSA_SIG_new() failed!!");
  if (!setIntegers(signature.get(), r, s)) return -1;
  ERR_clear_error();
  const int result = ECDSA_do_verify(digest->bytes.data(), static_cast<int>(digest->length),
                                     signature.get(), asEcKey(key));
  if (result == -1) reportVerifyError("ECDSA_verify");
  return result == 1 ? kVerified : kNotVerified;
}

}  // namespace runner
