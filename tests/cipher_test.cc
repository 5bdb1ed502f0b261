#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "cipher/aead_engine.h"
#include "cipher/aes_engine.h"
#include "support/exchange.h"
#include "support/run_request.h"

// Whole requests for every mode, key length, direction and engine of AES and AES-GCM, with the
// values of vectors/aes.txt.

namespace {

using Bytes = std::vector<std::uint8_t>;

// With AES instructions GnuTLS goes by the length of a key, without them by the algorithm.
const std::string kWithoutInstructions = "GNUTLS_CPUID_OVERRIDE=0x1 " RUNNER_BINARY;

// valuesOf returns what stands behind the name of a row.
std::vector<std::string> valuesOf(const std::string& name) {
  std::vector<std::string> values;
  std::ifstream file(RUNNER_VECTORS "/aes.txt");
  for (std::string line; std::getline(file, line);) {
    if (!line.starts_with(name + ":")) continue;
    std::istringstream stream(line.substr(name.size() + 1));
    for (std::string value; stream >> value;) values.push_back(value);
  }
  EXPECT_FALSE(values.empty()) << name;
  return values;
}

// What is tested, and the values that both tests have.
struct CipherRun {
  CipherRun(const std::string& bits, const std::string& function)
      : row(bits == "192" ? " 128" : " " + bits),
        more(bits == "192" ? "0011223344556677" : ""),
        encrypts(function == "Encryption") {
    values = {{"bits", bits},
              {"function", function},
              {"in", encrypts ? "Plaintext" : "Ciphertext"},
              {"out", encrypts ? "Ciphertext" : "Plaintext"},
              {"mark", encrypts ? "=" : ""}};
  }
  void setText(const std::string& name, const std::string& text, const std::string& answer) {
    values[name + " in"] = encrypts ? text : answer;
    values[name + " out"] = encrypts ? answer : text;
  }

  // Of a key of 192 bits, OpenSSL reads those of AES-128 and no more.
  std::string row, more;
  bool encrypts;
  Values values;
};

std::string aesExchange(const std::string& mode, CipherRun run) {
  const std::string key = valuesOf("key" + run.row)[0] + run.more, text = valuesOf("text")[0];
  const std::vector<std::string> chain =
      valuesOf("mct " + mode + run.row + " " + run.values["function"]);
  run.values.merge(Values{{"mode", mode},
                          {"if CBC", mode == "CBC" ? "" : kLeftOut},
                          {"zero key", std::string(key.size(), '0')},
                          {"iv", valuesOf("iv")[0]},
                          {"MCT in", text.substr(0, 32)},
                          {"MCT out 1", chain[0]},
                          {"MCT out 2", chain[1]}});
  for (const std::string variant : {"Text", "Key", "GFSbox", "KeySbox"}) {
    const std::vector<std::string> values = valuesOf("kat " + variant + run.row);
    const bool ofKey = variant.starts_with("Key");
    run.values["variant"] = variant;
    run.values["key"] = values[0] + run.more;
    run.setText("text", ofKey ? std::string(32, '0') : values[0], values[1]);
    run.values["known answers"] +=
        filledIn(ofKey ? "known answer of a key" : "known answer of a text", run.values);
  }
  run.values["key"] = key;
  run.setText("MMT", text, valuesOf("mmt " + mode + run.row)[0]);
  return filledIn("aes", run.values);
}

// gcmExchange has one case for each length of an IV; in a decryption the last tag is a wrong one.
std::string gcmExchange(CipherRun run, const std::vector<std::string>& ivLengths) {
  const std::string key = valuesOf("gcm")[0];
  run.values["count"] = std::to_string(ivLengths.size());
  run.values["key"] = key + (run.values["bits"] == "256" ? key : run.more);
  run.values["aad"] = valuesOf("gcm")[1];
  std::string text = filledIn("gcm", run.values);
  for (const std::string& length : ivLengths) {
    const std::vector<std::string> values = valuesOf("gcm " + length + run.row);
    const bool isWrong = !run.encrypts && &length == &ivLengths.back();
    run.setText("text", valuesOf("gcm text")[0], values[0]);
    if (isWrong) run.values["text out"] = "INVALID";
    run.values["iv"] = valuesOf("gcm iv " + length)[0];
    run.values["tag"] = isWrong ? std::string(32, '0') : values[1];
    text += filledIn("gcm case", run.values);
  }
  return text;
}

TEST(CipherRows, GiveThePublishedAnswers) {
  constexpr auto kGnutls = runner::CryptEngine::GNUTLS, kOpenssl = runner::CryptEngine::OPENSSL;
  const std::string aesDone = example("aes-128-cbc-encryption", ".out");
  const std::string gcmDone = example("aes-128-gcm-encryption", ".out");
  for (const std::string bits : {"128", "192", "256"}) {
    for (const std::string function : {"Encryption", "Decryption"}) {
      SCOPED_TRACE(bits + " " + function);
      const CipherRun run(bits, function);
      expectExchange(aesExchange("ECB", run), aesDone, kOpenssl);
      expectExchange(aesExchange("CBC", run), aesDone, kOpenssl);
      expectExchange(gcmExchange(run, {"12", "32", "12"}), gcmDone, kOpenssl);
      if (bits == "192") continue;
      for (const std::string& command : {std::string(), kWithoutInstructions}) {
        expectExchange(aesExchange("CBC", run), aesDone, kGnutls, command);
        expectExchange(gcmExchange(run, {"12", "12"}), gcmDone, kGnutls, command);
      }
    }
  }
}

// What each direction prints and returns for zeros when one pointer is null, counted from 1, or
// none (0). The last engine is unknown.
TEST(AesEngine, SaysWhatItCannotDo) {
  const std::string noPointer =
      "execEncrypt : illegal pointer!!\nexecDecrypt : illegal pointer!!\n-1 -1";
  const struct {
    int engine, keyLength, len;
    std::string nulls, said;
  } cases[] = {
      {0, 16, 16, "12345", noPointer},
      {0, 16, 16, "0", "16 16"},
      {1, 16, 16, "0", "16 16"},
      {0, 20, 16, "0",
       "encrypt_gnutls : initialize error!!\ndecrypt_gnutls : initialize error!!\n-59 -59"},
      {1, 16, 15, "0", "decrypt_openssl : finalize error!!\n16 -1"},
      {2, 16, 16, "0", "-1 1"},
      {3, 16, 16, "0", "-1 -1"},
      {4, 16, 16, "0",
       "execEncrypt : unsupported crypt engine!!\n"
       "execDecrypt : not supported crypt engine!!\n-1 -1"},
  };
  const Bytes zeros(32);
  for (const auto& row : cases) {
    const runner::TestConfig config{.keyLength = row.keyLength,
                                    .mode = runner::ModeId::CBC,
                                    .engine = static_cast<runner::CryptEngine>(row.engine)};
    Bytes out(48, 0xEE);
    for (const char null : row.nulls) {
      const auto run = [&](auto* exec) {
        const auto at = [&](char place, auto* data) { return place == null ? nullptr : data; };
        return std::to_string(exec(at('1', &config), at('2', zeros.data()), row.len,
                                   at('3', zeros.data()), at('4', zeros.data()),
                                   at('5', out.data())));
      };
      testing::internal::CaptureStdout();
      std::string results = run(runner::execEncrypt);
      results += " " + run(runner::execDecrypt);
      EXPECT_EQ(testing::internal::GetCapturedStdout() + results, row.said) << row.engine;
    }
    EXPECT_TRUE(row.engine != 2 || out == Bytes(48, 0xEE));
  }
}

// Of a text whose tag is wrong nothing is left, nor of an earlier one when the IV is refused.
TEST(AeadEngine, ClearsWhatItCouldNotVerify) {
  for (const auto engine : {runner::CryptEngine::GNUTLS, runner::CryptEngine::OPENSSL}) {
    const runner::TestConfig config{.keyLength = 16, .engine = engine};
    runner::AeadParams params;
    params.inputLength = 60;
    for (runner::Buffer* const buffer :
         {&params.key, &params.input, &params.iv, &params.aad, &params.output, &params.tag}) {
      ASSERT_TRUE(buffer->allocate(60));
    }
    for (const int ivLength : {12, 0}) {
      params.ivLength = ivLength;
      std::ranges::fill(params.output.bytes(), std::uint8_t{0xEE});
      // Without AES instructions GnuTLS takes an IV of no bytes.
      const bool isRefused = ivLength == 0 && engine == runner::CryptEngine::OPENSSL;
      EXPECT_LE(runner::execAeadDecrypt(config, params), isRefused ? -1 : 0);
      EXPECT_TRUE(std::ranges::all_of(params.output.bytes(), [](auto byte) { return byte == 0; }));
    }
  }
}

}  // namespace
