// What a 64-bit floating point number can hold.
#pragma once

namespace MCCommonMath {

/// Constants of the 64-bit floating point format.
struct MCPower {
  static constexpr double gMachineEpsilon = 0x1p-52;               // the distance from 1 to the next double
  static constexpr double gMachineMaxExp = 0x1.62e42fefa39efp+9;   // log(DBL_MAX): exp is finite up to here
  static constexpr double gMachineMinExp = -0x1.6232bdd7abcd2p+9;  // log(DBL_MIN): exp is normal from here on
};

}  // namespace MCCommonMath
