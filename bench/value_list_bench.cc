#include <gnutls/abstract.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "bare_verification.h"
#include "driver/test_config.h"
#include "ec/ecdsa_value_list.h"
#include "side_by_side.h"
#include "sig/dsa_value_list.h"
#include "sig/signature_primitives.h"
#include "text/text_helpers.h"

// Value-list verification beside the engine's own work: making the key, verifying, releasing the
// key. The records are those of the examples, repeated.

namespace {

using Bytes = std::vector<std::uint8_t>;

// A group of an example, with its record lines from "Msg = " to "S = " as text and as bytes.
struct Group {
  std::string opening;
  std::vector<std::string> records;
  std::vector<std::vector<Bytes>> values;
  std::vector<Bytes> signatures;  // the last two values, encoded
  std::vector<Bytes> parameters;
};

Bytes valueOf(const std::string& line) {
  const std::string digits = line.substr(line.find("= ") + 2);
  Bytes bytes(digits.size() / 2);
  if (runner::hexToBin(digits, bytes) < 0) std::abort();
  return bytes;
}

Group readGroup(const std::string& name, const std::string& mark) {
  std::ifstream file(std::string(RUNNER_EXAMPLES) + "/" + name + ".req");
  Group group;
  std::string line;
  while (std::getline(file, line) && !line.starts_with(mark)) continue;
  group.opening = line + "\n";
  while (std::getline(file, line) && !line.empty()) {
    group.opening += line + "\n";
    group.parameters.push_back(valueOf(line));
  }
  while (std::getline(file, line)) {
    if (line.starts_with("COUNT")) {
      group.records.emplace_back();
      group.values.emplace_back();
    } else if (!line.empty() && !line.starts_with("Result")) {
      group.records.back() += line + "\n";
      group.values.back().push_back(valueOf(line));
    }
  }
  for (const std::vector<Bytes>& values : group.values) {
    const runner::Buffer encoding =
        runner::encodeSigRS(values[values.size() - 2], values[values.size() - 1]);
    group.signatures.emplace_back(encoding.data(), encoding.data() + encoding.size());
  }
  return group;
}

std::string requestOf(const Group& group, int count) {
  std::string text = group.opening;
  for (int i = 0; i < count; ++i) {
    text += "\nCOUNT = " + std::to_string(i) + "\n" +
            group.records[static_cast<std::size_t>(i) % group.records.size()] + "Result = ?\n";
  }
  return text;
}

using Procedure = int (*)(const runner::TestConfig&, const char*, const char*);

void run(benchmark::State& state, const Group& group, const runner::TestConfig& config,
         Procedure procedure, const std::function<void(std::size_t)>& bare) {
  const auto count = static_cast<int>(state.range(0));
  const WorkFiles files(requestOf(group, count));
  compare(
      state, [&] { files.removeOutputs(); },
      [&] {
        for (int i = 0; i < count; ++i) bare(static_cast<std::size_t>(i) % group.values.size());
      },
      [&] {
        if (procedure(config, files.request(), files.response()) != 0) {
          giveUp("not verified");
        }
      });
}

void ecdsaRecords(benchmark::State& state) {
  Group group = readGroup("ecdsa-p-256-value-list", "[P-");
  const runner::TestConfig config{.keyLength = 32,
                                  .mode = runner::ModeId::ECDSA,
                                  .hashId = runner::HashId::SHA256,
                                  .messageLength = 128,
                                  .curveName = "P-256"};
  run(state, group, config, runner::procVerifyEcdsaRecords, [&](std::size_t i) {
    verifyBare(group.values[i][0], group.signatures[i], GNUTLS_SIGN_ECDSA_SHA256,
               [&](gnutls_pubkey_t key) {
                 const gnutls_datum_t x = lent(group.values[i][1]);
                 const gnutls_datum_t y = lent(group.values[i][2]);
                 gnutls_pubkey_import_ecc_raw(key, GNUTLS_ECC_CURVE_SECP256R1, &x, &y);
               });
  });
}
BENCHMARK(ecdsaRecords)
    ->Name("ECDSA P-256 value-list records")
    ->Arg(2000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

void dsaRecords(benchmark::State& state) {
  Group group = readGroup("dsa-2048-256-value-list", "[L=");
  const runner::TestConfig config{.keyLength = 256,
                                  .mode = runner::ModeId::DSA,
                                  .hashId = runner::HashId::SHA256,
                                  .messageLength = 128,
                                  .subgroupLength = 32};
  run(state, group, config, runner::procVerifyDsaRecords, [&](std::size_t i) {
    verifyBare(group.values[i][0], group.signatures[i], GNUTLS_SIGN_DSA_SHA256,
               [&](gnutls_pubkey_t key) {
                 const gnutls_datum_t p = lent(group.parameters[0]);
                 const gnutls_datum_t q = lent(group.parameters[1]);
                 const gnutls_datum_t g = lent(group.parameters[2]);
                 const gnutls_datum_t y = lent(group.values[i][1]);
                 gnutls_pubkey_import_dsa_raw(key, &p, &q, &g, &y);
               });
  });
}
BENCHMARK(dsaRecords)
    ->Name("DSA-2048 value-list records")
    ->Arg(500)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
