#include <gnutls/abstract.h>
#include <openssl/ec.h>
#include <openssl/obj_mac.h>
#include <openssl/sha.h>

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "ec/ecdsa_verification.h"
#include "ec/public_key_validation.h"
#include "side_by_side.h"

// P-256 requests of the signature of RFC 6979, A.2.5, over "sample" with SHA-256, repeated, beside
// the engine calls that each repetition costs.

namespace {

using runner::CryptEngine;

constexpr int kRepetitions = 2000;

const std::string kDomain =
    "[Domain Parameter]\n"
    "FFFFFFFF00000001000000000000000000000000FFFFFFFFFFFFFFFFFFFFFFFF\n"
    "FFFFFFFF00000001000000000000000000000000FFFFFFFFFFFFFFFFFFFFFFFC\n"
    "5AC635D8AA3A93E7B3EBBD55769886BC651D06B0CC53B0F63BCE3C3E27D2604B\n"
    "046B17D1F2E12C4247F8BCE6E563A440F277037D812DEB33A0F4A13945D898C296"
    "4FE342E2FE1A7F9B8EE7EB4A7C0F9E162BCE33576B315ECECBB6406837BF51F5\n"
    "FFFFFFFF00000000FFFFFFFFFFFFFFFFBCE6FAADA7179E84F3B9CAC2FC632551\n"
    "1\n";
const std::string kX = "60FED4BA255A9D31C961EB74C6356D68C049B8923B61FA6CE669622E60F29FB6";
const std::string kY = "7903FE1008B8BC99A41AE9E95628BC64F2F1B20C2D7E9F5177A3C294D4462299";
const std::string kMessage = "73616D706C65";
const std::string kR = "EFD48B2AACB6A8FD1140DD9CD45E81D69D2C877B56AAF991C34D0EA84EAF3716";
const std::string kS = "F7CB1C942D657C41D436C7A1B6E29F65F3E900DBB9AFF4064DC4AB2F843ACDA8";

std::string list(const std::string& section, const std::string& line) {
  std::string text = section + "\n";
  for (int i = 0; i < kRepetitions; ++i) text += line + "\n";
  return text;
}

std::string validationRequest() {
  return kDomain + "[Number of Keys]\n" + std::to_string(kRepetitions) + "\n" +
         list("[Public Keys]", "04" + kX + kY);
}

std::string verificationRequest() {
  return kDomain + "[Bitlength of Plaintexts]\n48\n[Number of Plaintexts]\n" +
         std::to_string(kRepetitions) + "\n" + list("[Public Keys]", "04" + kX + kY) +
         list("[Plaintexts]", kMessage) + list("[Signatures]", kR + kS);
}

std::string binary(const std::string& hex) {
  std::string bytes;
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
  }
  return bytes;
}

const unsigned char* data(const std::string& bytes) {
  return reinterpret_cast<const unsigned char*>(bytes.data());
}

gnutls_datum_t datum(std::string& bytes) {
  return {reinterpret_cast<unsigned char*>(bytes.data()), static_cast<unsigned>(bytes.size())};
}

// withGnutls makes the key and uses it, again and again.
void withGnutls(const std::function<int(gnutls_pubkey_t)>& use) {
  std::string x = binary(kX), y = binary(kY);
  const gnutls_datum_t xDatum = datum(x), yDatum = datum(y);
  for (int i = 0; i < kRepetitions; ++i) {
    gnutls_pubkey_t key = nullptr;
    gnutls_pubkey_init(&key);
    gnutls_pubkey_import_ecc_raw(key, GNUTLS_ECC_CURVE_SECP256R1, &xDatum, &yDatum);
    benchmark::DoNotOptimize(use(key));
    gnutls_pubkey_deinit(key);
  }
}

void validateGnutls() { withGnutls(gnutls_pubkey_verify_params); }

void verifyGnutls() {
  std::string message = binary(kMessage);
  std::string signature = binary("3046022100" + kR + "022100" + kS);
  const gnutls_datum_t messageDatum = datum(message), signatureDatum = datum(signature);
  withGnutls([&](gnutls_pubkey_t key) {
    return gnutls_pubkey_verify_data2(key, GNUTLS_SIGN_ECDSA_SHA256, 0, &messageDatum,
                                      &signatureDatum);
  });
}

void withOpenssl(const std::function<int(EC_KEY*)>& use) {
  const std::string x = binary(kX), y = binary(kY);
  for (int i = 0; i < kRepetitions; ++i) {
    EC_KEY* const key = EC_KEY_new();
    EC_GROUP* const group = EC_GROUP_new_by_curve_name(NID_X9_62_prime256v1);
    EC_KEY_set_group(key, group);
    BIGNUM* const xNumber = BN_bin2bn(data(x), 32, nullptr);
    BIGNUM* const yNumber = BN_bin2bn(data(y), 32, nullptr);
    EC_KEY_set_public_key_affine_coordinates(key, xNumber, yNumber);
    BN_free(xNumber);
    BN_free(yNumber);
    EC_GROUP_free(group);
    benchmark::DoNotOptimize(use(key));
    EC_KEY_free(key);
  }
}

void validateOpenssl() {
  withOpenssl([](EC_KEY*) { return 0; });
}

void verifyOpenssl() {
  const std::string message = binary(kMessage), r = binary(kR), s = binary(kS);
  withOpenssl([&](EC_KEY* key) {
    std::array<unsigned char, SHA256_DIGEST_LENGTH> digest{};
    SHA256(data(message), message.size(), digest.data());
    ECDSA_SIG* const signature = ECDSA_SIG_new();
    ECDSA_SIG_set0(signature, BN_bin2bn(data(r), 32, nullptr), BN_bin2bn(data(s), 32, nullptr));
    const int result =
        ECDSA_do_verify(digest.data(), static_cast<int>(digest.size()), signature, key);
    ECDSA_SIG_free(signature);
    return result;
  });
}

using Procedure = int (*)(const runner::TestConfig&, const char*, const char*);

void runEc(benchmark::State& state, CryptEngine engine, const std::string& request,
           Procedure procedure, void (*bare)()) {
  const WorkFiles files(request);
  const runner::TestConfig config{
      .mode = runner::ModeId::ECDSA, .hashId = runner::HashId::SHA256, .engine = engine};
  compare(
      state, [&] { files.removeOutputs(); },
      [&] {
        files.copyRequest();
        bare();
      },
      [&] {
        if (procedure(config, files.request(), files.response()) != 0) {
          giveUp("the test failed");
        }
      });
}
BENCHMARK_CAPTURE(runEc, verifiedByGnutls, CryptEngine::GNUTLS, verificationRequest(),
                  runner::procVerifyEcdsa, verifyGnutls)
    ->Name("2000 ECDSA P-256 signatures, GnuTLS")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(runEc, validatedByGnutls, CryptEngine::GNUTLS, validationRequest(),
                  runner::procChkPublicKey, validateGnutls)
    ->Name("2000 P-256 public keys, GnuTLS")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(runEc, verifiedByOpenssl, CryptEngine::OPENSSL, verificationRequest(),
                  runner::procVerifyEcdsa, verifyOpenssl)
    ->Name("2000 ECDSA P-256 signatures, OpenSSL")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(runEc, validatedByOpenssl, CryptEngine::OPENSSL, validationRequest(),
                  runner::procChkPublicKey, validateOpenssl)
    ->Name("2000 P-256 public keys, OpenSSL")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
