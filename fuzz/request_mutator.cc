#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>

// How libFuzzer changes a request: every other time by its own means, which know bytes only, and
// otherwise by whole lines and values, as a request consists of them.

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

// What may stand in the place of a whole line: the values that the header knows, and numbers and
// byte strings at the edge of what a test takes.
constexpr std::array<std::string_view, 66> kKnownLines{"AES",
                                                       "GCM/GMAC",
                                                       "HMAC",
                                                       "RSASSA",
                                                       "DSA FIPS 186-3",
                                                       "ECDSA",
                                                       "SHA-1",
                                                       "SHA-224",
                                                       "SHA-256",
                                                       "SHA-384",
                                                       "SHA-512",
                                                       "Encryption",
                                                       "Decryption",
                                                       "Hash",
                                                       "MAC",
                                                       "Key Generation",
                                                       "Public Key Validation",
                                                       "Sign",
                                                       "Verification",
                                                       "CBC",
                                                       "ECB",
                                                       "M_Hash_Byte",
                                                       "M_Hash_SHA1",
                                                       "M_Hash_SHA224",
                                                       "M_Hash_SHA256",
                                                       "M_Hash_SHA384",
                                                       "M_Hash_SHA512",
                                                       "128",
                                                       "160",
                                                       "192",
                                                       "256",
                                                       "384",
                                                       "512",
                                                       "-1",
                                                       "0",
                                                       "1",
                                                       "2",
                                                       "3",
                                                       "8",
                                                       "2048",
                                                       "2147483647",
                                                       "4294967295",
                                                       "",
                                                       "00",
                                                       "01",
                                                       "0000000000000000",
                                                       "04",
                                                       "0400",
                                                       "041122",
                                                       "[HashAlgorithm = SHA-1]",
                                                       "[HashAlgorithm = SHA-224]",
                                                       "[HashAlgorithm = SHA-512]",
                                                       "[Curve = P-192]",
                                                       "[Curve = P-224]",
                                                       "[AlgorithmName = CTR_DRBG no df]",
                                                       "[UnderlyingAlgorithm = AES-128]",
                                                       "[UnderlyingAlgorithm = AES-256]",
                                                       "[SecurityStrength = 128]",
                                                       "[SecurityStrength = 256]",
                                                       "RequestedNumberOfBits = 512",
                                                       "NumberOfTrials = 15",
                                                       "[HashAlgorithm = SHA-384]",
                                                       "[Curve = P-384]",
                                                       "[Curve = P-521]",
                                                       "[P-521,SHA-512]",
                                                       "Result = P"};

class Changer {
 public:
  Changer(std::string& text, unsigned seed) : text_(text), random_(seed) {}

  void change();

 private:
  struct Line {
    std::size_t start;
    std::size_t length;  // without the newline
  };

  // below returns a number less than `limit`; the low bits of the generator are not random.
  std::size_t below(std::size_t limit) { return limit == 0 ? 0 : (random_() >> 8) % limit; }
  [[nodiscard]] Line lineAt(std::size_t place) const;
  Line anyLine();
  Line headerLine();
  Line lineNumber(std::size_t number);
  [[nodiscard]] Line digitsOf(Line line) const;

  void removeLine(Line line) { text_.erase(line.start, line.length + 1); }
  void repeatLine(Line line) {
    text_.insert(line.start, text_.substr(line.start, line.length) + '\n');
  }
  void copyLine(Line from, Line to) {
    text_.replace(to.start, to.length, text_.substr(from.start, from.length));
  }
  void replaceLine(Line line) {
    text_.replace(line.start, line.length, kKnownLines[below(kKnownLines.size())]);
  }
  void replaceAlike(Line line);
  void changeDigits(Line digits);

  std::string& text_;
  std::minstd_rand random_;
};

Changer::Line Changer::lineAt(std::size_t place) const {
  const std::size_t before = place == 0 ? std::string::npos : text_.rfind('\n', place - 1);
  const std::size_t start = before == std::string::npos ? 0 : before + 1;
  const std::size_t end = std::min(text_.find('\n', start), text_.size());
  return {start, end - start};
}

// lineNumber returns a line by its number, or the last one.
Changer::Line Changer::lineNumber(std::size_t number) {
  std::size_t start = 0;
  for (; number > 0; --number) {
    const std::size_t end = text_.find('\n', start);
    if (end == std::string::npos) break;
    start = end + 1;
  }
  return lineAt(start);
}

// headerLine returns one of the first lines, where the header is.
Changer::Line Changer::headerLine() {
  constexpr std::size_t kHeaderLines = 12;
  return lineNumber(below(kHeaderLines));
}

// anyLine counts lines, as most of the bytes of a request stand in a few long ones.
Changer::Line Changer::anyLine() {
  if (below(4) == 0) return headerLine();
  return lineNumber(below(static_cast<std::size_t>(std::ranges::count(text_, '\n'))));
}

// replaceAlike puts another known line in the place of one that begins alike or is as long: another
// hash for a hash, another curve for a curve, another mode for a mode.
void Changer::replaceAlike(Line line) {
  constexpr std::size_t kAlike = 3;
  const std::string start = text_.substr(line.start, std::min(kAlike, line.length));
  const std::size_t first = below(kKnownLines.size());
  for (std::size_t i = 0; i < kKnownLines.size(); ++i) {
    const std::string_view other = kKnownLines[(first + i) % kKnownLines.size()];
    const bool isAlike = other.starts_with(start) || other.size() == line.length;
    if (!isAlike || other == std::string_view(text_).substr(line.start, line.length)) continue;
    text_.replace(line.start, line.length, other);
    return;
  }
}

// digitsOf returns the value of a NAME = VALUE line, and all of another line.
Changer::Line Changer::digitsOf(Line line) const {
  const std::size_t sign = std::string_view(text_).substr(line.start, line.length).find(" = ");
  if (sign == std::string_view::npos) return line;
  constexpr std::size_t kSignLength = 3;
  return {line.start + sign + kSignLength, line.length - sign - kSignLength};
}

// changeDigits keeps a value in its form: whole bytes.
void Changer::changeDigits(Line digits) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  const std::size_t bytes = digits.length / 2;
  const std::size_t byte = digits.start + 2 * below(bytes);
  switch (below(7)) {
    case 0:
      text_.replace(digits.start, digits.length, std::string(2 * bytes, '0'));
      break;
    case 1:
      text_.replace(digits.start, digits.length, std::string(2 * bytes, 'F'));
      break;
    case 2:
      text_.insert(digits.start, "00");
      break;
    case 3:
      text_.replace(digits.start, std::min<std::size_t>(2, digits.length), "");
      break;
    case 4:
      text_.erase(byte, digits.start + digits.length - byte);
      break;
    case 5:
      text_.insert(digits.start + digits.length, text_.substr(digits.start, digits.length));
      break;
    default:
      if (bytes > 0) text_[byte] = kDigits[below(kDigits.size())];
  }
}

void Changer::change() {
  switch (below(10)) {
    case 0:
      removeLine(anyLine());
      break;
    case 1:
      repeatLine(anyLine());
      break;
    case 2:
      copyLine(anyLine(), anyLine());
      break;
    case 3:
      replaceLine(anyLine());
      break;
    case 4:
    case 5:
      replaceAlike(headerLine());
      break;
    case 6:
      replaceAlike(anyLine());
      break;
    default:
      changeDigits(digitsOf(anyLine()));
  }
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
  if (seed % 2 == 0) return LLVMFuzzerMutate(data, size, maxSize);
  std::string text(reinterpret_cast<const char*>(data), size);
  Changer(text, seed).change();
  return text.copy(reinterpret_cast<char*>(data), maxSize);
}
