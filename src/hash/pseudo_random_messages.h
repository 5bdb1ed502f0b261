#ifndef RUNNER_HASH_PSEUDO_RANDOM_MESSAGES_H_
#define RUNNER_HASH_PSEUDO_RANDOM_MESSAGES_H_

#include "driver/test_config.h"

namespace runner {

// procPGMT runs the pseudo-randomly generated message test of NIST's SHAVS, a chain of digests or
// HMACs: each pass begins with MD(0) = MD(1) = MD(2) = the seed and computes MD(i) of MD(i-3) ||
// MD(i-2) || MD(i-1), I times; the last value is the result of the pass and the seed of the next.
// It reads
//   [Key]                                    2 x keyLength digits (MAC only, not echoed)
//   [Number of Inner-loop for PGMT]          I, at least 1
//   [Number of Outer-loop for PGMT]          O, at least 1
//   [Initial Data for PGMT]                  the first seed
//   [Bitlength of Initial Data for PGMT]     its length, 1 to 2047; a last incomplete byte is
//                                            dropped
// and writes all but the key, followed by
//   [Hash Value of PGMT]                     the results of the O passes (MAC: [MAC of PGMT])
// Lines are read up to 511 characters, the bit length up to 31. The seed is converted, and written,
// only when its length is known and in range.
//
// Returns 0, or -1: silently for an unknown hash, after "illegal number of loop!!" for I or O,
// "illegal length!!" or "unexpected long data!!" for the bit length, after "can't open PATH",
// "can't read PATH" or "can't write PATH", otherwise after the number of the failed step.
[[nodiscard]] int procPGMT(const TestConfig& config, const char* requestPath,
                           const char* responsePath);

}  // namespace runner

#endif  // RUNNER_HASH_PSEUDO_RANDOM_MESSAGES_H_
