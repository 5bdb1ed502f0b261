#include <benchmark/benchmark.h>
#include <gnutls/abstract.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <span>
#include <string>
#include <vector>

#include "bare_verification.h"
#include "driver/test_config.h"
#include "side_by_side.h"
#include "sig/dsa_verification.h"
#include "sig/rsa_verification.h"
#include "sig/signature_primitives.h"
#include "text/text_helpers.h"

// The signature tests beside the engine's own work: making the key, verifying, releasing the key.
// The signatures are those of the examples, repeated.

namespace {

using Bytes = std::vector<std::uint8_t>;
using Lines = std::vector<std::string>;

// exampleLines returns the lines of a section of an example request.
Lines exampleLines(const std::string& name, const std::string& key) {
  std::ifstream file(std::string(RUNNER_EXAMPLES) + "/" + name + ".req");
  Lines lines;
  std::string line;
  while (std::getline(file, line) && line != key) continue;
  while (std::getline(file, line) && !line.starts_with('[')) lines.push_back(line);
  if (lines.empty()) std::abort();
  return lines;
}

// selected returns those of the lines whose signature has the common exponent, 65537.
Lines selected(const Lines& lines, const Lines& exponents) {
  Lines result;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (exponents[i] == "010001") result.push_back(lines[i]);
  }
  return result;
}

// repeated returns `count` lines, the given ones over and over.
Lines repeated(const Lines& lines, int count) {
  Lines result;
  for (int i = 0; i < count; ++i)
    result.push_back(lines[static_cast<std::size_t>(i) % lines.size()]);
  return result;
}

std::string textOf(const Lines& lines) {
  std::string text;
  for (const std::string& line : lines) text.append(line).append("\n");
  return text;
}

std::vector<Bytes> converted(const Lines& lines) {
  std::vector<Bytes> values;
  for (const std::string& line : lines) {
    values.emplace_back(line.size() / 2);
    if (runner::hexToBin(line, values.back()) < 0) std::abort();
  }
  return values;
}

runner::TestConfig verificationConfig(runner::ModeId mode) {
  return {.testFunction = runner::TestFunction::VERIFICATION,
          .mode = mode,
          .hashId = runner::HashId::SHA256};
}

void rsaVerification(benchmark::State& state) {
  const auto count = static_cast<int>(state.range(0));
  const std::string name = "rsa-2048-sha-256-verification";
  const Lines all = exampleLines(name, "[e]");
  const Lines modulus = exampleLines(name, "[n]");
  const Lines exponents = repeated(selected(all, all), count);
  const Lines signatures = repeated(selected(exampleLines(name, "[Signatures]"), all), count);
  const Lines messages = repeated(selected(exampleLines(name, "[Plaintexts]"), all), count);
  const WorkFiles files("[Bitlength of Modulus]\n2048\n[n]\n" + textOf(modulus) +
                        "[Number of Signatures]\n" + std::to_string(count) + "\n[e]\n" +
                        textOf(exponents) + "[Signatures]\n" + textOf(signatures) +
                        "[Bitlength of Plaintexts]\n" + std::to_string(4 * messages[0].size()) +
                        "\n[Plaintexts]\n" + textOf(messages));
  const runner::TestConfig config = verificationConfig(runner::ModeId::RSASSA);
  std::vector<Bytes> n = converted(modulus);
  std::vector<Bytes> e = converted(exponents);
  std::vector<Bytes> signature = converted(signatures);
  std::vector<Bytes> message = converted(messages);
  compare(
      state, [&] { files.removeOutputs(); },
      [&] {
        for (std::size_t i = 0; i < e.size(); ++i) {
          verifyBare(message[i], signature[i], GNUTLS_SIGN_RSA_SHA256, [&](gnutls_pubkey_t key) {
            const gnutls_datum_t nDatum = lent(n[0]);
            const gnutls_datum_t eDatum = lent(e[i]);
            gnutls_pubkey_import_rsa_raw(key, &nDatum, &eDatum);
          });
        }
      },
      [&] {
        if (runner::procVerifyRsa(config, files.request(), files.response()) != 0) {
          giveUp("not verified");
        }
      });
}
BENCHMARK(rsaVerification)
    ->Name("RSA-2048 signatures")
    ->Arg(1000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

void dsaVerification(benchmark::State& state) {
  const auto count = static_cast<int>(state.range(0));
  const std::string name = "dsa-2048-256-sha-256-verification";
  const Lines parameters = exampleLines(name, "[PQG]");
  const Lines publicValues = repeated(exampleLines(name, "[Public Keys]"), count);
  const Lines messages = repeated(exampleLines(name, "[Plaintexts]"), count);
  const Lines signatures = repeated(exampleLines(name, "[Signatures]"), count);
  const WorkFiles files("[Bitlength of p]\n2048\n[Bitlength of q]\n256\n[PQG]\n" +
                        textOf(parameters) + "[Bitlength of Plaintexts]\n" +
                        std::to_string(4 * messages[0].size()) + "\n[Number of Plaintexts]\n" +
                        std::to_string(count) + "\n[Public Keys]\n" + textOf(publicValues) +
                        "[Plaintexts]\n" + textOf(messages) + "[Signatures]\n" +
                        textOf(signatures));
  const runner::TestConfig config = verificationConfig(runner::ModeId::DSA);
  std::vector<Bytes> pqg = converted(parameters);
  std::vector<Bytes> y = converted(publicValues);
  std::vector<Bytes> message = converted(messages);
  std::vector<Bytes> encoded;
  for (const Bytes& pair : converted(signatures)) {
    const runner::Buffer encoding = runner::encodeSigRS(std::span(pair).first(pair.size() / 2),
                                                        std::span(pair).last(pair.size() / 2));
    encoded.emplace_back(encoding.data(), encoding.data() + encoding.size());
  }
  compare(
      state, [&] { files.removeOutputs(); },
      [&] {
        for (std::size_t i = 0; i < y.size(); ++i) {
          verifyBare(message[i], encoded[i], GNUTLS_SIGN_DSA_SHA256, [&](gnutls_pubkey_t key) {
            const gnutls_datum_t p = lent(pqg[0]);
            const gnutls_datum_t q = lent(pqg[1]);
            const gnutls_datum_t g = lent(pqg[2]);
            const gnutls_datum_t yDatum = lent(y[i]);
            gnutls_pubkey_import_dsa_raw(key, &p, &q, &g, &yDatum);
          });
        }
      },
      [&] {
        if (runner::procVerifyDsa(config, files.request(), files.response()) != 0) {
          giveUp("not verified");
        }
      });
}
BENCHMARK(dsaVerification)
    ->Name("DSA-2048 signatures")
    ->Arg(500)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

// A request whose last signature is missing: all records are read and released, none is verified.
// The measure beside it is a copy of the request.
void dsaRecordsReleased(benchmark::State& state) {
  const auto count = static_cast<int>(state.range(0));
  const WorkFiles files(
      "[Bitlength of p]\n16\n[Bitlength of q]\n8\n[PQG]\nA1A5\nA3\nA1A7\n"
      "[Bitlength of Plaintexts]\n128\n[Number of Plaintexts]\n" +
      std::to_string(count) + "\n[Public Keys]\n" +
      textOf(repeated({std::string(32, 'B')}, count)) + "[Plaintexts]\n" +
      textOf(repeated({std::string(32, 'C')}, count)) + "[Signatures]\n" +
      textOf(repeated({std::string(64, 'E')}, count - 1)));
  const runner::TestConfig config = verificationConfig(runner::ModeId::DSA);
  compare(
      state, [&] { files.removeOutputs(); }, [&] { files.copyRequest(); },
      [&] {
        if (runner::procVerifyDsa(config, files.request(), files.response()) != -1) {
          giveUp("not refused");
        }
      });
}
BENCHMARK(dsaRecordsReleased)
    ->Name("DSA signatures read, none verified")
    ->Arg(1'000'000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
