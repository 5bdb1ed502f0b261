#ifndef RUNNER_CHECK_RESPONSE_DIFFERENCE_H_
#define RUNNER_CHECK_RESPONSE_DIFFERENCE_H_

#include <cstddef>
#include <optional>
#include <string>

namespace runner {

// ResponseDifference is the first line in which two responses differ; a text is missing where a
// response has ended, or cannot be read.
struct ResponseDifference {
  std::size_t line = 0;  // counted from 1
  std::optional<std::string> text;
  std::optional<std::string> otherText;
};

// findDifference compares two responses after the three lines that the program itself writes, of
// which the first is the date. Returns nothing when they are equal.
std::optional<ResponseDifference> findDifference(const std::string& path,
                                                 const std::string& otherPath);

// describeDifference returns "line N: GnuTLS TEXT, OpenSSL TEXT" in `width` characters or somewhat
// more: long texts are cut, "..." in place of what is left out, and in such a way that the place
// where they differ is seen.
std::string describeDifference(const ResponseDifference& difference, std::size_t width);

// printable returns `text` with "?" in place of each control character, so that a request cannot
// steer the terminal.
std::string printable(std::string text);

}  // namespace runner

#endif  // RUNNER_CHECK_RESPONSE_DIFFERENCE_H_
