#include <gtest/gtest.h>
#include <openssl/core_names.h>
#include <openssl/dsa.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>

#include <memory>
#include <sstream>
#include <string>

#include "sig/sig_handles.h"
#include "support/exchange.h"
#include "support/run_request.h"

// Whole requests for every hash with every signature algorithm, every curve and both forms of a
// request. Keys and signatures are made by OpenSSL's EVP interface, which takes its algorithms by
// name. Each signature stands once with its message and once with another one.

namespace {

using runner::BigNumber;
using KeyPair = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;

constexpr runner::CryptEngine kEngines[] = {runner::CryptEngine::GNUTLS,
                                            runner::CryptEngine::OPENSSL};
const std::string kMessage = "0123456789";
const std::string kHashes[] = {"1", "224", "256", "384", "512"};

std::string numberText(const BIGNUM* number, std::size_t length) {
  std::string bytes(length, '\0');
  BN_bn2binpad(number, reinterpret_cast<unsigned char*>(bytes.data()), static_cast<int>(length));
  return hexText(bytes);
}

// numberOf returns a number of a key in hexadecimal, `length` bytes.
std::string numberOf(const KeyPair& key, const char* name, std::size_t length) {
  BIGNUM* number = nullptr;
  EXPECT_EQ(EVP_PKEY_get_bn_param(key.get(), name, &number), 1) << name;
  return numberText(BigNumber(number).get(), length);
}

// sign returns the signature of the message.
std::string sign(const KeyPair& key, const std::string& hash) {
  const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(),
                                                                        EVP_MD_CTX_free);
  const std::vector<std::uint8_t> message = fromHex(kMessage);
  std::string signature(512, '\0');
  std::size_t length = signature.size();
  EVP_DigestSignInit_ex(context.get(), nullptr, ("SHA" + hash).c_str(), nullptr, nullptr, key.get(),
                        nullptr);
  EXPECT_EQ(EVP_DigestSign(context.get(), reinterpret_cast<unsigned char*>(signature.data()),
                           &length, message.data(), message.size()),
            1);
  return signature.substr(0, length);
}

// setPair sets r and s of a signature, `length` bytes each. DSA and ECDSA have the same encoding.
void setPair(Values& values, const KeyPair& key, std::size_t length) {
  do {
    const std::string encoding = sign(key, values["hash"]);
    const auto* start = reinterpret_cast<const unsigned char*>(encoding.data());
    const std::unique_ptr<ECDSA_SIG, decltype(&ECDSA_SIG_free)> pair(
        d2i_ECDSA_SIG(nullptr, &start, static_cast<long>(encoding.size())), ECDSA_SIG_free);
    values["r"] = numberText(ECDSA_SIG_get0_r(pair.get()), length);
    values["s"] = numberText(ECDSA_SIG_get0_s(pair.get()), length);
    // OpenSSL's DSA refuses zero bytes in front.
  } while (values["r"].starts_with("00") || values["s"].starts_with("00"));
}

// expectVerdicts expects the same of both forms of a request; in the second one digits are lower
// case.
void expectVerdicts(const std::string& name, Values values, const std::string& curve) {
  const std::string done = curve + "procVerify finish normally\n";
  const std::string text = filledIn(name, values);
  for (auto& [key, value] : values) {
    for (char& digit : value) digit = static_cast<char>(digit < 'A' ? digit : digit | 0x20);
  }
  values["key lines"] = filledIn(name + " key", values);
  const std::string records = filledIn(name + " records", values);
  for (const auto engine : kEngines) {
    SCOPED_TRACE(values["hash"]);
    expectExchange(text, done, engine);
    expectExchange(records,
                   "hash: " + values["hash"] + "\nrequest size : 5\nmessage num : 2\n" + done,
                   engine);
  }
}

TEST(SignatureRows, RsaKnowsEveryHash) {
  const KeyPair key(EVP_RSA_gen(1024), EVP_PKEY_free);
  Values values{{"n", numberOf(key, OSSL_PKEY_PARAM_RSA_N, 128)}};
  for (const std::string& hash : kHashes) {
    values["hash"] = hash;
    values["signature"] = hexText(sign(key, hash));
    for (const auto engine : kEngines) {
      expectExchange(filledIn("rsa", values), "procVerify finish normally\n", engine);
    }
  }
}

TEST(SignatureRows, DsaKnowsEveryHash) {
  // The domain parameters of the example.
  std::istringstream example(fromHere(answerOf("dsa-2048-256-sha-256-verification"), "[PQG]\n"));
  example.ignore(6);
  Values values;
  const auto nextNumber = [&](const std::string& name) {
    example >> values[name];
    BIGNUM* number = nullptr;
    BN_hex2bn(&number, values[name].c_str());
    return number;
  };
  BIGNUM* const p = nextNumber("p");
  BIGNUM* const q = nextNumber("q");
  DSA* const dsa = DSA_new();
  DSA_set0_pqg(dsa, p, q, nextNumber("g"));
  const KeyPair key(EVP_PKEY_new(), EVP_PKEY_free);
  EVP_PKEY_assign_DSA(key.get(), dsa);
  ASSERT_EQ(DSA_generate_key(dsa), 1);
  values["key"] = values["y"] = numberText(DSA_get0_pub_key(dsa), 256);
  for (const std::string& hash : kHashes) {
    values["hash"] = hash;
    setPair(values, key, 32);
    expectVerdicts("dsa", values, "");
  }
}

TEST(SignatureRows, EcdsaKnowsEveryCurveAndHash) {
  const std::pair<std::string, std::size_t> curves[] = {
      {"192", 24}, {"224", 28}, {"256", 32}, {"384", 48}, {"521", 66}};
  for (int id = 0; id < 5; ++id) {
    const auto& [bits, length] = curves[id];
    SCOPED_TRACE(bits);
    const KeyPair key(EVP_EC_gen(("P-" + bits).c_str()), EVP_PKEY_free);
    std::string base(2 * length + 1, '\0');
    EVP_PKEY_get_octet_string_param(key.get(), OSSL_PKEY_PARAM_EC_GENERATOR,
                                    reinterpret_cast<unsigned char*>(base.data()), base.size(),
                                    nullptr);
    const std::string x = numberOf(key, OSSL_PKEY_PARAM_EC_PUB_X, length);
    const std::string y = numberOf(key, OSSL_PKEY_PARAM_EC_PUB_Y, length);
    Values values{{"curve", bits},
                  {"base", hexText(base)},
                  {"p", numberOf(key, OSSL_PKEY_PARAM_EC_P, length)},
                  {"a", numberOf(key, OSSL_PKEY_PARAM_EC_A, length)},
                  {"b", numberOf(key, OSSL_PKEY_PARAM_EC_B, length)},
                  {"order", numberOf(key, OSSL_PKEY_PARAM_EC_ORDER, length)},
                  {"x", x},
                  {"y", y},
                  {"key", "04" + x + y}};
    for (const auto engine : kEngines) {
      expectExchange(filledIn("public keys", values), "procChkPublicKey finish normally\n", engine);
    }
    for (const std::string& hash : kHashes) {
      values["hash"] = hash;
      setPair(values, key, length);
      expectVerdicts("ecdsa", values, "curveid: " + std::to_string(id) + "\n");
    }
  }
}

}  // namespace
