#include "cipher/aes_engine.h"

#include "cipher/cipher_handles.h"
#include "text/diagnostics.h"

namespace runner {
namespace {

int compute_gnutls(const GnutlsDirection& direction, const TestConfig& config,
                   const std::uint8_t* in, int len, const std::uint8_t* key, const std::uint8_t* iv,
                   std::uint8_t* out) {
  if (config.mode == ModeId::ECB) return failWith("not supported!!");
  const auto algorithm =
      byKeyLength(config.keyLength, GNUTLS_CIPHER_AES_128_CBC, GNUTLS_CIPHER_AES_256_CBC);
  const gnutls_datum_t keyDatum = datum(key, config.keyLength);
  const gnutls_datum_t ivDatum = datum(iv, kBlockLength);
  gnutls_cipher_hd_t raw = nullptr;
  if (const int result = gnutls_cipher_init(&raw, algorithm, &keyDatum, &ivDatum); result < 0) {
    return failWithCode(direction.name, "initialize error!!", result);
  }
  const CipherHandle handle(raw);
  const std::size_t size = sizeOf(len);
  if (direction.compute(handle.get(), in, size, out, size) < 0) {
    failIn(direction.name, direction.error);
  }
  return len;
}

const EVP_CIPHER* chooseCipher(ModeId mode, int keyLength) {
  return mode == ModeId::ECB ? byKeyLength(keyLength, EVP_aes_128_ecb(), EVP_aes_256_ecb())
                             : byKeyLength(keyLength, EVP_aes_128_cbc(), EVP_aes_256_cbc());
}

bool hasNull(const TestConfig* config, const std::uint8_t* in, const std::uint8_t* key,
             const std::uint8_t* iv, const std::uint8_t* out) {
  return config == nullptr || in == nullptr || key == nullptr || iv == nullptr || out == nullptr;
}

}  // namespace

int execEncrypt(const TestConfig* config, const std::uint8_t* in, int len, const std::uint8_t* key,
                const std::uint8_t* iv, std::uint8_t* out) {
  if (hasNull(config, in, key, iv, out)) return failIn("execEncrypt", "illegal pointer!!");
  switch (config->engine) {
    case CryptEngine::GNUTLS:
      return encrypt_gnutls(config, in, len, key, iv, out);
    case CryptEngine::OPENSSL:
      return encrypt_openssl(config->mode, in, len, key, config->keyLength, iv, out);
    case CryptEngine::HDD:
    case CryptEngine::KERNEL_CRYPT_API:
      return -1;
    default:
      return failIn("execEncrypt", "unsupported crypt engine!!");
  }
}

int execDecrypt(const TestConfig* config, const std::uint8_t* in, int len, const std::uint8_t* key,
                const std::uint8_t* iv, std::uint8_t* out) {
  if (hasNull(config, in, key, iv, out)) return failIn("execDecrypt", "illegal pointer!!");
  switch (config->engine) {
    case CryptEngine::GNUTLS:
      return decrypt_gnutls(config, in, len, key, iv, out);
    case CryptEngine::OPENSSL:
      return decrypt_openssl(config->mode, in, len, key, config->keyLength, iv, out);
    case CryptEngine::HDD:
      return 1;
    case CryptEngine::KERNEL_CRYPT_API:
      return -1;
    default:
      return failIn("execDecrypt", "not supported crypt engine!!");
  }
}

int encrypt_gnutls(const TestConfig* config, const std::uint8_t* in, int len,
                   const std::uint8_t* key, const std::uint8_t* iv, std::uint8_t* out) {
  constexpr GnutlsDirection kEncryption{"encrypt_gnutls", gnutls_cipher_encrypt2,
                                        "encrypt error!!"};
  return compute_gnutls(kEncryption, *config, in, len, key, iv, out);
}

int decrypt_gnutls(const TestConfig* config, const std::uint8_t* in, int len,
                   const std::uint8_t* key, const std::uint8_t* iv, std::uint8_t* out) {
  constexpr GnutlsDirection kDecryption{"decrypt_gnutls", gnutls_cipher_decrypt2,
                                        "decrypt error!!"};
  return compute_gnutls(kDecryption, *config, in, len, key, iv, out);
}

int encrypt_openssl(ModeId mode, const std::uint8_t* in, int len, const std::uint8_t* key,
                    int keyLength, const std::uint8_t* iv, std::uint8_t* out) {
  constexpr const char* kName = "encrypt_openssl";
  const CipherContext context(EVP_CIPHER_CTX_new());
  if (!context) return failIn(kName, "context create error!!");
  if (EVP_EncryptInit_ex(context.get(), chooseCipher(mode, keyLength), nullptr, key, iv) !=
      kOpensslOk) {
    return failIn(kName, "initialization error!!");
  }
  int updated = 0;
  if (EVP_EncryptUpdate(context.get(), out, &updated, in, len) != kOpensslOk) {
    return failIn(kName, "encrypt error!!");
  }
  int finished = 0;
  if (EVP_EncryptFinal_ex(context.get(), out + updated, &finished) != kOpensslOk) {
    return failIn(kName, "finalize error!!");
  }
  const bool wholeBlocks = len % static_cast<int>(kBlockLength) == 0;
  return wholeBlocks ? updated : updated + finished;
}

int decrypt_openssl(ModeId mode, const std::uint8_t* in, int len, const std::uint8_t* key,
                    int keyLength, const std::uint8_t* iv, std::uint8_t* out) {
  constexpr const char* kName = "decrypt_openssl";
  const CipherContext context(EVP_CIPHER_CTX_new());
  if (!context) return failIn(kName, "context create error!!");
  if (EVP_DecryptInit_ex(context.get(), chooseCipher(mode, keyLength), nullptr, key, iv) !=
      kOpensslOk) {
    return failIn(kName, "initialization error!!");
  }
  EVP_CIPHER_CTX_set_padding(context.get(), 0);
  int updated = 0;
  if (EVP_DecryptUpdate(context.get(), out, &updated, in, len) != kOpensslOk) {
    return failIn(kName, "decrypt error!!");
  }
  int finished = 0;
  if (EVP_DecryptFinal_ex(context.get(), out + updated, &finished) != kOpensslOk) {
    return failIn(kName, "finalize error!!");
  }
  return updated + finished;
}

}  // namespace runner
