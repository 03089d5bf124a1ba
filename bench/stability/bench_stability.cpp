// A stability job on the synthetic network with its stability data, against the private
// MariaDB (eval "$(scripts/db.sh env)" first): extraction by the load-flow case's scheme,
// save-back in place with 10 % of the rows changed, and the job's values into the network
// records of the real-time database.

#include "SampleNetwork.h"
#include "ServerConnection.h"
#include "common/Conversions.h"
#include "loadflow/jobdata/LFCalDataTransfer.h"
#include "records/NetworkRecords.h"
#include "stability/jobdata/STCalDataToRTDB.h"
#include "stability/jobdata/STCalDataTransfer.h"

#include <QElapsedTimer>
#include <QSqlQuery>
#include <benchmark/benchmark.h>

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

// The network with its other families and stability data, the load-flow case 5 with its
// scheme and node table, and (with `extract`) the stability job extracted once.
bool Prepare(benchmark::State& state, fixtures::ScratchDatabase& scratch, bool extract)
{
    QString error;
    const samples::Network net = samples::MakeSyntheticNetwork(static_cast<int>(state.range(0)));
    char scheme[] = "SCH";
    if (!scratch.ok()) {
        error = scratch.error();
    } else if (!samples::WriteNetworkToBaseDb(scratch.db(), net, "G", "SCH", error) ||
               !samples::AddOtherFamilies(scratch.db(), "G", error) ||
               !samples::AddStabilityData(scratch.db(), "G", error)) {
        // error says which statement
    } else if (!scratch.exec("INSERT INTO LF_CASE(Case_No, SCHEME) VALUES (5, 'SCH')")) {
        error = scratch.error();
    } else if (CLFCalDataTransfer(kCaseLF, scheme, scratch.db(), nullptr).ImportLDataFromBaseDB() !=
               0) {
        error = "the load-flow extraction of case 5 failed";
    } else if (extract &&
               CSTCalDataTransfer(kJob, kCaseLF, scratch.db(), nullptr).ImportSDataFromBaseDB() !=
                   0) {
        error = "the stability extraction failed";
    }
    const bool ok = error.isEmpty();
    if (!ok) {
        state.SkipWithError(qPrintable("the network could not be prepared: " + error));
    }
    return ok;
}

void BM_StabilityExtraction(benchmark::State& state)
{
    fixtures::ScratchDatabase scratch(QStringLiteral("benchst"));
    if (!Prepare(state, scratch, false)) {
        return;
    }
    fixtures::ServerStatementTime server(scratch);
    double wall = 0, inServer = 0;
    for (auto _ : state) {
        state.PauseTiming();
        server.reset();
        state.ResumeTiming();
        QElapsedTimer timer;
        timer.start();
        CSTCalDataTransfer job(kJob, kCaseLF, scratch.db(), nullptr);
        if (job.ImportSDataFromBaseDB() != 0) {
            state.SkipWithError("extraction failed");
            break;
        }
        wall += timer.nsecsElapsed() / 1e9;
        state.PauseTiming();
        inServer += server.seconds();
        state.ResumeTiming();
    }
    state.counters["job_rows"] = JobRows(scratch.db());
    if (wall > 0) {
        state.counters["server_s"] = inServer / state.iterations();
        state.counters["library_share_%"] = 100.0 * (wall - inServer) / wall;
    }
}
BENCHMARK(BM_StabilityExtraction)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();

// In place: before each run 10 % of the rows of S2 to S6 move beyond the tolerance again
// (the run before brought the base rows level with the job).
void BM_StabilitySaveBack(benchmark::State& state)
{
    fixtures::ScratchDatabase scratch(QStringLiteral("benchst"));
    if (!Prepare(state, scratch, true)) {
        return;
    }
    QSqlQuery q(*scratch.db());
    fixtures::ServerStatementTime server(scratch);
    double wall = 0, inServer = 0;
    int saved = 0, result = -1;
    for (auto _ : state) {
        state.PauseTiming();
        for (const char* sql : {"UPDATE S2_7 SET X0=X0*1.01+0.01 WHERE MOD(EleID,10)=0",
                                "UPDATE S3_7 SET X0=X0*1.01+0.01 WHERE MOD(EleID,10)=0",
                                "UPDATE S4_7 SET Tdo=Tdo+0.01 WHERE MOD(EleID,10)=0",
                                "UPDATE S5_7 SET Gen_Par=Gen_Par+1 WHERE MOD(EleID,10)=0",
                                "UPDATE S6_7 SET Load_Par=Load_Par+1 WHERE MOD(EleID,10)=0"}) {
            q.exec(sql);
        }
        server.reset();
        state.ResumeTiming();
        QElapsedTimer timer;
        timer.start();
        CSTCalDataTransfer job(kJob, kCaseLF, scratch.db(), nullptr);
        result = job.SaveSDataToBaseDB("G", false);
        wall += timer.nsecsElapsed() / 1e9;
        state.PauseTiming();
        inServer += server.seconds();
        saved = job.Nacline + job.Ntrans + job.Ndcline + job.Ngenerat + job.Nload;
        state.ResumeTiming();
    }
    if (result != 0) {
        state.SkipWithError("the save-back did not run to its end");
        return;
    }
    state.counters["job_rows"] = JobRows(scratch.db());
    state.counters["saved_rows"] = saved;
    if (wall > 0) {
        state.counters["server_s"] = inServer / state.iterations();
        state.counters["library_share_%"] = 100.0 * (wall - inServer) / wall;
    }
}
BENCHMARK(BM_StabilitySaveBack)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();

// The records the load-flow import would have left, one for each job row, under its
// real-time id.
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

void BM_StabilityIntoRecords(benchmark::State& state)
{
    fixtures::ScratchDatabase scratch(QStringLiteral("benchst"));
    dbDatabase rtdb;
    rtdb.open("benchst");
    if (!Prepare(state, scratch, true)) {
        return;
    }
    BuildRecords(scratch.db(), rtdb);
    const int rows = JobRows(scratch.db());
    fixtures::ServerStatementTime server(scratch);
    double wall = 0, inServer = 0;
    for (auto _ : state) {
        state.PauseTiming();
        server.reset();
        state.ResumeTiming();
        QElapsedTimer timer;
        timer.start();
        CSTCalDataToRTDB job(kJob, scratch.db());
        job.ImportSDataToRTDB();
        rtdb.commit();
        wall += timer.nsecsElapsed() / 1e9;
        state.PauseTiming();
        inServer += server.seconds();
        state.ResumeTiming();
    }
    state.counters["job_rows"] = rows;
    state.counters["rows_per_s"] =
        benchmark::Counter(rows * double(state.iterations()), benchmark::Counter::kIsRate);
    if (wall > 0) {
        state.counters["server_%"] = 100.0 * inServer / wall;
    }
    rtdb.close();
}
BENCHMARK(BM_StabilityIntoRecords)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();

} // namespace
