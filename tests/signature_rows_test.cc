#include <gtest/gtest.h>

#include <cctype>
#include <sstream>
#include <string>

#include "support/exchange.h"
#include "support/run_request.h"

// Whole requests for every hash with every signature algorithm, every curve and both forms of a
// request, with the values of vectors/signatures.txt. Each signature stands once with its message
// and once with another one.

namespace {

void expectFromBoth(const std::string& name, const Values& values, const std::string& console) {
  for (const auto engine : {runner::CryptEngine::GNUTLS, runner::CryptEngine::OPENSSL}) {
    expectExchange(filledIn(name, values), console, engine);
  }
}

// expectVerdicts expects the same of both forms of a request; in the second one digits are lower
// case.
void expectVerdicts(const std::string& algorithm, Values values, const std::string& curve) {
  const std::string done = curve + "procVerify finish normally\n";
  expectFromBoth(algorithm, values, done);
  if (algorithm == "rsa") return;
  for (auto& [name, value] : values) {
    for (char& digit : value) digit = static_cast<char>(std::tolower(digit));
  }
  values["key lines"] = filledIn(algorithm + " key", values);
  const std::string header = "hash: " + values["hash"] + "\nrequest size : 5\nmessage num : 2\n";
  expectFromBoth(algorithm + " records", values, header + done);
}

TEST(SignatureRows, KnowEveryAlgorithmCurveAndHash) {
  std::istringstream rows(readFile(RUNNER_VECTORS "/signatures.txt"));
  Values values;
  int count = 0;
  for (std::string row; std::getline(rows, row);) {
    if (row.empty() || row.starts_with('#')) continue;
    if (row.starts_with("algorithm ")) values.clear();
    std::istringstream words(row);
    for (std::string name; words >> name;) words >> values[name];
    SCOPED_TRACE(values["algorithm"] + " " + values["curve"] + " " + values["hash"]);
    const std::string curve = values["curve"].empty() ? "" : "curveid: " + values["id"] + "\n";
    if (row.starts_with("hash ")) {
      expectVerdicts(values["algorithm"], values, curve);
      ++count;
    } else if (!curve.empty()) {
      expectFromBoth("public keys", values, "procChkPublicKey finish normally\n");
    }
  }
  EXPECT_EQ(count, 7 * 5);
}

}  // namespace
