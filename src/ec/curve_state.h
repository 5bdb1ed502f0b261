#ifndef RUNNER_EC_CURVE_STATE_H_
#define RUNNER_EC_CURVE_STATE_H_

namespace runner {

// What the EC tests know of the curve that they work on, for the whole process; the fourth such
// value is lastOpensslError.

// While curveLookupPending is not 0, the curve is still to be identified: by the next
// importEcPublicKey from the domain parameters, or by name in the value-list test. The tests in
// the bracket form set it before their first key, clear it after each key and set it again at their
// end; the value-list test sets it at each group and clears it after each record.
inline int curveLookupPending = 1;

// The index of the curve that the domain parameters named last; -1 for none.
inline int curveId = -1;

// The index of the curve that was last found by its name; -1 for none.
inline int namedCurveId = -1;

}  // namespace runner

#endif  // RUNNER_EC_CURVE_STATE_H_
