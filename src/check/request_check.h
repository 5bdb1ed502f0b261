#ifndef RUNNER_CHECK_REQUEST_CHECK_H_
#define RUNNER_CHECK_REQUEST_CHECK_H_

#include <string>

namespace runner {

enum class CheckResult {
  CONFIRMED,    // complete, and OpenSSL gives the same answers
  NO_TEST,      // a request that runs no test, and nothing is wrong with it
  NOT_SOUND,    // not complete or not confirmed
  CANNOT_OPEN,  // no regular file, or one that cannot be read
};

// RequestReport is what is said about a request: its line without the path in front.
struct RequestReport {
  CheckResult result;
  std::string text;
};

// checkRequest runs the request through GnuTLS as the command `runner` does, into `responsePath`,
// judges the console, runs it through OpenSSL into a temporary file in `scratchDirectory` and
// compares the two responses from the fourth line on, after the program's own three. Each run has a
// process of its own. An empty `responsePath` stands for another temporary file.
RequestReport checkRequest(const std::string& requestPath, const std::string& responsePath,
                           const std::string& scratchDirectory);

}  // namespace runner

#endif  // RUNNER_CHECK_REQUEST_CHECK_H_
