#pragma once
// The demo's own load-flow solver: full AC Newton-Raphson in polar form with a sparse
// Jacobian (Eigen's SparseLU). It stands in for the suite's calculation engine, which
// lies outside the library: the demo fills its input from the real-time records and
// writes its answer back into them.
//
// All values are per unit on the system base; angles in degrees. Every branch is an
// ideal transformer of ratio tap·e^{j·shift} : 1 at its I (from) end (1 : 1 for a line)
// followed by a pi-section: the series impedance with half the shunt admittance (a line's
// charging, a transformer's magnetising branch) at each end. Reactive limits of PV buses
// are not enforced.

#include <functional>
#include <vector>

namespace demo {

enum class BusType { PQ = 1, PV = 2, Slack = 3 };

struct PfBus
{
    BusType type = BusType::PQ;
    double pGen = 0, qGen = 0;     // scheduled generation (P at PV buses; Q ignored at PV/slack)
    double pLoad = 0, qLoad = 0;   // load
    double vSet = 1.0;             // voltage magnitude at PV and slack buses (not read at PQ buses)
    double angleSetDeg = 0;        // angle at the slack bus
    double gShunt = 0, bShunt = 0; // shunt admittance to ground at 1.0 pu voltage
};

struct PfBranch
{
    int from = 0, to = 0;
    double r = 0, x = 0;
    double bTotal = 0;   // total shunt susceptance (charging positive); half at each end
    double gTotal = 0;   // total shunt conductance; half at each end
    double tap = 1.0;    // off-nominal ratio at the from end; 0 is read as 1
    double shiftDeg = 0; // phase shift at the from end
    bool inService = true;
};

struct PfFlow
{
    double pFrom = 0, qFrom = 0; // power entering the branch at the from end
    double pTo = 0, qTo = 0;     // power entering the branch at the to end
};

struct PfResult
{
    bool converged = false;
    int iterations = 0;
    double maxMismatch = 0;
    std::vector<double> v, angleDeg; // per bus
    std::vector<double> pInj, qInj;  // net injection per bus as solved (generation - load)
    std::vector<bool> energised;     // false: in an island without a slack bus (V = 0)
    std::vector<PfFlow> flows;       // per branch; zero when out of service
};

// Tells the iterations as they end: their number and the largest mismatch left.
using PfIterationHook = std::function<void(int iteration, double maxMismatch)>;

// Solves the network. Islands without a slack bus are left dead (V = 0); a bus of
// an island with more than one slack keeps its own set point. Stops when the largest
// power mismatch is below `tolerance` or after `maxIterations`.
PfResult SolvePowerFlow(const std::vector<PfBus>& buses, const std::vector<PfBranch>& branches,
                        double tolerance = 1e-9, int maxIterations = 30,
                        const PfIterationHook& onIteration = {});

} // namespace demo
