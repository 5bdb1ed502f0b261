#include "driver/request_header.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "support/run_request.h"

namespace runner {
namespace {

struct Parsed {
  TestConfig config;
  int result = 0;
  std::string console;
};

Parsed parse(std::string_view request) {
  const TempDir dir;
  writeFile(dir.file("request"), request);
  Parsed parsed;
  testing::internal::CaptureStdout();
  parsed.result =
      parseRequestHeader(parsed.config, dir.file("request").c_str(), dir.file("response").c_str());
  parsed.console = testing::internal::GetCapturedStdout();
  return parsed;
}

// fieldsOf returns what a header fills in: function, mode, hash, key length, subgroup length,
// message length, count, flags and curve.
std::string fieldsOf(const TestConfig& config) {
  std::string fields;
  for (const int number : {static_cast<int>(config.testFunction), static_cast<int>(config.mode),
                           static_cast<int>(config.hashId), config.keyLength, config.subgroupLength,
                           config.messageLength, config.count, static_cast<int>(config.flags)}) {
    fields += std::to_string(number) + " ";
  }
  return fields + (config.curveName != nullptr ? config.curveName : "-");
}

const std::string kDrbg =
    "# CTR_DRBG\n[AlgorithmName = CTR_DRBG no df]\n[UnderlyingAlgorithm = AES-256]\n"
    "[SecurityStrength = 128]\n[NumberOfBits = 8]\n[RequestedNumberOfBits = 511]\n[Trials = 3]\n"
    "[NumberOfTrials = 15]\n";
const std::string kEcdsa = example("ecdsa-p-256-value-list", ".req");
const std::string kDsa = example("dsa-2048-256-value-list", ".req");

// What no answer shows: no test follows a key generation, a signing or a DRBG.
TEST(RequestHeader, FillsTheConfig) {
  const auto hashed = [](const std::string& algorithm, const std::string& function) {
    return "[Algorithm Name]\n" + algorithm + "\n[Function Name]\n" + function +
           "\n[Hash]\nM_Hash_SHA384\n";
  };
  const std::string hashRequest = "[Algorithm Name]\nSHA-";
  const std::string byBytes = "\n[Function Name]\nHash\n[Data Format]\nM_Hash_Byte\n";
  const std::pair<std::string, std::string> cases[] = {
      {hashed("DSA FIPS 186-4", "Key Generation"), "2 8 5 0 0 0 0 0 -"},
      {hashed("ECDSA", "Key Generation"), "2 9 5 0 0 0 0 0 -"},
      {hashed("RSASSA", "Key Generation"), "2 10 5 0 0 0 0 0 -"},
      {hashed("DSA FIPS 186-4", "Sign"), "4 8 5 0 0 0 0 0 -"},
      {hashRequest + "1" + byBytes, "6 2 2 0 0 0 0 0 -"},
      {hashRequest + "512" + byBytes, "6 6 6 0 0 0 0 0 -"},
      {hashed("HMAC", "MAC") + "[Bitlength of Key]\n160\n", "7 7 5 20 0 0 0 0 -"},
      {hashRequest + "224" + byBytes, "6 3 3 0 0 0 0 0 -"},
      {hashRequest + "256" + byBytes, "6 4 4 0 0 0 0 0 -"},
      {hashRequest + "384" + byBytes, "6 5 5 0 0 0 0 0 -"},
      {kDrbg, "10 1 0 16 0 63 15 1 -"},
      {edited(edited(kDrbg, "AES-256", "AES-128"), "= 128", "= 256"), "10 1 0 32 0 63 15 1 -"},
      {edited(kEcdsa, "first [HashA", "[Algorithm = SHA-1]\n[HashA"), "5 9 4 32 0 128 6 1 P-256"},
      {kDsa, "5 8 4 256 32 128 6 1 -"},
  };
  for (const auto& [header, fields] : cases) {
    const Parsed parsed = parse(header);
    EXPECT_EQ(parsed.result, 0) << parsed.console;
    EXPECT_EQ(fieldsOf(parsed.config), fields) << header;
  }
}

TEST(ValueListHeader, IsInadequateWithoutItsLastLines) {
  for (const std::string& request : {kDrbg, kEcdsa, kDsa}) {
    const std::size_t last = request.find("\n[NumberOf");
    for (std::size_t end = request.find('\n'); end <= last; end = request.find('\n', end + 1)) {
      SCOPED_TRACE(request.substr(0, end));
      const Parsed parsed = parse(request.substr(0, end));
      EXPECT_EQ(parsed.result, -1);
      EXPECT_EQ(lastLines(parsed.console, 1), "request is inadequate!!\n");
    }
  }
}

}  // namespace
}  // namespace runner
