#ifndef RUNNER_EC_EC_PARAMS_H_
#define RUNNER_EC_EC_PARAMS_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace runner {

// EcParamSlot numbers the values from which importEcPublicKey makes a key. Numbers are big-endian
// bytes; points are uncompressed (SEC 1, 2.3.3): the byte 0x04, then x and y of equal lengths.
enum EcParamSlot : std::size_t {
  SLOT_P,
  SLOT_A,  // modulo p
  SLOT_B,
  SLOT_G,      // the base point
  SLOT_EMPTY,  // the y of the base point stands in SLOT_G
  SLOT_N,
  SLOT_H,  // decimal text
  SLOT_Q,  // the public key
  SLOT_COUNT,
};

// The values by slot, borrowed from who fills the array.
using EcParams = std::array<std::span<const std::uint8_t>, SLOT_COUNT>;

// The coordinates of a point, of equal lengths.
struct EcPoint {
  std::span<const std::uint8_t> x;
  std::span<const std::uint8_t> y;
};

// splitPoint returns the coordinates that stand in an uncompressed point; nothing when its first
// byte is not 0x04 or its length is even.
[[nodiscard]] std::optional<EcPoint> splitPoint(std::span<const std::uint8_t> point);

}  // namespace runner

#endif  // RUNNER_EC_EC_PARAMS_H_
