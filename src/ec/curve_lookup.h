#ifndef RUNNER_EC_CURVE_LOOKUP_H_
#define RUNNER_EC_CURVE_LOOKUP_H_

#include "ec/ec_params.h"

namespace runner {

// findCurve returns the index of the curve in curveTable whose domain parameters are those in the
// slots before SLOT_Q, compared as numbers, or -1 when there is none. A base point in another form
// than the uncompressed one belongs to no curve and prints "Unsupported format of G!!".
[[nodiscard]] int findCurve(const EcParams& params);

}  // namespace runner

#endif  // RUNNER_EC_CURVE_LOOKUP_H_
