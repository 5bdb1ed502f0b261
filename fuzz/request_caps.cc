#include "request_caps.h"

#include <array>
#include <climits>
#include <cstdlib>

namespace runner::fuzz {
namespace {

// A number and the most that it may be. From `refused` on the test refuses it.
struct Cap {
  std::string_view name;
  int most;
  long refused = LONG_MAX;
};

// Sections whose value is the number. Large enough for every example as it stands, but for the loop
// counts, and for values that cross the block size of the streams.
constexpr std::array kSectionCaps{
    Cap{"[Number of Inner-loop for MCT]", 12},
    Cap{"[Number of Outer-loop for MCT]", 4},
    Cap{"[Number of Inner-loop for PGMT]", 12},
    Cap{"[Number of Outer-loop for PGMT]", 4},
    Cap{"[Number of Blocks for MMT]", 9000, 33554432},
    Cap{"[Upperbound of SLMT]", 4096, 16777216},
    Cap{"[Max BitLength of Plaintext]", 1 << 18},
    Cap{"[Max BitLength of Ciphertext]", 1 << 18},
    Cap{"[Bitlength of Plaintexts]", 8192},
    Cap{"[Bitlength of Modulus]", 8192},
    Cap{"[Bitlength of p]", 8192},
    Cap{"[Bitlength of q]", 8192},
    Cap{"[Number of Plaintexts]", 12},
    Cap{"[Number of Ciphertexts]", 12},
    Cap{"[Number of Signatures]", 12},
    Cap{"[Number of Keys]", 12},
};

// Items of value-list headers: the number follows directly.
constexpr std::array kItemCaps{
    Cap{"[L = ", 8192},
    Cap{"[N = ", 8192},
    Cap{"BitLengthOfMessage = ", 8192},
    Cap{"NumberOfMessages = ", 12},
};

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// limitRead limits the number at `start` of a value. The program reads its low 32 bits.
void limitRead(std::string& text, std::size_t start, const Cap& cap) {
  const std::size_t first = text.find_first_not_of(" \t\v\f\r", start);
  if (first >= text.size() || text[first] == '\n') return;
  char* end = nullptr;
  const int number = static_cast<int>(std::strtol(&text[first], &end, 10));
  if (number <= cap.most || number >= cap.refused) return;
  text.replace(first, static_cast<std::size_t>(end - &text[first]), std::to_string(cap.most));
}

// limitAll limits all numbers from `start` to the end of the line, wherever the program may begin
// to read one, and returns that end.
std::size_t limitAll(std::string& text, std::size_t start, const Cap& cap) {
  std::size_t at = start;
  while (at < text.size() && text[at] != '\n') {
    char* end = nullptr;
    if (isDigit(text[at]) && std::strtol(&text[at], &end, 10) > cap.most) {
      text.replace(at, static_cast<std::size_t>(end - &text[at]), std::to_string(cap.most));
    }
    while (at < text.size() && isDigit(text[at])) ++at;
    if (at < text.size() && text[at] != '\n') ++at;
  }
  return at;
}

}  // namespace

std::string capCounts(std::string_view request) {
  std::string text(request);
  for (const Cap& cap : kSectionCaps) {
    for (std::size_t at = text.find(cap.name); at != std::string::npos;
         at = text.find(cap.name, at + 1)) {
      // The line after the key holds the number, and so does the rest of a long line of the key,
      // which is read as lines of its own.
      const std::size_t end = limitAll(text, at + cap.name.size(), cap);
      if (end + 1 < text.size()) limitRead(text, end + 1, cap);
    }
  }
  for (const Cap& cap : kItemCaps) {
    for (std::size_t at = text.find(cap.name); at != std::string::npos;
         at = text.find(cap.name, at + 1)) {
      limitRead(text, at + cap.name.size(), cap);
    }
  }
  return text;
}

}  // namespace runner::fuzz
