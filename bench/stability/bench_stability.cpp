// A stability job on the synthetic network with its stability data, against the private
// MariaDB (eval "$(scripts/db.sh env)" first): extraction by the load-flow case's scheme,
// save-back in place with 10 % of the rows changed, and the job's values into the network
// records of the real-time database.

#include "BenchStats.h"
#include "SampleNetwork.h"
#include "ServerBench.h"
#include "ServerConnection.h"
#include "common/Conversions.h"
#include "loadflow/jobdata/LFCalDataTransfer.h"
#include "records/NetworkRecords.h"
#include "stability/jobdata/STCalDataToRTDB.h"
#include "stability/jobdata/STCalDataTransfer.h"

#include <QElapsedTimer>
#include <QSqlQuery>
#include <benchmark/benchmark.h>
#include <memory>

namespace {

constexpr int kJob = 7;    // the stability job
constexpr int kCaseLF = 5; // its load-flow case, extracted for the node table L1_5

int JobRows(QSqlDatabase* db)
{
    int rows = 0;
    QSqlQuery q(*db);
    for (const char* t : {"S2_7", "S3_7", "S4_7", "S5_7", "S6_7", "S7_7"}) {
        q.exec(QString("SELECT COUNT(*) FROM %1").arg(t));
        rows += q.next() ? q.value(0).toInt() : 0;
    }
    return rows;
}

// The records the load-flow import would have left, one for each job row under its
// real-time id; committed.
template <class T> void Insert(dbDatabase& rtdb, const QByteArray& id)
{
    T r;
    r.id = id.constData();
    rtdb.insertRecord(&T::dbDescriptor, nullptr, &r);
}

void BuildRecords(QSqlDatabase* db, dbDatabase& rtdb)
{
    QSqlQuery q(*db);
    q.setForwardOnly(true);
    q.exec("SELECT ID_Name, Ntype FROM S2_7");
    while (q.next()) {
        const int ntype = q.value(1).toInt();
        const QByteArray id = GetNameInRealDB(q.value(0).toString(),
                                              ntype == 1   ? 6
                                              : ntype == 2 ? 8
                                                           : 4,
                                              0)
                                  .toLocal8Bit();
        if (ntype == 1 || ntype == 2) {
            Insert<dtsdb::ln>(rtdb, id);
        } else {
            Insert<dtsdb::cp>(rtdb, id);
        }
    }
    q.exec("SELECT ID_Name, Ntype FROM S3_7");
    while (q.next()) {
        const int ntype = q.value(1).toInt();
        Insert<dtsdb::xf>(rtdb, GetNameInRealDB(q.value(0).toString(),
                                                ntype == 1   ? 10
                                                : ntype == 2 ? 11
                                                             : 12,
                                                ntype)
                                    .toLocal8Bit());
    }
    q.exec("SELECT ID_Name FROM S4_7");
    while (q.next()) {
        Insert<dtsdb::dln>(rtdb, q.value(0).toString().toLocal8Bit());
    }
    q.exec("SELECT ID_Name FROM S5_7");
    while (q.next()) {
        Insert<dtsdb::un>(rtdb, q.value(0).toString().toLocal8Bit());
    }
    q.exec("SELECT ID_Name FROM S6_7");
    while (q.next()) {
        Insert<dtsdb::ld>(rtdb, q.value(0).toString().toLocal8Bit());
    }
    q.exec("SELECT ID_Name FROM S7_7");
    while (q.next()) {
        const QByteArray id = q.value(0).toString().toLocal8Bit();
        dtsdb::svc r;
        r.id_name = id.constData();
        rtdb.insertRecord(&dtsdb::svc::dbDescriptor, nullptr, &r);
    }
    rtdb.commit();
}

// The network with its other families and stability data, the load-flow case 5 with its
// scheme and node table, the stability job extracted and its records built: made once per
// size and kept across the repetitions and the three benchmarks.
struct PreparedNetwork
{
    int nodes = 0;
    dbserver::ScratchDatabase scratch{QStringLiteral("benchst")};
    dbDatabase rtdb;
    QString error;
    int rows = 0;
    std::unique_ptr<dbserver::ServerStatementTime> server;
};

PreparedNetwork* Prepare(benchmark::State& state)
{
    const int nodes = static_cast<int>(state.range(0));
    auto& p = serverbench::Kept<PreparedNetwork>();
    if (!p || p->nodes != nodes) {
        p.reset();
        p = std::make_unique<PreparedNetwork>();
        p->nodes = nodes;
        p->rtdb.open("benchst");
        QSqlDatabase* db = p->scratch.db();
        QString& error = p->error;
        const samples::Network net = samples::MakeSyntheticNetwork(nodes);
        char scheme[] = "SCH";
        if (!p->scratch.ok()) {
            error = p->scratch.error();
        } else if (!samples::WriteNetworkToBaseDb(db, net, "G", "SCH", error) ||
                   !samples::AddOtherFamilies(db, "G", error) ||
                   !samples::AddStabilityData(db, "G", error)) {
            // error says which statement
        } else if (!p->scratch.exec("INSERT INTO LF_CASE(Case_No, SCHEME) VALUES (5, 'SCH')")) {
            error = p->scratch.error();
        } else if (CLFCalDataTransfer(kCaseLF, scheme, db, nullptr).ImportLDataFromBaseDB() != 0) {
            error = "the load-flow extraction of case 5 failed";
        } else if (CSTCalDataTransfer(kJob, kCaseLF, db, nullptr).ImportSDataFromBaseDB() != 0) {
            error = "the stability extraction failed";
        } else {
            BuildRecords(db, p->rtdb);
            p->rows = JobRows(db);
        }
        p->server = std::make_unique<dbserver::ServerStatementTime>(p->scratch);
    }
    if (!p->error.isEmpty()) {
        state.SkipWithError(qPrintable("the network could not be prepared: " + p->error));
        return nullptr;
    }
    return p.get();
}

// Times `run` per iteration after `before` (untimed): client against server as
// ClientAndServer tells, and the client's share of the elapsed time.
template <class Before, class Run>
void Measure(benchmark::State& state, PreparedNetwork& p, Before before, Run run)
{
    dbserver::ServerStatementTime& server = *p.server;
    serverbench::ClientAndServer sums;
    for (auto _ : state) {
        state.PauseTiming();
        before();
        server.reset();
        state.ResumeTiming();
        QElapsedTimer timer;
        timer.start();
        const double cpu0 = benchstats::ThreadCpuSeconds();
        if (!run()) {
            state.SkipWithError("the transfer failed");
            return;
        }
        sums.clientCpu += benchstats::ThreadCpuSeconds() - cpu0;
        sums.wall += timer.nsecsElapsed() / 1e9;
        state.PauseTiming();
        sums.serverCpu += server.cpuSeconds();
        sums.inServer += server.seconds();
        state.ResumeTiming();
    }
    state.counters["job_rows"] = p.rows;
    sums.report(state);
    if (sums.wall > 0) {
        state.counters["client_share_%"] = 100.0 * (sums.wall - sums.inServer) / sums.wall;
    }
}

void BM_StabilityExtraction(benchmark::State& state)
{
    PreparedNetwork* p = Prepare(state);
    if (!p) {
        return;
    }
    Measure(
        state, *p, [] {},
        [p] {
            return CSTCalDataTransfer(kJob, kCaseLF, p->scratch.db(), nullptr)
                       .ImportSDataFromBaseDB() == 0;
        });
}

// 10 % of the rows of S2 to S6 moved beyond the tolerance again (a save-back in place
// brings the base rows level with the job).
void MoveTenPercent(QSqlDatabase* db)
{
    QSqlQuery q(*db);
    for (const char* sql : {"UPDATE S2_7 SET X0=X0*1.01+0.01 WHERE MOD(EleID,10)=0",
                            "UPDATE S3_7 SET X0=X0*1.01+0.01 WHERE MOD(EleID,10)=0",
                            "UPDATE S4_7 SET Tdo=Tdo+0.01 WHERE MOD(EleID,10)=0",
                            "UPDATE S5_7 SET Gen_Par=Gen_Par+1 WHERE MOD(EleID,10)=0",
                            "UPDATE S6_7 SET Load_Par=Load_Par+1 WHERE MOD(EleID,10)=0"}) {
        q.exec(sql);
    }
}

// In place: before each run 10 % of the rows move beyond the tolerance again.
void BM_StabilitySaveBack(benchmark::State& state)
{
    PreparedNetwork* p = Prepare(state);
    if (!p) {
        return;
    }
    QSqlDatabase* db = p->scratch.db();
    int saved = 0;
    Measure(
        state, *p, [db] { MoveTenPercent(db); },
        [db, &saved] {
            CSTCalDataTransfer job(kJob, kCaseLF, db, nullptr);
            const bool ok = job.SaveSDataToBaseDB("G", false) == 0;
            saved = job.Nacline + job.Ntrans + job.Ndcline + job.Ngenerat + job.Nload;
            return ok;
        });
    state.counters["saved_rows"] = saved;
}

void BM_StabilityIntoRecords(benchmark::State& state)
{
    PreparedNetwork* p = Prepare(state);
    if (!p) {
        return;
    }
    // Before each run one value of every job row moves, so that every import changes every
    // record it meets (an update that changes nothing writes nothing).
    Measure(
        state, *p,
        [p] {
            QSqlQuery q(*p->scratch.db());
            for (const char* sql :
                 {"UPDATE S2_7 SET R0=R0+1", "UPDATE S3_7 SET R0=R0+1", "UPDATE S4_7 SET Tdo=Tdo+1",
                  "UPDATE S5_7 SET Tj=Tj+1", "UPDATE S6_7 SET Load_Par=Load_Par+1",
                  "UPDATE S7_7 SET Par_No=Par_No+1"}) {
                q.exec(sql);
            }
        },
        [p] {
            CSTCalDataToRTDB(kJob, p->scratch.db()).ImportSDataToRTDB();
            p->rtdb.commit();
            return true;
        });
    state.counters["rows_per_s"] =
        benchmark::Counter(p->rows * double(state.iterations()), benchmark::Counter::kIsRate);
}

// The in-place save-back's preview and all-or-nothing run against the ordinary one, in the
// same run, as ratios to it; before each run 10 % of the rows move again.
void BM_StabilitySaveBackOptions(benchmark::State& state)
{
    PreparedNetwork* p = Prepare(state);
    if (!p) {
        return;
    }
    QSqlDatabase* db = p->scratch.db();
    benchstats::SaveBackOptionRatios(
        state, [db](benchstats::SaveBackRun) { MoveTenPercent(db); },
        [db](benchstats::SaveBackRun kind) {
            CSTCalDataTransfer job(kJob, kCaseLF, db, nullptr);
            job.SetAllOrNothing(kind == benchstats::AllOrNothing);
            if (kind == benchstats::Preview) {
                const SaveBackPreview preview = job.PreviewSDataToBaseDB("G", false);
                return preview.result == 0 && !preview.changes.empty();
            }
            return job.SaveSDataToBaseDB("G", false) == 0;
        });
}

// One size after the other, so that each network is made once for all three.
void Sizes(benchmark::internal::Benchmark* b)
{
    b->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime()->Apply(benchstats::Repeated);
}

} // namespace

BENCHMARK(BM_StabilityExtraction)->Arg(10000)->Apply(Sizes);
BENCHMARK(BM_StabilitySaveBack)->Arg(10000)->Apply(Sizes);
BENCHMARK(BM_StabilityIntoRecords)->Arg(10000)->Apply(Sizes);
BENCHMARK(BM_StabilitySaveBackOptions)
    ->Arg(10000)
    ->Iterations(9)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(BM_StabilityExtraction)->Arg(100000)->Apply(Sizes);
BENCHMARK(BM_StabilitySaveBack)->Arg(100000)->Apply(Sizes);
BENCHMARK(BM_StabilityIntoRecords)->Arg(100000)->Apply(Sizes);
BENCHMARK(BM_StabilitySaveBackOptions)
    ->Arg(100000)
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
