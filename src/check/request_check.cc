#include "check/request_check.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "check/child_run.h"
#include "check/console_verdict.h"
#include "check/descriptors.h"
#include "check/response_difference.h"
#include "driver/dispatch.h"
#include "driver/request_header.h"

namespace runner {
namespace {

constexpr std::size_t kTerminalWidth = 80;
constexpr int kHeaderRefused = 255;

// The request and where its two responses go.
struct RunPaths {
  std::string request;
  std::string gnutls;
  std::string openssl;
};

// whyUnreadable returns why the request cannot be opened, an empty text when it can.
std::string whyUnreadable(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) return "not a regular file";
  const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  return file.isOpen() ? "" : std::strerror(errno);  // NOLINT(concurrency-mt-unsafe)
}

ChildRun runThrough(CryptEngine engine, const std::string& request, const std::string& response) {
  return runInChild([&] { return runRequest(request.c_str(), response.c_str(), engine); });
}

// unusualEnd says how a run ended that did not get to the end of its tests.
std::string unusualEnd(const ChildRun& run) {
  if (run.signal != 0) return "stopped by signal " + std::to_string(run.signal);
  if (run.status == kHeaderRefused) return "header: " + headerFault(run.console);
  return run.status == 0 ? "" : "ended with exit status " + std::to_string(run.status);
}

// readHeader has the header parsed in a child process, which hands `config` over in a file.
std::string readHeader(const std::string& request, const Descriptor& file, TestConfig& config) {
  const ChildRun run = runInChild([&] {
    TestConfig parsed;
    if (parseRequestHeader(parsed, request.c_str(), "/dev/null") < 0) return kHeaderRefused;
    return pwrite(file.number(), &parsed, sizeof parsed, 0) == sizeof parsed ? 0 : 1;
  });
  std::string end = unusualEnd(run);
  if (!end.empty()) return end;
  return pread(file.number(), &config, sizeof config, 0) == sizeof config ? "" : "header: not read";
}

std::string counts(const ConsoleVerdict& verdict) {
  return std::to_string(verdict.sound) + " of " + std::to_string(verdict.total) + " tests";
}

// describeFault says what was wrong through GnuTLS, and what OpenSSL did if it did better.
std::string describeFault(const ConsoleVerdict& verdict, const ConsoleVerdict& other) {
  if (other.sound <= verdict.sound) return counts(verdict) + ": " + verdict.fault;
  const std::string otherFault = other.fault.empty() ? "" : ": " + other.fault;
  return counts(verdict) + ": GnuTLS: " + verdict.fault + "; OpenSSL: " + counts(other) +
         otherFault;
}

// confirm compares the answers of a complete run with OpenSSL's.
RequestReport confirm(const ConsoleVerdict& verdict, const ConsoleVerdict& other,
                      const RunPaths& paths) {
  const std::string notConfirmed = counts(verdict) + ", not confirmed: ";
  if (!other.fault.empty()) {
    return {CheckResult::NOT_SOUND, notConfirmed + "OpenSSL: " + other.fault};
  }
  const auto difference = findDifference(paths.gnutls, paths.openssl);
  if (!difference) return {CheckResult::CONFIRMED, counts(verdict) + ", confirmed by OpenSSL"};
  const std::size_t used = paths.request.size() + 2 + notConfirmed.size();
  const std::size_t width = used < kTerminalWidth ? kTerminalWidth - used : 0;
  return {CheckResult::NOT_SOUND, notConfirmed + describeDifference(*difference, width)};
}

RequestReport runAndJudge(const RunPaths& paths, const Descriptor& file) {
  const ChildRun run = runThrough(CryptEngine::GNUTLS, paths.request, paths.gnutls);
  TestConfig config;
  std::string end = unusualEnd(run);
  if (end.empty()) end = readHeader(paths.request, file, config);
  if (!end.empty()) return {CheckResult::NOT_SOUND, end};
  const ConsoleVerdict verdict = judgeConsole(run.console, config, CryptEngine::GNUTLS);
  if (verdict.total == 0) {
    if (verdict.fault.empty()) return {CheckResult::NO_TEST, "no test"};
    return {CheckResult::NOT_SOUND, "no test: " + verdict.fault};
  }
  const ChildRun otherRun = runThrough(CryptEngine::OPENSSL, paths.request, paths.openssl);
  ConsoleVerdict other = judgeConsole(otherRun.console, config, CryptEngine::OPENSSL);
  const std::string otherEnd = unusualEnd(otherRun);
  if (!otherEnd.empty()) other.fault = otherEnd;
  if (verdict.fault.empty()) return confirm(verdict, other, paths);
  return {CheckResult::NOT_SOUND, describeFault(verdict, other)};
}

}  // namespace

RequestReport checkRequest(const std::string& requestPath, const std::string& responsePath,
                           const std::string& scratchDirectory) {
  const std::string reason = whyUnreadable(requestPath);
  if (!reason.empty()) return {CheckResult::CANNOT_OPEN, "can't open: " + reason};
  const Descriptor scratch(createTemporaryFile(scratchDirectory));
  const Descriptor otherScratch(createTemporaryFile(scratchDirectory));
  if (!scratch.isOpen() || !otherScratch.isOpen()) {
    return {CheckResult::CANNOT_OPEN, "can't make a temporary file in " + scratchDirectory};
  }
  const RunPaths paths{.request = requestPath,
                       .gnutls = responsePath.empty() ? scratch.path() : responsePath,
                       .openssl = otherScratch.path()};
  return runAndJudge(paths, otherScratch);
}

}  // namespace runner
