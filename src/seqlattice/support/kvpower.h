// Floating-point helpers of the support layer.
//
// KvPower::AlmostEqual(a, b, maxUlps) tells whether two doubles are the same
// number up to rounding: it is true when a == b (so +0.0 equals -0.0 and an
// infinity equals itself), or when both are finite, have the same sign and lie
// at most maxUlps units in the last place apart, that is, at most maxUlps
// representable doubles separate them. It is false whenever either value is
// NaN, and for finite values of opposite signs that are not both zero.
// Example: AlmostEqual(3.0, std::nextafter(3.0, 4.0), 1.0) is true,
// AlmostEqual(3.0, 3.2, 100.0) is false.
//
// Stateless and safe to call from any thread.
#ifndef SEQLATTICE_SUPPORT_KVPOWER_H_
#define SEQLATTICE_SUPPORT_KVPOWER_H_

namespace KvMath_850 {

class KvPower {
 public:
  static bool AlmostEqual(double a, double b, double maxUlps);
};

}  // namespace KvMath_850

#endif  // SEQLATTICE_SUPPORT_KVPOWER_H_
