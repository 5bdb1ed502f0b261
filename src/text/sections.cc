#include "text/sections.h"

#include "text/diagnostics.h"
#include "text/text_helpers.h"

namespace runner {

int enterSection(TestFiles& files, std::string_view key, int site) {
  return findSection(files.request, key) < 0 ? failAt(site) : 0;
}

int echoSection(TestFiles& files, std::string_view key, int site) {
  if (enterSection(files, key, site) < 0) return -1;
  writeLine(files.response, key);
  return 0;
}

int setLineCapacity(TestFiles& files, std::size_t capacity, int site) {
  if (!files.request.reserve(capacity)) return mallocFailedAt(site);
  files.lineCapacity = capacity;
  return 0;
}

std::optional<std::string_view> nextLine(TestFiles& files) {
  return files.request.readLine(files.lineCapacity);
}

std::string_view nextValue(TestFiles& files) { return nextLine(files).value_or(""); }

std::optional<std::string_view> nextListLine(TestFiles& files, const char* complaint) {
  const auto line = nextLine(files);
  if (line && !line->starts_with('[')) return line;
  failWith(complaint);
  return std::nullopt;
}

int echoDecimal(TestFiles& files) {
  const int value = decimal(nextValue(files));
  writeDecimal(files.response, value);
  return value;
}

int echoPositive(TestFiles& files, int& value, const char* complaint, int most) {
  value = decimal(nextValue(files));
  if (value < 1 || value > most) return complaint != nullptr ? failWith(complaint) : -1;
  writeDecimal(files.response, value);
  return 0;
}

int echoCount(TestFiles& files, std::string_view key, int& value, int site, const char* complaint,
              int most) {
  if (echoSection(files, key, site) < 0) return -1;
  return echoPositive(files, value, complaint, most);
}

int readHex(TestFiles& files, std::span<std::uint8_t> out, int site) {
  return hexToBin(nextValue(files), out) < 0 ? failAt(site) : 0;
}

int echoHex(TestFiles& files, std::span<std::uint8_t> out, int site) {
  if (readHex(files, out, site) < 0) return -1;
  writeHex(files.response, out);
  return 0;
}

int echoHexSection(TestFiles& files, std::string_view key, std::span<std::uint8_t> out,
                   SectionSites sites) {
  if (echoSection(files, key, sites.section) < 0) return -1;
  return echoHex(files, out, sites.value);
}

int echoSized(TestFiles& files, std::string_view text, Buffer& value, std::size_t size,
              ValueSites sites) {
  if (!value.allocate(size)) return mallocFailedAt(sites.allocation);
  if (hexToBin(text, value.bytes()) < 0) return failAt(sites.value);
  writeHex(files.response, value.bytes());
  return 0;
}

int echoMeasured(TestFiles& files, std::string_view text, Buffer& value, ValueSites sites) {
  return echoSized(files, text, value, measureHex(text), sites);
}

}  // namespace runner
