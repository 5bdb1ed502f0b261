#include "ec/ec_params.h"

namespace runner {

std::optional<EcPoint> splitPoint(std::span<const std::uint8_t> point) {
  constexpr std::uint8_t kUncompressed = 0x04;
  if (point.size() % 2 == 0 || point.front() != kUncompressed) return std::nullopt;
  const std::size_t half = point.size() / 2;
  return EcPoint{point.subspan(1, half), point.subspan(1 + half)};
}

}  // namespace runner
