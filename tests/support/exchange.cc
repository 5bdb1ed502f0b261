#include "support/exchange.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "support/case_file.h"
#include "support/run_request.h"

std::string filledIn(const std::string& name, const Values& values) {
  static const std::string texts = readFile(RUNNER_VECTORS "/requests.txt") + "\n";
  const std::string title = "\n@" + name + "\n";
  const std::size_t start = texts.find(title) + title.size();
  EXPECT_GE(start, title.size()) << "no text " << name;
  std::istringstream stream(texts.substr(start, texts.find("\n\n", start) - start));
  std::string text;
  for (std::string line; std::getline(stream, line);) {
    for (std::size_t at = 0; (at = line.find('{')) != std::string::npos;) {
      const std::size_t end = line.find('}', at);
      const std::string key = line.substr(at + 1, end - at - 1);
      const bool isText = key.starts_with('@');
      line.replace(at, end + 1 - at, isText ? filledIn(key.substr(1), values) : values.at(key));
    }
    if (line.find(kLeftOut) != std::string::npos) continue;
    text += line.ends_with('\n') ? line : line + "\n";
  }
  return text;
}

std::string hexText(std::span<const std::uint8_t> bytes) {
  std::string text;
  for (const int byte : bytes) {
    for (const int shift : {4, 0}) text += "0123456789ABCDEF"[byte >> shift & 15];
  }
  return text;
}

std::string hexText(std::string_view bytes) {
  return hexText({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

void expectExchange(const std::string& text, const std::string& console, runner::CryptEngine engine,
                    const std::string& command) {
  std::string request, response;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    const bool isMarked = line.starts_with('<') || line.starts_with('=');
    const std::string content = expanded(line.substr(isMarked ? 1 : 0)) + "\n";
    if (!line.starts_with('=')) request += content;
    if (!line.starts_with('<')) response += content;
  }
  const Outcome outcome =
      command.empty() ? runInProcess(request, engine) : runBinary(request, command);
  EXPECT_EQ(outcome.response, response);
  const auto count = static_cast<int>(std::ranges::count(console, '\n'));
  EXPECT_EQ(lastLines(outcome.console, count), console);
}
