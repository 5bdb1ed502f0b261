#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <filesystem>
#include <string>
#include <vector>

#include "driver/dispatch.h"
#include "driver/request_header.h"
#include "support/failing_files.h"
#include "support/run_request.h"
#include "text/text_stream.h"

namespace runner {
namespace {

struct DisturbedRun : Outcome {
  bool struck = true;
  std::vector<std::size_t> ends{};  // of what each step wrote
};

DisturbedRun runDisturbed(const TempDir& dir, const FileFault& fault, int number,
                          std::size_t most) {
  DisturbedRun run;
  testing::internal::CaptureStdout();
  {
    const FailingFiles files(fault, number, most);
    run.status = runRequest(dir.file("request").c_str(), dir.file("response").c_str());
    run.struck = FailingFiles::struck();
    run.ends = FailingFiles::ends();
  }
  run.console = testing::internal::GetCapturedStdout();
  run.response = readFile(dir.file("response"));
  // All runs are of one date.
  const std::size_t dateSize = std::min<std::size_t>(run.response.size(), 32);
  run.response.replace(0, dateSize, std::string(dateSize, '-'));
  return run;
}

std::ptrdiff_t completions(const std::string& console) {
  std::ptrdiff_t count = 0;
  for (std::size_t at = 0; (at = console.find(" finish normally\n", at)) != std::string::npos;
       ++at) {
    ++count;
  }
  return count;
}

// tellsOfFault tells whether a console has the line in the place of one completion line, or at its
// end when the run ended with it.
bool tellsOfFault(const DisturbedRun& run, const std::string& line, const Outcome& calm) {
  const std::size_t place = run.console.find(line);
  if (place == std::string::npos) return false;
  const std::string rest = run.console.substr(place + line.size());
  if (run.status < 0) return rest.empty() && completions(run.console) == 0;
  return calm.console.ends_with(rest) && completions(run.console) == completions(calm.console) - 1;
}

// lacksOneEnd tells whether a response lacks nothing but the end of what one step wrote.
bool lacksOneEnd(const std::string& response, const DisturbedRun& calm) {
  return std::ranges::any_of(calm.ends, [&](std::size_t end) {
    const std::string rest = calm.response.substr(end);
    if (!response.ends_with(rest)) return false;
    return calm.response.substr(0, end).starts_with(
        response.substr(0, response.size() - rest.size()));
  });
}

// Each read, write and close in turn goes wrong. Nothing comes of that, or it is told in the place
// of a completion line; what stands in the response is right up to where the fault came.
TEST(Faults, OfFilesAreToldOrHarmless) {
  struct Example {
    std::string name;
    std::size_t most;  // that a call moves
  };
  const Example examples[] = {
      {"aes-128-cbc-encryption", 700},   {"aes-256-gcm-decryption", kStreamBlockSize},
      {"dsa-2048-256-value-list", 2000}, {"ecdsa-p-256-public-key-validation", 500},
      {"hmac-sha-256-mac", 7000},        {"sha-256-hash", kStreamBlockSize},
  };
  const FileFault faults[] = {
      {FileCall::READ, EIO},          {FileCall::READ, EIO, 100}, {FileCall::READ, EINTR},
      {FileCall::READ, EINTR, 100},   {FileCall::READ, 0, 100},   {FileCall::WRITE, ENOSPC},
      {FileCall::WRITE, EDQUOT, 100}, {FileCall::WRITE, EINTR},   {FileCall::WRITE, EINTR, 100},
      {FileCall::WRITE, 0, 100},      {FileCall::CLOSE, EIO},
  };
  for (const Example& row : examples) {
    const TempDir dir;
    std::string request = example(row.name, ".req");
    const std::string manySteps = "\n1000\n";
    if (request.find(manySteps) != std::string::npos) request = edited(request, manySteps, "\n2\n");
    writeFile(dir.file("request"), request);
    const DisturbedRun calm = runDisturbed(dir, faults[0], INT_MAX, kStreamBlockSize);
    for (const FileFault& fault : faults) {
      const bool reads = fault.call == FileCall::READ;
      const bool harmless = fault.error == EINTR || fault.error == 0;
      const std::string line = reads ? "can't read " + dir.file("request") + "\n"
                                     : "can't write " + dir.file("response") + "\n";
      DisturbedRun run;
      for (int number = 1; run.struck; ++number) {
        run = runDisturbed(dir, fault, number, row.most);
        if (run.console == calm.console && run.response == calm.response) continue;
        // A list is answered up to where the request could be read.
        const bool isCut = reads && row.most < kStreamBlockSize;
        EXPECT_TRUE(!harmless && run.struck && tellsOfFault(run, line, calm) &&
                    (isCut || lacksOneEnd(run.response, calm)))
            << row.name << ", call " << static_cast<int>(fault.call) << " no. " << number
            << ", error " << fault.error << " after " << fault.moved << "\n"
            << run.console;
      }
    }
  }
}

// What the built program is run on. Below, descriptor 9 is a pipe that nobody reads.
const std::string kName = "aes-256-gcm-decryption";
const std::string kRequest = RUNNER_EXAMPLES "/" + kName + ".req";

void openPipeWithoutReader() {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  close(ends[0]);
  dup2(ends[1], 9);
  close(ends[1]);
}

TEST(Environment, LeavesTheResponseAsItIs) {
  openPipeWithoutReader();
  struct Case {
    std::string before;  // the command
    bool hasConsole = true;
  };
  for (const Case& row :
       {Case{""}, Case{"<&-"}, Case{"2>&-"}, Case{">&-", false}, Case{"<&- >&- 2>&-", false},
        Case{">&9", false}, Case{"ulimit -s 512;"}}) {
    SCOPED_TRACE(row.before);
    const Outcome outcome = runBinary(example(kName, ".req"), row.before + " " RUNNER_BINARY);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.console, row.hasConsole ? "procAEAD finish normally\n" : "");
    EXPECT_EQ(outcome.response, "# File: Response file\n#\n" + answerOf(kName));
  }
}

TEST(Environment, IsToldWhenItEndsTheRun) {
  openPipeWithoutReader();
  const TempDir dir;
  const std::string pipe = dir.file("pipe");
  const std::string response = dir.file("response");
  ASSERT_EQ(mkfifo(pipe.c_str(), S_IRUSR | S_IWUSR), 0);
  struct Case {
    std::string before;  // the command
    std::string request;
    std::string response;
    std::string told;
  };
  const Case cases[] = {
      {"timeout 9", pipe, response, "can't open " + pipe},
      {"", dir.file(""), response, "can't open " + dir.file("")},
      {"cat '" + kRequest + "' |", "/dev/stdin", response, "can't open /dev/stdin"},
      {"ulimit -f 0; timeout 9", kRequest, response, "can't write " + response},
      {"", kRequest, "/dev/full", "can't write /dev/full"},
      {"", kRequest, "/dev/fd/9", "can't write /dev/fd/9"},
  };
  for (const Case& row : cases) {
    const Outcome outcome = runCommand({row.request, row.response}, row.before + " " RUNNER_BINARY);
    EXPECT_EQ(outcome.status, 255) << row.before;
    EXPECT_EQ(outcome.console, row.told + "\n") << row.before;
  }
}

TEST(Environment, HasNoReaderForANamedPipe) {
  const TempDir dir;
  ASSERT_EQ(mkfifo(dir.file("pipe").c_str(), S_IRUSR | S_IWUSR), 0);
  alarm(9);  // ends a wait
  EXPECT_FALSE(TextWriter().append(dir.file("pipe").c_str()));
  alarm(0);
}

TEST(Environment, ShowsEachLineOfTheConsoleAtOnce) {
  // The last test takes for ever.
  const TempDir dir;
  const std::string request = dir.file("request");
  const std::string pipe = dir.file("pipe");
  writeFile(request,
            edited(example("aes-128-cbc-encryption", ".req"), "\n100\n", "\n2147483647\n"));
  const Outcome outcome = runCommand({}, "mkfifo " + pipe + "; timeout 20 " RUNNER_BINARY " " +
                                             request + " " + dir.file("response") + " >" + pipe +
                                             " & read -r line <" + pipe + "; echo $line; kill $!");
  EXPECT_EQ(outcome.console, "procKAT_Text finish normally\n");
}

// A copy of the program asks for a function that no library has.
TEST(Environment, MayLackTheFunctionThatValidatesKeys) {
  const TempDir dir;
  const std::string program = dir.file("runner");
  const std::string quoted = RUNNER_BINARY;
  std::string bytes = readFile(quoted.substr(1, quoted.size() - 2));
  const std::string name = std::string("gnutls_pubkey_verify_params") + char{0};
  const std::size_t place = bytes.find(name);
  ASSERT_NE(place, std::string::npos);
  writeFile(program, bytes.replace(place, 6, "absent"));
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);

  const Outcome outcome = runBinary(example("ecdsa-p-256-public-key-validation", ".req"), program);
  std::string lines;
  std::string results;
  for (int i = 0; i < 8; ++i) {
    lines += "gnutls_pubkey_verify_params is not supported!!\n";
    results += "1\n";
  }
  EXPECT_EQ(outcome.console, "curveid: 2\n" + lines + "procChkPublicKey finish normally\n");
  EXPECT_EQ(fromHere(outcome.response, "[Results]"), "[Results]\n" + results);
}

Outcome runWithKeyLength(const std::string& name, CryptEngine engine, int keyLength) {
  const TempDir dir;
  const std::string response = dir.file("response");
  TestConfig config;
  Outcome outcome;
  const std::string request = RUNNER_EXAMPLES "/" + name + ".req";
  outcome.status = parseRequestHeader(config, request.c_str(), response.c_str());
  config.engine = engine;
  config.keyLength = keyLength;
  testing::internal::CaptureStdout();
  runTests(config, request.c_str(), response.c_str());
  outcome.console = testing::internal::GetCapturedStdout();
  outcome.response = readFile(response);
  return outcome;
}

TEST(Caller, MayPassANegativeKeyLength) {
  for (const std::string name : {"aes-128-cbc-encryption", "aes-256-cbc-decryption",
                                 "aes-128-gcm-encryption", kName.c_str(), "hmac-sha-256-mac"}) {
    for (const CryptEngine engine : {CryptEngine::GNUTLS, CryptEngine::OPENSSL}) {
      SCOPED_TRACE(name);
      const Outcome negative = runWithKeyLength(name, engine, -1);
      const Outcome zero = runWithKeyLength(name, engine, 0);
      EXPECT_EQ(negative.console, zero.console);
      EXPECT_EQ(negative.response, zero.response);
    }
  }
}

}  // namespace
}  // namespace runner
