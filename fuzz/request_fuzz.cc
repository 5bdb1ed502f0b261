#include <unistd.h>

#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "driver/dispatch.h"
#include "driver/request_header.h"
#include "driver/test_config.h"
#include "driver/text_stream.h"

// A whole request, header and tests, through the engine that its first byte selects.

namespace {

// asksForMuchWork tells whether a line is a decimal number of four digits or more: as a loop count
// or a message length it would only make the run slow.
bool asksForMuchWork(std::string_view request) {
  std::size_t digits = 0;
  for (const char c : request) {
    if (std::isdigit(static_cast<unsigned char>(c)) != 0) {
      ++digits;
    } else {
      if (digits >= 4 && digits < 11) return true;
      digits = 0;
    }
  }
  return digits >= 4 && digits < 11;
}

std::string newPath() {
  std::string path = "/tmp/runner-fuzz-XXXXXX";
  const int descriptor = mkstemp(path.data());
  if (descriptor < 0) std::abort();
  close(descriptor);
  return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool silenced = std::freopen("/dev/null", "w", stdout) != nullptr;
  static const std::string requestPath = newPath();
  (void)silenced;
  if (size < 1) return 0;
  const std::string_view request(reinterpret_cast<const char*>(data) + 1, size - 1);
  if (asksForMuchWork(request)) return 0;
  {
    const runner::FileHandle file(std::fopen(requestPath.c_str(), "w"));
    std::fwrite(request.data(), 1, request.size(), file.get());
  }
  runner::TestConfig config;
  if (runner::parseRequestHeader(config, requestPath.c_str(), "/dev/null") < 0) return 0;
  config.engine = static_cast<runner::CryptEngine>(data[0] % 5);
  runner::runTests(config, requestPath.c_str(), "/dev/null");
  return 0;
}
