// The demo's load-flow solver on networks whose answer can be checked by hand.

#include "PowerFlow.h"

#include <complex>
#include <gtest/gtest.h>

using namespace demo;
using cd = std::complex<double>;

TEST(PowerFlow, TwoBusFeederSatisfiesOhmsLawAndBalancesPower)
{
    std::vector<PfBus> buses(2);
    buses[0].type = BusType::Slack;
    buses[0].vSet = 1.02;
    buses[1].pLoad = 0.5;
    buses[1].qLoad = 0.2;
    const cd z(0.01, 0.1);
    std::vector<PfBranch> branches{{0, 1, z.real(), z.imag(), 0.0, 0.0, 1.0, 0.0, true}};

    const PfResult r = SolvePowerFlow(buses, branches);
    ASSERT_TRUE(r.converged);
    const cd v1 = std::polar(r.v[0], 0.0);
    const cd v2 = std::polar(r.v[1], r.angleDeg[1] * 3.14159265358979323846 / 180);
    // The load current through the feeder gives the drop: V1 = V2 + Z * conj(S2 / V2).
    const cd i = std::conj(cd(0.5, 0.2) / v2);
    EXPECT_NEAR(std::abs(v1 - (v2 + z * i)), 0.0, 1e-9);
    // The slack supplies the load and the series loss |I|^2 Z.
    EXPECT_NEAR(r.pInj[0], 0.5 + std::norm(i) * z.real(), 1e-9);
    EXPECT_NEAR(r.qInj[0], 0.2 + std::norm(i) * z.imag(), 1e-9);
    EXPECT_NEAR(r.flows[0].pFrom, r.pInj[0], 1e-9);
    EXPECT_NEAR(r.flows[0].pTo, -0.5, 1e-9);
}

TEST(PowerFlow, TapAndShuntAndDeadIslandAndOpenBranch)
{
    // Bus 0 slack, bus 1 PV behind a transformer with ratio 1.05 at bus 0, bus 2 a load
    // bus with a shunt, bus 3 cut off (its only branch open).
    std::vector<PfBus> buses(4);
    buses[0].type = BusType::Slack;
    buses[1].type = BusType::PV;
    buses[1].vSet = 1.01;
    buses[1].pGen = 0.3;
    buses[2].pLoad = 0.6;
    buses[2].qLoad = 0.1;
    buses[2].bShunt = 0.19;
    buses[3].pLoad = 1.0;
    std::vector<PfBranch> branches{{0, 1, 0.0, 0.2, 0.0, 0.0, 1.05, 0.0, true},
                                   {1, 2, 0.02, 0.06, 0.05, 0.0, 1.0, 0.0, true},
                                   {2, 3, 0.01, 0.03, 0.0, 0.0, 1.0, 0.0, false}};
    const PfResult r = SolvePowerFlow(buses, branches);
    ASSERT_TRUE(r.converged);
    EXPECT_NEAR(r.v[1], 1.01, 1e-12) << "a PV bus holds its set point";
    EXPECT_NEAR(r.pInj[1], 0.3, 1e-9);
    EXPECT_NEAR(r.pInj[2], -0.6, 1e-9);
    EXPECT_FALSE(r.energised[3]);
    EXPECT_EQ(r.v[3], 0.0);
    EXPECT_EQ(r.flows[2].pFrom, 0.0);
    // Kirchhoff at bus 2: what the branches bring equals load minus what the shunt takes.
    const double qShunt = 0.19 * r.v[2] * r.v[2];
    EXPECT_NEAR(r.flows[1].qTo, -0.1 + qShunt, 1e-9);
    // The ideal transformer passes active power without loss (r = 0).
    EXPECT_NEAR(r.flows[0].pFrom + r.flows[0].pTo, 0.0, 1e-9);
}
