#ifndef RUNNER_DRIVER_VALUE_LIST_HEADER_H_
#define RUNNER_DRIVER_VALUE_LIST_HEADER_H_

#include <string_view>

#include "driver/test_config.h"

namespace runner {

// The lines that tell a value-list request: its header is a set of single-line items of the shape
// name = value, and its tests are records of such lines.
inline constexpr std::string_view kDrbgRequestKey = "[AlgorithmName = CTR_DRBG no df]";
inline constexpr std::string_view kSignatureRequestKey = "[TargetFunction = SignatureVerification]";

// The three kinds of value-list headers.
enum class ValueListForm : int {
  DRBG,   // CTR_DRBG
  ECDSA,  // verification of ECDSA signatures
  FFC,    // verification of DSA signatures
};

// parseValueListHeader reads the header of a value-list request from the start of the file and
// fills `config` with what it names. Lines have at most 47 characters; n is a decimal number of at
// most 6 characters, 7 where the line ends with it and has no newline. The items of a form come in
// any order, several on a line where their texts allow it; until all are there the last one of a
// kind counts, and later ones are not looked at. The items in
// whole brackets, and "[FFCDomainParameterSizeSet = ", begin a line; all others, "[L = " and "[N =
// " included, may stand anywhere in one.
//
//   DRBG   [AlgorithmName = CTR_DRBG no df]
//          [UnderlyingAlgorithm = AES-n]             n 128 or 256
//          [SecurityStrength = n]                    n 128 or 256; n / 8 is `keyLength`
//   ECDSA  [TargetFunction = SignatureVerification]
//          Curve = P-n                               one of the five prime curves of FIPS 186-4
//          HashAlgorithm = SHA-n                     `hashId`; `keyLength` is the digest length
//   FFC    [TargetFunction = SignatureVerification]
//          [FFCDomainParameterSizeSet = ...
//          [L = n                                    n / 8 is `keyLength`
//          [N = n                                    n / 8 is `subgroupLength`
//          HashAlgorithm = SHA-n                     `hashId`
//
// After the line that completes them come, on lines of their own and in this order:
//
//   DRBG           RequestedNumberOfBits = n         n / 8 is `messageLength`
//                  NumberOfTrials = n                `count`
//   ECDSA and FFC  BitLengthOfMessage = n            n / 8 is `messageLength`
//                  NumberOfMessages = n              `count`
//
// Prints what it finds: "function    : ", "algorithm   : ", "key length  : ", "hash: ", "request
// size : " (bytes), "trial num : " or "message num : ", each with its value. A curve or a hash that
// is not supported takes back an earlier one and prints "Unsupported curve!!" or "Unsupported hash
// algorithm!!"; a value that is too long prints getStr's line. Returns 0 when all are there;
// otherwise it prints "request is inadequate!!", "can't open PATH" or "can't read PATH", and
// returns -1. The response is not touched.
[[nodiscard]] int parseValueListHeader(TestConfig& config, const char* requestPath,
                                       ValueListForm form);

}  // namespace runner

#endif  // RUNNER_DRIVER_VALUE_LIST_HEADER_H_
