#include <csignal>
#include <cstdlib>
#include <sstream>

// A shared library with one function of an engine. Loaded before the engine it takes that
// function's place and merely returns the numbers of ENGINE_RETURNS, one a call, the last one again
// and again; SIGABRT stops the process, and another number above 1 is its exit status. What it is
// called with does not matter.
extern "C" long ENGINE_CALL() {
  static const char* const numbers = std::getenv("ENGINE_RETURNS");
  static std::istringstream results(numbers != nullptr ? numbers : "");
  static long result = 0;
  results >> result;
  if (result == SIGABRT) std::abort();
  if (result > 1) std::_Exit(static_cast<int>(result));
  return result;
}
