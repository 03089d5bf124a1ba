#pragma once
// Fixture of the stability job tests: a small base database written by hand, in which
// every per-unit conversion can be checked on paper. Base power 100 MVA, so Zb is 484 ohm
// at 220 kV and 121 ohm at 110 kV.
//
// Nodes N1, N2 (bus B1, 220 kV), N3 (B3, 110 kV), N4 (B4, 110 kV), NS (B5, 220 kV: the
// star of the three-winding transformers). Scheme SCH takes group G, scheme OTHER group
// OUT. Load-flow case 5 has scheme SCH and node table L1_5 with the true base voltages;
// L1_7 (the stability job's own number) has 1 kV everywhere, so that a conversion by the
// wrong table shows.
//
// In G: AC lines L1 (per unit), L2 (ohms, N1 220 kV), L3 (ohms, I node NX unknown);
// series capacitor S1 (ohms); shunt C1 (ohms, N3); two-winding transformers T1 (per unit,
// IG), T2 (NO), T3 (ohms, JG); phase shifters P1 (ZZ), P2 (ohms, IJ); three-winding transformers
// W1 (ohms, windings 1 IG and 3 IJ, 2 NO), W2 (only winding 2, JG), W3 (all three IG);
// DC line DC1; generator G1; load D1 (Z_Percent 12.7); SVCs V1 (ohms, N3) and V2. In OUT:
// AC line L4.

#include "DbTest.h"

namespace sttest {

constexpr int kJob = 7;    // the stability job
constexpr int kCaseLF = 5; // the load-flow case it rests on

class StabilityTest : public testsupport::DbTest
{
protected:
    void SetUp() override;
    // The statement sent by the library that starts with `head`, or "" when none did.
    static std::string SentStartingWith(const std::string& head);
};

} // namespace sttest
