#include <cstdint>
#include <cstdio>
#include <span>
#include <string_view>
#include <vector>

#include "text/text_helpers.h"

// The conversions of text on arbitrary bytes: the first byte sizes the output, the second splits
// the rest into a pattern and a line.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  static const bool silenced = std::freopen("/dev/null", "w", stdout) != nullptr;
  (void)silenced;
  const std::string_view text(reinterpret_cast<const char*>(data) + 2, size - 2);
  std::vector<std::uint8_t> bytes(data[0]);
  runner::hexToBin(text, bytes);
  if (runner::measureHex(text) > (text.size() + 1) / 2) __builtin_trap();
  std::vector<char> value(static_cast<std::size_t>(data[0]) + 1);
  const std::string_view pattern = text.substr(0, data[1]);
  runner::getStr(text.substr(pattern.size()), pattern, value);
  return 0;
}
