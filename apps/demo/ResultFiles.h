#pragma once
// A study's results as CSV files, read from the result tables that
// CLFResultDataTransfer::ImportRTDBDataToLFResultDB wrote under the number of job `job`,
// with base voltages from that job's node table. Each file has a header line; powers are
// in MW and Mvar on the base `baseMva`, voltages in per unit and kV, angles in degrees.
//
//   buses.csv       bus, V_pu, V_kV, angle_deg
//   branches.csv    branch, kind, from_node, to_node, circuit, P_from_MW, Q_from_Mvar,
//                   P_to_MW, Q_to_Mvar, loading_pct
//   generators.csv  generator, node, P_MW, Q_Mvar, V_pu, angle_deg
//   switches.csv    switch, from_node, to_node, P_MW, Q_Mvar
//
// A branch's loading is the larger end's share of its rating: the current against a
// line's Rate_kA, the apparent power against a transformer's Rate_MVA; empty when the
// branch has no rating (or a line no base voltage). Names stand as the result tables hold
// them: a switch's name there has lost four characters of its real-time id, also the
// three-letter suffix of an isolating switch and so one letter of its name.

#include <QString>
#include <functional>

class QSqlDatabase;

namespace demo {

// The branches of the result tables of job `job` as one statement: the four families
// (lines, series elements, transformers, phase shifters) with the columns name, kind,
// from_node, to_node, circuit, P_from, Q_from, P_to, Q_to (MW and Mvar on the base
// `baseMva`), mva (the larger end's apparent power), loading (percent, NULL where the
// branch has no rating) and family (1 to 4). Callers add their order, filter or limit
// by wrapping it.
QString BranchFlowStatement(int job, double baseMva);

// Writes the four files into `dir`, which must exist; each file appears whole or not at
// all. False with `error` set when a table cannot be read or a file not written.
// `progress`, when given, hears the rows written so far of how many.
bool WriteResultCsv(QSqlDatabase* db, int job, double baseMva, const QString& dir,
                    QString& error,
                    const std::function<void(long long done, long long total)>& progress = {});

} // namespace demo
