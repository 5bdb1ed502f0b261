#ifndef RUNNER_EC_PUBLIC_KEY_VALIDATION_H_
#define RUNNER_EC_PUBLIC_KEY_VALIDATION_H_

#include "driver/test_config.h"

namespace runner {

// procChkPublicKey tells of each point of a list whether it is a valid public key of the curve that
// the domain parameters name, one of P-192, P-224, P-256, P-384 and P-521. It reads and echoes
//   [Domain Parameter]  p, a, b, G, n in hexadecimal, G uncompressed, and h in decimal
//   [Number of Keys]    at least 1
//   [Public Keys]       as many uncompressed points
// and writes, when it has seen all keys,
//   [Results]           a line for each key: 0 when it is valid, 1 when it is not
// Lines have at most 1023 characters. The curve is identified once, at the first key, which prints
// "curveid: %d".
//
// A key that cannot be imported is not valid for OpenSSL; with GnuTLS it ends the test. Returns 0,
// or -1: silently for a number of keys below 1, otherwise after a line on standard output. The
// curve lookup is pending afterwards.
[[nodiscard]] int procChkPublicKey(const TestConfig& config, const char* requestPath,
                                   const char* responsePath);

}  // namespace runner

#endif  // RUNNER_EC_PUBLIC_KEY_VALIDATION_H_
