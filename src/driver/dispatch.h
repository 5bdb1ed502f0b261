#ifndef RUNNER_DRIVER_DISPATCH_H_
#define RUNNER_DRIVER_DISPATCH_H_

#include "driver/test_config.h"

namespace runner {

// runRequest is one whole run: it starts the response with its three header lines ("# Date: " and
// the local time, "# File: Response file", "#"), has the request header parsed, selects the engine
// and runs the tests. Returns 0, whatever the tests reported, or -1 when the header could not be
// parsed or what precedes the tests could not be written ("can't write PATH"). When both paths name
// the same existing file it prints "can't open PATH", touches nothing and returns -1.
[[nodiscard]] int runRequest(const char* requestPath, const char* responsePath,
                             CryptEngine engine = CryptEngine::GNUTLS);

// runTests runs the test procedures that `config` asks for, one after another, each whatever the
// one before reported. After each that succeeds it prints "NAME finish normally".
void runTests(const TestConfig& config, const char* requestPath, const char* responsePath);

}  // namespace runner

#endif  // RUNNER_DRIVER_DISPATCH_H_
