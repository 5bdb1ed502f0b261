#ifndef RUNNER_TESTS_SUPPORT_EXCHANGE_H_
#define RUNNER_TESTS_SUPPORT_EXCHANGE_H_

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include "driver/test_config.h"

// The texts of vectors/requests.txt, each a request and the response to it.

using Values = std::map<std::string, std::string>;

// A value whose lines are left out.
inline const std::string kLeftOut = "(left out)";

// filledIn returns the text with this name, with its values.
std::string filledIn(const std::string& name, const Values& values);

// hexText returns bytes as upper-case hexadecimal text.
std::string hexText(std::span<const std::uint8_t> bytes);
std::string hexText(std::string_view bytes);

// expectExchange runs the request of a text that is filled in, in this process through `engine` or
// with a command if one is given, and expects its response and this end of the console.
void expectExchange(const std::string& text, const std::string& console, runner::CryptEngine engine,
                    const std::string& command = "");

#endif  // RUNNER_TESTS_SUPPORT_EXCHANGE_H_
