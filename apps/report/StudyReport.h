#pragma once
// The study's report: one page, report.html, that an engineer reads in a browser without
// the terminal, with its pictures beside it as PNG files. It reads what the library wrote
// (the result tables of the study's job, the data group of the save-back) and takes the
// limits and ratings from the network file:
//
//   the network's name and size, and the load flow's convergence;
//   voltage_profile.png: the voltage of each bus against its Vmin_pu and Vmax_pu, and the
//     list of the buses outside them;
//   branch_loading.png: the 20 most loaded branches against their rating;
//   generators.png: the generators' outputs against their limits;
//   the flows through switches, the time of each step, and what the save-back wrote.
//
// Large networks stay readable: the profile becomes an envelope beyond a bus per two
// pixels, and lists show the rows that matter most with the count of the rest.

#include "ReportCharts.h"
#include "Study.h"

#include <QString>
#include <vector>

class QSqlDatabase;

namespace samples {
struct Network;
}

namespace report {

struct ReportInput
{
    const samples::Network* net = nullptr;
    const demo::Study* study = nullptr;
    QSqlDatabase* db = nullptr;
    // The data group that the save-back wrote into.
    QString group;
    // Steps of the run outside the study's own (its database, say), listed first.
    std::vector<demo::StepTime> otherSteps;
};

// The buses of `net` in its order with their voltage from the result tables of the study's
// job and their limits from the network file; `unsolved` counts those left out (no result
// row, or no voltage: not energised). False with `error` set when the table cannot be read.
bool ReadVoltageProfile(QSqlDatabase* db, int job, const samples::Network& net,
                        std::vector<ProfileBus>& buses, int& unsolved, QString& error);

// Writes `dir`/report.html and its pictures; `dir` is created when missing. False with
// `error` set when a table cannot be read or a file not written.
bool WriteStudyReport(const QString& dir, const ReportInput& in, QString& error);

} // namespace report
