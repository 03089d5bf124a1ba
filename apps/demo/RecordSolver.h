#pragma once
// The demo's calculation engine on the real-time records: it reads the network from
// the records as ImportLDataToRTDB left them (per unit), solves the load flow with
// SolvePowerFlow and writes the answer back as an engine of the suite would: bus
// voltages and angles (degrees) into bs and bus, end flows into ln and xf with the
// charging of lines (Qci, Qcj) and the magnetising power of transformers (Pm, Qm),
// outputs into un, shunt powers into cp. Out-of-service elements (their q bits) take
// no part. Commits when done.
//
// Generators choose their bus type by Mode_Ctrl: 2 slack, 1 PV, anything else PQ; the
// first in service of those that hold a bus's voltage sets it.

#include "PowerFlow.h"

class dbDatabase;

namespace demo {

struct SolveSummary
{
    bool converged = false;
    int iterations = 0;
    double maxMismatch = 0;
    int buses = 0, branches = 0, deadBuses = 0;
};

SolveSummary SolveOnRecords(dbDatabase* rtdb, const PfIterationHook& onIteration = {});

} // namespace demo
