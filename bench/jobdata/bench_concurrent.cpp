// Four engineers' studies on one base database of a synthetic network: each extracts its own
// job by the scheme, changes a tenth of its generators and saves the job back into a new
// data group of its own, with the guard of a shared database on (common/RunGuard.h). Timed
// four in turn and then four at once, each on a thread and a connection of its own, in the
// same iteration, against the private MariaDB (eval "$(scripts/db.sh env)" first).
//
// Counters per iteration: in_turn_s and at_once_s (elapsed), their ratio, and the guard's
// own waiting as a share of the four studies' elapsed time at once, for the extraction
// (the shared table tmp) and the save-back (which shares nothing here: no run should wait).

#include "SampleNetwork.h"
#include "ServerConnection.h"
#include "loadflow/jobdata/LFCalDataTransfer.h"
#include "platform/WinDockFeedback.h"

#include <QElapsedTimer>
#include <QSqlQuery>
#include <benchmark/benchmark.h>
#include <thread>
#include <vector>

namespace {

constexpr int kJobs[] = {1, 2, 5, 7};

struct StudyTime
{
    double elapsed = 0, extractWait = 0, saveWait = 0;
    bool ok = false;
};

// One study of `job` on a connection of its own to `database`, saved into group `group`.
StudyTime OneStudy(const QString& database, int job, const QString& group)
{
    StudyTime t;
    const QString name = QStringLiteral("study_%1").arg(job);
    {
        QSqlDatabase db = dbserver::OpenConnection(name, database);
        QElapsedTimer timer;
        timer.start();
        char scheme[] = "SCH";
        CLFCalDataTransfer extract(job, scheme, &db, nullptr);
        extract.SetRunGuard(600);
        t.ok = extract.ImportLDataFromBaseDB() == 0;
        t.extractWait = extract.RunGuardWaited();
        QSqlQuery q(db);
        t.ok = t.ok &&
               q.exec(QStringLiteral("UPDATE L5_%1 SET Pg=Pg+0.01 WHERE MOD(EleID,10)=0").arg(job));
        CLFCalDataTransfer save(job, scheme, &db, nullptr);
        save.SetStatementMode(SaveStatementMode::Mended);
        save.SetRunGuard(600);
        t.ok = t.ok && save.SaveLDataToBaseDB(group, true) == 0;
        t.saveWait = save.RunGuardWaited();
        t.elapsed = timer.nsecsElapsed() / 1e9;
    }
    QSqlDatabase::removeDatabase(name);
    return t;
}

void RemoveGroups(QSqlQuery& q)
{
    for (const char* t : {"CDB_GENERATBAK", "CDB_DATAGROUPBAK"}) {
        q.exec(QString("DELETE FROM %1 WHERE GrpName LIKE 'S\\_%'").arg(t));
    }
}

void BM_FourStudies(benchmark::State& state)
{
    WinDockFeedback::SetSink([](const char*, int) {}); // the studies' messages are not timed
    dbserver::ScratchDatabase scratch(QStringLiteral("bench_concurrent"));
    QString error;
    const samples::Network net = samples::MakeSyntheticNetwork(static_cast<int>(state.range(0)));
    QSqlQuery q(*scratch.db());
    // The schema has the tables of these jobs.
    bool ok = scratch.ok() && samples::WriteNetworkToBaseDb(scratch.db(), net, "G", "SCH", error);
    if (!ok) {
        state.SkipWithError("the network could not be prepared");
        return;
    }
    double inTurn = 0, atOnce = 0, extractWait = 0, saveWait = 0, studies = 0;
    int round = 0;
    for (auto _ : state) {
        ++round;
        QElapsedTimer timer;
        timer.start();
        for (int job : kJobs) {
            ok = ok &&
                 OneStudy(scratch.name(), job, QStringLiteral("S_%1_%2").arg(job).arg(round)).ok;
        }
        inTurn += timer.nsecsElapsed() / 1e9;
        state.PauseTiming();
        RemoveGroups(q);
        state.ResumeTiming();

        timer.restart();
        std::vector<StudyTime> times(std::size(kJobs));
        std::vector<std::thread> threads;
        for (size_t i = 0; i < std::size(kJobs); ++i) {
            threads.emplace_back([&, i] {
                times[i] = OneStudy(scratch.name(), kJobs[i],
                                    QStringLiteral("S_%1_%2").arg(kJobs[i]).arg(round));
            });
        }
        for (std::thread& t : threads) {
            t.join();
        }
        atOnce += timer.nsecsElapsed() / 1e9;
        for (const StudyTime& t : times) {
            ok = ok && t.ok;
            extractWait += t.extractWait;
            saveWait += t.saveWait;
            studies += t.elapsed;
        }
        state.PauseTiming();
        RemoveGroups(q);
        state.ResumeTiming();
        if (!ok) {
            state.SkipWithError("a study failed");
            break;
        }
    }
    const double n = static_cast<double>(state.iterations());
    state.counters["in_turn_s"] = inTurn / n;
    state.counters["at_once_s"] = atOnce / n;
    state.counters["at_once_to_in_turn"] = inTurn > 0 ? atOnce / inTurn : 0;
    state.counters["extract_wait_%"] = studies > 0 ? 100 * extractWait / studies : 0;
    state.counters["save_wait_%"] = studies > 0 ? 100 * saveWait / studies : 0;
}
BENCHMARK(BM_FourStudies)->Arg(10000)->Iterations(3)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
