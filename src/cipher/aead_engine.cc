#include "cipher/aead_engine.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "cipher/cipher_handles.h"
#include "text/diagnostics.h"

namespace runner {
namespace {

using Tag = std::array<std::uint8_t, kTagLength>;

// compute_gnutls turns the input into the output and writes the tag that belongs to both. Returns 0
// or, after a line on standard output, the error code.
int compute_gnutls(const GnutlsDirection& direction, const TestConfig& config, AeadParams& params,
                   std::uint8_t* tag) {
  const auto algorithm =
      byKeyLength(config.keyLength, GNUTLS_CIPHER_AES_128_GCM, GNUTLS_CIPHER_AES_256_GCM);
  const gnutls_datum_t key = datum(params.key.data(), config.keyLength);
  const gnutls_datum_t iv = datum(params.iv.data(), params.ivLength);
  gnutls_cipher_hd_t raw = nullptr;
  int result = gnutls_cipher_init(&raw, algorithm, &key, &iv);
  if (result < 0) return failWithCode(direction.name, "initialize error!!", result);
  const CipherHandle handle(raw);

  const std::size_t aadSize = sizeOf(params.aadLength);
  result = gnutls_cipher_add_auth(handle.get(), params.aad.data(), aadSize);
  if (result < 0) return failWithCode(direction.name, "setting AAD error!!", result);

  const std::size_t size = sizeOf(params.inputLength);
  params.outputLength = params.inputLength;
  result = direction.compute(handle.get(), params.input.data(), size, params.output.data(), size);
  if (result < 0) return failWithCode(direction.name, direction.error, result);

  result = gnutls_cipher_tag(handle.get(), tag, kTagLength);
  if (result < 0) return failWithCode(direction.name, "getting tag error!!", result);
  return 0;
}

struct OpensslDirection {
  const char* name;
  int (*init)(EVP_CIPHER_CTX*, const EVP_CIPHER*, ENGINE*, const unsigned char*,
              const unsigned char*);
  int (*update)(EVP_CIPHER_CTX*, unsigned char*, int*, const unsigned char*, int);
  const char* aadError;
  const char* textError;
};

// compute_openssl runs the steps up to the text in a new `context`, null if there was no memory for
// one, and sets outputLength. Returns 0, or -1 after a line on standard output.
int compute_openssl(const OpensslDirection& direction, EVP_CIPHER_CTX* context,
                    const TestConfig& config, AeadParams& params) {
  if (context == nullptr) return failIn(direction.name, "context create error!!");
  const EVP_CIPHER* const cipher =
      byKeyLength(config.keyLength, EVP_aes_128_gcm(), EVP_aes_256_gcm());
  if (direction.init(context, cipher, nullptr, nullptr, nullptr) != kOpensslOk) {
    return failIn(direction.name, "initialization error!!");
  }
  if (EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_GCM_SET_IVLEN, params.ivLength, nullptr) !=
      kOpensslOk) {
    return failIn(direction.name, "SET_IVLEN error!!");
  }
  if (direction.init(context, nullptr, nullptr, params.key.data(), params.iv.data()) !=
      kOpensslOk) {
    return failIn(direction.name, "setting key/IV error!!");
  }
  int updated = 0;
  if (direction.update(context, nullptr, &updated, params.aad.data(), params.aadLength) !=
      kOpensslOk) {
    return failIn(direction.name, direction.aadError);
  }
  if (direction.update(context, params.output.data(), &updated, params.input.data(),
                       params.inputLength) != kOpensslOk) {
    return failIn(direction.name, direction.textError);
  }
  params.outputLength = updated;
  return 0;
}

// discardOutput clears what was decrypted and not verified.
void discardOutput(AeadParams& params) {
  const std::size_t size = sizeOf(params.inputLength);
  std::ranges::fill(params.output.bytes().first(size), std::uint8_t{0});
}

}  // namespace

int execAeadEncrypt(const TestConfig& config, AeadParams& params) {
  switch (config.engine) {
    case CryptEngine::GNUTLS:
      return aead_encrypt_gnutls(config, params);
    case CryptEngine::OPENSSL:
      return aead_encrypt_openssl(config, params);
    default:
      return failIn("execAeadEncrypt", "unsupported crypt engine!!");
  }
}

int execAeadDecrypt(const TestConfig& config, AeadParams& params) {
  switch (config.engine) {
    case CryptEngine::GNUTLS:
      return aead_decrypt_gnutls(config, params);
    case CryptEngine::OPENSSL:
      return aead_decrypt_openssl(config, params);
    default:
      return failIn("execAeadDecrypt", "unsupported crypt engine!!");
  }
}

int aead_encrypt_gnutls(const TestConfig& config, AeadParams& params) {
  constexpr GnutlsDirection kEncryption{"aead_encrypt_gnutls", gnutls_cipher_encrypt2,
                                        "encrypt error!!"};
  const int result = compute_gnutls(kEncryption, config, params, params.tag.data());
  return result < 0 ? result : params.inputLength;
}

int aead_decrypt_gnutls(const TestConfig& config, AeadParams& params) {
  constexpr GnutlsDirection kDecryption{"aead_decrypt_gnutls", gnutls_cipher_decrypt2,
                                        "decrypt error!!"};
  Tag computed{};
  const int result = compute_gnutls(kDecryption, config, params, computed.data());
  if (result < 0 || std::memcmp(computed.data(), params.tag.data(), kTagLength) != 0) {
    discardOutput(params);
    return result;
  }
  params.tagValid = 1;
  return params.inputLength;
}

int aead_encrypt_openssl(const TestConfig& config, AeadParams& params) {
  constexpr OpensslDirection kEncryption{"aead_encrypt_openssl", EVP_EncryptInit_ex,
                                         EVP_EncryptUpdate, "setting AAD error!!",
                                         "encryption error!!"};
  const CipherContext context(EVP_CIPHER_CTX_new());
  if (compute_openssl(kEncryption, context.get(), config, params) < 0) return -1;
  int finished = 0;
  if (EVP_EncryptFinal_ex(context.get(), params.output.data() + params.outputLength, &finished) !=
      kOpensslOk) {
    return failIn(kEncryption.name, "finalize error!!");
  }
  params.outputLength += finished;
  if (EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_GET_TAG, kTagLength, params.tag.data()) !=
      kOpensslOk) {
    return failIn(kEncryption.name, "getting tag error!!");
  }
  return params.outputLength;
}

int aead_decrypt_openssl(const TestConfig& config, AeadParams& params) {
  constexpr OpensslDirection kDecryption{"aead_decrypt_openssl", EVP_DecryptInit_ex,
                                         EVP_DecryptUpdate, "updating by AAD error!!",
                                         "decryption error!!"};
  const CipherContext context(EVP_CIPHER_CTX_new());
  if (compute_openssl(kDecryption, context.get(), config, params) < 0) {
    discardOutput(params);
    return -1;
  }
  if (EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_SET_TAG, kTagLength, params.tag.data()) !=
      kOpensslOk) {
    discardOutput(params);
    return failIn(kDecryption.name, "setting tag error!!");
  }
  int finished = 0;
  params.tagValid = EVP_DecryptFinal_ex(context.get(), nullptr, &finished);
  if (params.tagValid <= 0) {
    discardOutput(params);
    params.outputLength = 0;
    return 0;
  }
  params.outputLength += finished;
  return params.outputLength;
}

}  // namespace runner
