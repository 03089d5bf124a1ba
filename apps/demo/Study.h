#pragma once
// The road of a load-flow study, step by step, as the demo runs it and as its tests
// check it: a sample network into a base database, extraction by scheme into job 0, the
// network records and ImportLDataToRTDB, the load flow on the records, the results into
// the result tables, and a change saved back into a new data group.

#include "RecordBuilder.h"
#include "RecordSolver.h"
#include "common/BulkLoad.h"
#include "common/SaveBackPattern.h"

#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

class QSqlDatabase;
class dbDatabase;

namespace dbserver {
class ServerCpuClock;
}

namespace samples {
struct Network;
}

namespace demo {

class Progress;

// A step's elapsed time, the program's CPU time and the server's (-1: not known).
struct StepTime
{
    QString step;
    double ms = 0;
    double programCpuMs = 0;
    double serverCpuMs = -1;
};

// What a data group holds in one working copy after a save-back: its rows, and the names
// of the first ten.
struct GroupRows
{
    QString table;
    long long rows = 0;
    QStringList firstNames;
};

class Study
{
public:
    Study(QSqlDatabase* db, dbDatabase* rtdb) : m_db(db), m_rtdb(rtdb) {}

    // Steps report to `progress` (none: silent) as they go.
    void setProgress(Progress* progress) { m_progress = progress; }
    // With a clock, each step's time says how much CPU the server spent in it.
    void setServerClock(const dbserver::ServerCpuClock* clock) { m_serverClock = clock; }
    // How the results and the update back write: in bulk (the default here) or with the
    // design's statement per record.
    void setWriteMode(RecordWriteMode mode) { m_writeMode = mode; }
    // The job number and the calculation scheme of the study (default kJob and kScheme).
    void setJob(int job, const QString& scheme)
    {
        m_job = job;
        m_scheme = scheme.toUtf8();
    }
    int job() const { return m_job; }
    // The transfers' guard of a shared database (common/RunGuard.h), waiting up to
    // `seconds`; off by default. A step that it refused leaves guardRefusal() set.
    void setGuard(int seconds) { m_guardWait = seconds; }
    const QString& guardRefusal() const { return m_guardRefusal; }

    // Each step returns false with error() set when it fails in a way the design does not
    // foresee; the time of each step is kept.
    bool LoadNetwork(const samples::Network& net);
    bool Extract();
    bool BuildAndImport();
    bool Solve();
    // The solution into the LFR result tables, with the flows through switches.
    bool StoreResults();
    // The results as the library wrote them, into CSV files in `dir` (see ResultFiles.h).
    bool WriteResultFiles(const QString& dir);
    // The solved network `net` as a MATPOWER case file at `path` (see SolvedCase.h).
    bool WriteSolvedCase(const samples::Network& net, const QString& path);
    // A change in the records (a generator's output, an AC line in service taken out), back into the
    // job tables and saved into the data group `group`. The save-back's outcome is kept:
    // in the mended statement mode it runs to its end; in the faithful mode this server
    // stops it at the two-winding transformers, as designed.
    bool ChangeAndSaveBack(const QString& group, SaveStatementMode mode = SaveStatementMode::Mended,
                           bool allOrNothing = false);
    int saveBackResult() const { return m_saveBack; }
    const QString& changedGenerator() const { return m_changedGen; }
    const QString& lineTakenOut() const { return m_lineOut; }
    // The working copies the save-back writes that hold rows of `group`, in the order of
    // the save-back's families, the group's own row last.
    std::vector<GroupRows> GroupContents(const QString& group) const;

    const QString& error() const { return m_error; }
    const std::vector<StepTime>& times() const { return m_times; }
    const SolveSummary& solution() const { return m_solution; }
    const RecordCounts& counts() const { return m_counts; }
    double basePower() const { return m_baseMva; }

    static constexpr const char* kScheme = "DEMO";
    static constexpr const char* kGroup = "BASE";
    static constexpr int kJob = 0;

private:
    bool timed(const char* step, const std::function<bool()>& work);
    // Tells the progress how many `unit` of how many a step has done.
    std::function<void(long long, long long)> counter(const char* unit) const;
    QSqlDatabase* m_db;
    dbDatabase* m_rtdb;
    Progress* m_progress = nullptr;
    const dbserver::ServerCpuClock* m_serverClock = nullptr;
    RecordWriteMode m_writeMode = RecordWriteMode::Batched;
    QString m_error;
    std::vector<StepTime> m_times;
    SolveSummary m_solution;
    RecordCounts m_counts;
    double m_baseMva = 1.0;
    int m_job = kJob;
    QByteArray m_scheme = kScheme;
    int m_guardWait = -1;
    QString m_guardRefusal;
    int m_saveBack = -1;
    QString m_changedGen, m_lineOut;
};

} // namespace demo
