#ifndef RUNNER_FUZZ_REQUEST_CAPS_H_
#define RUNNER_FUZZ_REQUEST_CAPS_H_

#include <string>
#include <string_view>

namespace runner::fuzz {

// capCounts returns `request` with its loop counts, list lengths and bit lengths limited where they
// stand, so that no input takes much time or memory, whatever numbers it holds. A number that a
// test refuses at once for its size stays as it is, so that the refusal is reached.
std::string capCounts(std::string_view request);

}  // namespace runner::fuzz

#endif  // RUNNER_FUZZ_REQUEST_CAPS_H_
