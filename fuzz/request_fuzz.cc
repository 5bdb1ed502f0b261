#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "driver/dispatch.h"
#include "driver/request_header.h"
#include "driver/test_config.h"
#include "text/text_stream.h"

// A whole request, header and tests, through the engine that its first byte selects.

namespace {

// asksForMuchWork tells whether a line holds a decimal number above 4096 and little else: as a loop
// count or a length it would only make the run slow.
bool asksForMuchWork(std::string_view request) {
  constexpr std::size_t kLongestItem = 47;
  constexpr std::string_view kDigits = "0123456789";
  while (!request.empty()) {
    const std::string_view line = request.substr(0, request.find('\n'));
    request.remove_prefix(std::min(line.size() + 1, request.size()));
    if (line.size() > kLongestItem) continue;
    const std::size_t start = line.find_first_of(kDigits);
    if (start == std::string_view::npos) continue;
    if (std::strtol(std::string(line.substr(start)).c_str(), nullptr, 10) > 4096) return true;
  }
  return false;
}

std::string newPath() {
  std::string path = (std::filesystem::temp_directory_path() / "runner-fuzz-XXXXXX").string();
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
