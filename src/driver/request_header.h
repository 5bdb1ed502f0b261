#ifndef RUNNER_DRIVER_REQUEST_HEADER_H_
#define RUNNER_DRIVER_REQUEST_HEADER_H_

#include "driver/test_config.h"

namespace runner {

// parseRequestHeader reads the header of the request, fills `config` (which comes zero-filled) with
// what it names, and appends the sections that it understands to the response. Each section is a
// key line followed by one value line; they come in any order, except that "[Algorithm Name]"
// precedes "[Function Name]". Lines have at most 127 characters, the algorithm name at most 31. All
// other lines of the request are skipped.
//
//   [Algorithm Name]                  AES, GCM/GMAC, SHA-1 .. SHA-512, HMAC, RSASSA, ECDSA,
//                                     DSA FIPS
//   [Function Name]                   what to do with it (TestFunction)
//   [Modes of Operation]              CBC, ECB                      AES
//   [Bitlength of Key]                128, 160, 192, 256, 384, 512  AES, GCM, MAC
//   [Data Format]                     M_Hash_Byte                   Hash
//   [Hash]                            M_Hash_SHA1 .. M_Hash_SHA512  MAC, signatures
//   [Max BitLength of Plaintext]      decimal                       GCM
//   [Max BitLength of Ciphertext]     decimal                       GCM
//   [Characteristic]                  a text beginning with "p"
//   [Key]                             echoed only                   MAC
//   [Block Cipher], [IV Generation], [Bitlength of Tag], other length limits: echoed only
//
// A line of value_list_header.h that tells a value-list request ends all this, wherever it stands:
// the result is then that of parseValueListHeader.
//
// Returns 0 when exactly the sections that the function needs are there. Otherwise it prints the
// reason as one line, in most cases followed by "request is inadequate!!", and returns -1; what was
// written to the response stays there. A file that fails prints "can't open PATH", "can't read
// PATH" or "can't write PATH", and the result is -1.
[[nodiscard]] int parseRequestHeader(TestConfig& config, const char* requestPath,
                                     const char* responsePath);

}  // namespace runner

#endif  // RUNNER_DRIVER_REQUEST_HEADER_H_
