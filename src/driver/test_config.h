#ifndef RUNNER_DRIVER_TEST_CONFIG_H_
#define RUNNER_DRIVER_TEST_CONFIG_H_

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace runner {

// What a request asks for.
enum class TestFunction : int {
  ENCRYPTION = 0,
  DECRYPTION = 1,
  KEY_GENERATION = 2,
  PUBLIC_KEY_VALIDATION = 3,
  SIGN = 4,
  VERIFICATION = 5,
  HASH = 6,
  MAC = 7,
  AEAD_ENCRYPTION = 8,
  AEAD_DECRYPTION = 9,
  DRBG = 10,
};

// The mode of operation of a block cipher, or the algorithm within its family.
enum class ModeId : int {
  CBC = 0,
  ECB = 1,
  SHA1 = 2,
  SHA224 = 3,
  SHA256 = 4,
  SHA384 = 5,
  SHA512 = 6,
  HMAC = 7,
  DSA = 8,
  ECDSA = 9,
  RSASSA = 10,
};

// The hash of a request.
enum class HashId : int {
  NONE = 0,
  SHA1 = 2,
  SHA224 = 3,
  SHA256 = 4,
  SHA384 = 5,
  SHA512 = 6,
};

// The library that computes. Only the first two have back-ends; any other number may stand in a
// TestConfig too, and each adapter says what it makes of it.
enum class CryptEngine : int {
  GNUTLS = 0,
  OPENSSL = 1,
  HDD = 2,
  KERNEL_CRYPT_API = 3,
};

// Bit of TestConfig::flags: the request is in the value-list form.
inline constexpr std::uint32_t FLAG_VALUE_LIST = 1;

// TestConfig is the parsed header of a request, one for a run: filled by parseRequestHeader, read
// by the test procedures. All lengths are in bytes.
struct TestConfig {
  TestFunction testFunction = TestFunction::ENCRYPTION;
  int keyLength = 0;  // of an AES, HMAC or GCM key; in value-list requests see value_list_header.h
  ModeId mode = ModeId::CBC;
  HashId hashId = HashId::NONE;
  CryptEngine engine = CryptEngine::GNUTLS;
  int messageLength = 0;            // value-list requests only
  int count = 0;                    // messages or trials of a group, value-list requests only
  int maxTextLength = 0;            // largest text of a GCM request
  int subgroupLength = 0;           // N of the FFC domain parameters, value-list DSA only
  const char* curveName = nullptr;  // static text "P-192" to "P-521", value-list ECDSA only
  std::uint32_t flags = 0;
};

// HashProperties says what differs from hash to hash (FIPS 180-4) outside the engines.
struct HashProperties {
  HashId id;
  ModeId mode;                // of a Hash request
  const char* algorithmName;  // value of "[Algorithm Name]" in a Hash request
  const char* name;           // value of "[Hash]"
  int number;                 // n of "SHA-n"
  int digestLength;           // bytes
  int blockBits;              // block length in bits
};

inline constexpr std::array<HashProperties, 5> kHashTable{{
    {HashId::SHA1, ModeId::SHA1, "SHA-1", "M_Hash_SHA1", 1, 20, 512},
    {HashId::SHA224, ModeId::SHA224, "SHA-224", "M_Hash_SHA224", 224, 28, 512},
    {HashId::SHA256, ModeId::SHA256, "SHA-256", "M_Hash_SHA256", 256, 32, 512},
    {HashId::SHA384, ModeId::SHA384, "SHA-384", "M_Hash_SHA384", 384, 48, 1024},
    {HashId::SHA512, ModeId::SHA512, "SHA-512", "M_Hash_SHA512", 512, 64, 1024},
}};

// The longest digest of the table, in bytes.
inline constexpr std::size_t kMaxDigestLength = 64;
static_assert(std::ranges::max(kHashTable, {}, &HashProperties::digestLength).digestLength ==
              kMaxDigestLength);

// findHash returns the properties of `id`, or null for a number that is none of the hashes.
constexpr const HashProperties* findHash(HashId id) {
  for (const HashProperties& hash : kHashTable) {
    if (hash.id == id) return &hash;
  }
  return nullptr;
}

// isHash tells whether `id` is one of the hashes.
constexpr bool isHash(HashId id) { return findHash(id) != nullptr; }

// hashIndex returns the row of `id`, which must be one of the hashes, in kHashTable and in every
// other table that follows the hash.
constexpr std::size_t hashIndex(HashId id) {
  return static_cast<std::size_t>(findHash(id) - kHashTable.data());
}

}  // namespace runner

#endif  // RUNNER_DRIVER_TEST_CONFIG_H_
