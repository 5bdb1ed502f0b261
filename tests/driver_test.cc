#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <utility>

#include "driver/request_header.h"
#include "support/case_file.h"
#include "support/run_request.h"
#include "text/text_stream.h"

namespace runner {
namespace {

// The built programs with their command lines, their descriptors, the kinds of files that they are
// given, and their exit status.

// The rows of cases/commands.csv: the shell runs each one in a folder of its own.
TEST(Commands, DoAsTheTableSays) {
  // What stands in the folder; `broken` runs a command with engines that end with the status $R.
  const std::string start =
      "E='" RUNNER_EXAMPLES "'; broken() { " +
      withEngineCalls("gnutls_hash_init RSA_verify", "'$R'") +
      "\"$@\"; }; ln -s " RUNNER_BINARY " runner; ln -s " RUNNER_CHECK_BINARY
      " check; mkdir out sub; mkfifo pipe; cp \"$E\"/aes-256-gcm-*.req request; "
      "ln -s request alias; cp \"$E\"/rsa-*.req a.req; cp a.req b.rsp; cp a.req sub/a.txt; "
      "exec 2>&1; ";
  const auto rows = readTable<4>(RUNNER_CASES "/commands.csv", '|');
  for (const auto& [status, console, answer, command] : rows) {
    SCOPED_TRACE(command);
    const TempDir dir;
    const Outcome outcome = runCommand({}, "cd " + dir.file("") + "; " + start + command);
    EXPECT_EQ(std::to_string(outcome.status), status);
    EXPECT_EQ(outcome.console, filled(withVersions(expanded(console)), outcome.console));
    const std::string ownLines = answer.empty() ? "" : "...\n# File: Response file\n#\n";
    const std::string written = readFile(dir.file("response"));
    EXPECT_EQ(written, filled(ownLines + (answer.size() < 4 ? "" : answerOf(answer)), written));
  }
}

TEST(Commands, DoesNotWaitForAnotherReaderOfAPipe) {
  const TempDir dir;
  ASSERT_EQ(mkfifo(dir.file("pipe").c_str(), S_IRUSR | S_IWUSR), 0);
  alarm(9);  // ends a wait
  EXPECT_FALSE(TextWriter().append(dir.file("pipe").c_str()));
  alarm(0);
}

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
    "[SecurityStrength = 128]\n[RequestedNumberOfBits = 511]\n[NumberOfTrials = 15]\n";
const std::string kOtherDrbg = edited(edited(kDrbg, "AES-256", "AES-128"), "= 128", "= 256");
const std::string kEcdsa = example("ecdsa-p-256-value-list", ".req");
const std::string kDsa = example("dsa-2048-256-value-list", ".req");

std::string named(const std::string& algorithm, const std::string& function) {
  return "[Algorithm Name]\n" + algorithm + "\n[Function Name]\n" + function + "\n";
}

// What the answers do not show of a header; after a key generation, a signing or a DRBG there are
// none.
TEST(RequestHeader, FillsTheConfig) {
  const auto hashed = [](const std::string& algorithm, const std::string& function) {
    return named(algorithm, function) + "[Hash]\nM_Hash_SHA384\n";
  };
  const std::string byBytes = "[Data Format]\nM_Hash_Byte\n";
  const std::pair<std::string, std::string> cases[] = {
      {hashed("DSA FIPS 186-4", "Key Generation"), "2 8 5 0 0 0 0 0 -"},
      {hashed("ECDSA", "Key Generation"), "2 9 5 0 0 0 0 0 -"},
      {hashed("RSASSA", "Key Generation"), "2 10 5 0 0 0 0 0 -"},
      {hashed("DSA FIPS 186-4", "Sign"), "4 8 5 0 0 0 0 0 -"},
      {named("SHA-1", "Hash") + byBytes, "6 2 2 0 0 0 0 0 -"},
      {named("SHA-512", "Hash") + byBytes, "6 6 6 0 0 0 0 0 -"},
      {hashed("HMAC", "MAC") + "[Bitlength of Key]\n160\n", "7 7 5 20 0 0 0 0 -"},
      {named("SHA-224", "Hash") + byBytes, "6 3 3 0 0 0 0 0 -"},
      {named("SHA-256", "Hash") + byBytes, "6 4 4 0 0 0 0 0 -"},
      {named("SHA-384", "Hash") + byBytes, "6 5 5 0 0 0 0 0 -"},
      {edited(kDrbg, "[Req", "[NumberOfBits = 8]\n[Trials = 3]\n[Req"), "10 1 0 16 0 63 15 1 -"},
      {kOtherDrbg, "10 1 0 32 0 63 15 1 -"},
      {named("AES", "Encryption") +
           "[Modes of Operation]\nECB\n[Modes of Operation]\nCBC\n[Bitlength of Key]\n128\n",
       "0 0 0 16 0 0 0 0 -"},
      {edited(kEcdsa, "first [HashA", "[Algorithm = SHA-1]\n[HashA"), "5 9 4 32 0 128 6 1 P-256"},
      {kDsa, "5 8 4 256 32 128 6 1 -"},
  };
  for (const auto& [header, fields] : cases) {
    const Parsed parsed = parse(header);
    EXPECT_EQ(parsed.result, 0) << parsed.console;
    EXPECT_EQ(fieldsOf(parsed.config), fields) << header;
  }
}

void expectRefused(const std::string& header, const std::string& why = "") {
  const Parsed parsed = parse(header);
  EXPECT_EQ(parsed.result, -1) << header;
  EXPECT_TRUE(parsed.console.ends_with(why + "request is inadequate!!\n")) << parsed.console;
}

std::string withoutEnd(const std::string& name) { return name.substr(0, name.size() - 1); }

TEST(RequestHeader, KnowsNoNameWithoutItsEnd) {
  for (const std::string name : {"Encryption", "Decryption", "Key Generation", "Sign", "Hash",
                                 "MAC", "Verification", "Public Key Validation"}) {
    expectRefused(named("AES", withoutEnd(name)), "unexpected function name!!\n");
  }
  const std::pair<std::string, std::string> algorithms[] = {
      {"DSA FIPS", "Sign"}, {"ECDSA", "Sign"},   {"ECDSA", "Public Key Validation"},
      {"RSASSA", "Sign"},   {"HMAC", "MAC"},     {"GCM/GMAC", "Encryption"},
      {"SHA-224", "Hash"},  {"SHA-256", "Hash"}, {"SHA-384", "Hash"},
      {"SHA-512", "Hash"}};
  for (const auto& [name, function] : algorithms) {
    expectRefused(named(withoutEnd(name), function), "unexpected algorithm name!!\n");
  }
  expectRefused(named("SHA-1", "Hash") + "[Data Format]\nM_Hash_Byt\n", "unknown data format!!\n");
  for (const std::string text : {"Plaintext", "Ciphertext"}) {
    expectRefused(named("GCM/GMAC", "Encryption") + "[Bitlength of Key]\n128\n[Max BitLength of " +
                  text + "\n8\n");
  }
}

TEST(ValueListHeader, IsInadequateWithoutItsLastLinesOrAPartOfAnItem) {
  for (const std::string& request : {kDrbg, kOtherDrbg, kEcdsa, kDsa}) {
    const std::size_t last = request.find("\n[NumberOf");
    for (std::size_t end = request.find('\n'); end <= last; end = request.find('\n', end + 1)) {
      expectRefused(request.substr(0, end));
    }
    const std::string header = request.substr(0, request.find('\n', last + 1) + 1);
    for (std::size_t item = 0; (item = header.find(" = ", item + 1)) != std::string::npos;) {
      expectRefused(std::string(header).erase(item + 2, 1));
      expectRefused(std::string(header).erase(header.rfind('[', item) + 1, 1));
    }
    for (const std::string end :
         {"no df]", "Verification]", "AES-128]", "AES-256]", "h = 128]", "h = 256]"}) {
      if (header.find(end) != std::string::npos)
        expectRefused(edited(header, end, withoutEnd(end)));
    }
  }
}

}  // namespace
}  // namespace runner
