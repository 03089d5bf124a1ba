#pragma once
// A study's solution put back on the network it solved, for a MATPOWER case file that
// another tool can take up: the buses' Vm and Va from LFR_BS_R, the generators' Pg and Qg
// from LFR_GEN_R, as CLFResultDataTransfer::ImportRTDBDataToLFResultDB wrote them under
// the number of job `job`.
//
// A bus tied to others by branches of zero impedance shares their calculation bus and so
// its voltage. A bus left without voltage (isolated, or in an island without a reference
// bus) and a generator out of service keep the values the network had.

#include <QString>

class QSqlDatabase;

namespace samples {
struct Network;
}

namespace demo {

// False with `error` set when a result table cannot be read or a bus in service has no
// solution there.
bool PutSolution(QSqlDatabase* db, int job, samples::Network& net, QString& error);

} // namespace demo
