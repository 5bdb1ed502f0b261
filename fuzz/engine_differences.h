#ifndef RUNNER_FUZZ_ENGINE_DIFFERENCES_H_
#define RUNNER_FUZZ_ENGINE_DIFFERENCES_H_

#include <string>
#include <string_view>

#include "driver/test_config.h"

// The one place that lists what the two engines are known to do differently.

namespace runner::fuzz {

// EngineRun is what the tests of a request left behind with one engine.
struct EngineRun {
  CryptEngine engine;
  std::string console;
  std::string response;
};

// isKnownRefusal tells whether `run` ended a test for a reason that is the engine's own, so that it
// may have no completion line where the other engine has one.
bool isKnownRefusal(const TestConfig& config, const EngineRun& run);

// mayDiffer tells whether the two engines may give different answers to a request of this kind.
// `response` is what either wrote.
bool mayDiffer(const TestConfig& config, std::string_view response);

}  // namespace runner::fuzz

#endif  // RUNNER_FUZZ_ENGINE_DIFFERENCES_H_
