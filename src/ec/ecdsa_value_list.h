#ifndef RUNNER_EC_ECDSA_VALUE_LIST_H_
#define RUNNER_EC_ECDSA_VALUE_LIST_H_

#include "driver/test_config.h"

namespace runner {

// procVerifyEcdsaRecords verifies ECDSA signatures that come as records in groups.
// sig/value_list_records.h has the frame of such a request; a group is
//   [P-256,SHA-256]           opens the group; contains "[P-" and ",SHA-"
// followed by config.count records, or fewer at the end of the file:
//   COUNT =
//   Msg =                     config.messageLength bytes
//   Qx = , Qy =               the public key
//   R = , S =                 the signature
//   Result =
// The curve, config.curveName, and the hash are those of the request header. The curve
// is looked up at the first record of each group, which prints "curveid: %d". Lines of a group have
// at most 2 x max(messageLength, 66) + 8 characters, so that the coordinates of every curve fit.
//
// A signature that does not verify, and one that cannot be verified, is no failure. A key that
// cannot be made fails its record through OpenSSL, with "    COUNT%d: " and a complaint; through
// any other engine it ends the test. Returns 0 when there was a group and nothing failed, otherwise
// -1, after a line on standard output unless there was no group; what was written stays.
[[nodiscard]] int procVerifyEcdsaRecords(const TestConfig& config, const char* requestPath,
                                         const char* responsePath);

}  // namespace runner

#endif  // RUNNER_EC_ECDSA_VALUE_LIST_H_
