#ifndef RUNNER_SIG_DSA_VALUE_LIST_H_
#define RUNNER_SIG_DSA_VALUE_LIST_H_

#include "driver/test_config.h"

namespace runner {

// procVerifyDsaRecords verifies DSA signatures that come as records in groups, each group with its
// own domain parameters. value_list_records.h has the frame of such a request; a group is
//   [L=2048, N=224, SHA-224]  opens the group; contains "[L=", ", N=" and ", SHA-"
//   P = , Q = , G =           directly after it
// followed by config.count records, or fewer at the end of the file:
//   COUNT =
//   Msg =                     config.messageLength bytes
//   Y =                       the public value
//   R = , S =                 the signature
//   Result =
// The hash and the lengths are those of the request header: L is config.keyLength and N is
// config.subgroupLength, in bytes. A domain parameter of another length is used with its own length
// after "[WARNING]unexpected data length!! data:%d, expected:%d". Lines of a group have at most
// 2 x max(messageLength, keyLength) + 8 characters.
//
// Returns 0 when there was a group and nothing failed. A signature that does not verify, and one
// that cannot be verified, is no failure. Otherwise -1, after a line on standard output unless
// there was no group or the file ended before "Result = "; what was written stays.
[[nodiscard]] int procVerifyDsaRecords(const TestConfig& config, const char* requestPath,
                                       const char* responsePath);

}  // namespace runner

#endif  // RUNNER_SIG_DSA_VALUE_LIST_H_
