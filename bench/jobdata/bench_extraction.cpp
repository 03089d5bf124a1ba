// Extraction of a synthetic network by calculation scheme into job 0, and the whole
// save-back of the job, against the private MariaDB (eval "$(scripts/db.sh env)" first).

#include "SampleNetwork.h"
#include "ServerConnection.h"
#include "loadflow/jobdata/LFCalDataTransfer.h"

#include <QElapsedTimer>
#include <QSqlQuery>
#include <benchmark/benchmark.h>
#include <vector>

namespace {

void BM_ExtractSynthetic(benchmark::State& state)
{
    dbserver::ScratchDatabase scratch(QStringLiteral("bench"));
    if (!scratch.ok()) {
        state.SkipWithError(qPrintable(scratch.error()));
        return;
    }
    QString error;
    const samples::Network net = samples::MakeSyntheticNetwork(static_cast<int>(state.range(0)));
    if (!samples::WriteNetworkToBaseDb(scratch.db(), net, "G", "SCH", error)) {
        state.SkipWithError(qPrintable(error));
        return;
    }
    char scheme[] = "SCH";
    dbserver::ServerStatementTime server(scratch);
    double wall = 0, inServer = 0;
    for (auto _ : state) {
        state.PauseTiming();
        server.reset();
        state.ResumeTiming();
        QElapsedTimer timer;
        timer.start();
        CLFCalDataTransfer job(0, scheme, scratch.db(), nullptr);
        if (job.ImportLDataFromBaseDB() != 0) {
            state.SkipWithError("extraction failed");
            break;
        }
        wall += timer.nsecsElapsed() / 1e9;
        state.PauseTiming();
        inServer += server.seconds();
        state.ResumeTiming();
        state.counters["nodes"] = job.Nbus;
    }
    if (wall > 0) {
        state.counters["server_s"] = inServer / state.iterations();
        state.counters["library_share_%"] = 100.0 * (wall - inServer) / wall;
    }
}
BENCHMARK(BM_ExtractSynthetic)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();

// The families the synthetic network lacks, made from its own rows in group G: a series
// capacitor beside every 20th line, a phase shifter beside every 4th transformer, a
// three-winding transformer on every 50th node (its windings to the next two nodes) and a
// DC line from every 200th node; every other one of each in named units.
bool AddMissingFamilies(QSqlQuery& q)
{
    const char* statements[] = {
        "INSERT INTO CDB_SCAPREABAK(GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, I_Break, "
        "J_Break, Unit, R1, X1, Owner) SELECT GrpName, CONCAT('S', ID_Name), 1, I_Name, J_Name, "
        "2, 1, 1, Unit, 0, -X1/2, Owner FROM CDB_ACLINEBAK WHERE GrpName='G' AND MOD(id,20)=0",
        "INSERT INTO CDB_SHIFTBAK(GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, Unit, R1, X1, "
        "Gm, Bm, Tk, Ang_Shift) SELECT GrpName, CONCAT('P', ID_Name), 1, I_Name, J_Name, 2, Unit, "
        "R1, X1, Gm, Bm, Tk, 5 FROM CDB_TRANS_2WBAK WHERE GrpName='G' AND MOD(id,4)=0",
        "INSERT INTO CDB_TRANS_3WBAK(GrpName, ID_Name, Valid, Name_N, Name_1, Name_2, Name_3, "
        "ID_No1, ID_No2, ID_No3, Break_1, Break_2, Break_3, Unit, R1, X1, R2, X2, R3, X3, Gm, "
        "Bm, Tk1, Tk2, Tk3) SELECT 'G', CONCAT('T3_', a.id), 1, a.Node_Name, a.Node_Name, "
        "b.Node_Name, c.Node_Name, 1, 1, 1, 1, 1, 1, MOD(a.id,100)=50, IF(MOD(a.id,100)=50, "
        "0.01, 4.84), IF(MOD(a.id,100)=50, 0.1, 48.4), IF(MOD(a.id,100)=50, 0.02, 9.68), "
        "IF(MOD(a.id,100)=50, 0.2, 96.8), IF(MOD(a.id,100)=50, 0.03, 14.52), IF(MOD(a.id,100)=50, "
        "0.3, 145.2), 0, 0, 1, 1, 1 FROM CDB_NODEBAK a, CDB_NODEBAK b, CDB_NODEBAK c WHERE "
        "b.id=a.id+1 AND c.id=a.id+2 AND MOD(a.id,50)=0",
        "INSERT INTO CDB_DCLINEBAK(GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, Owner, OP_Mode, "
        "Vd1_kV, Pd1_MW) SELECT 'G', CONCAT('DC', a.id), 1, a.Node_Name, b.Node_Name, 1, 1, 1, "
        "500, 100 FROM CDB_NODEBAK a, CDB_NODEBAK b WHERE b.id=a.id+3 AND MOD(a.id,200)=0"};
    for (const char* sql : statements) {
        if (!q.exec(sql)) {
            return false;
        }
    }
    return true;
}

// The whole save-back of the job, in the mended statement mode, into a new group: 10 % of
// the rows of every job table changed beyond the tolerance and 1 % made orphans (their
// base rows gone), every family run to its end, the group's row and the orphans' nodes.
void BM_SaveBack(benchmark::State& state)
{
    dbserver::ScratchDatabase scratch(QStringLiteral("bench"));
    QString error;
    const samples::Network net = samples::MakeSyntheticNetwork(static_cast<int>(state.range(0)));
    char scheme[] = "SCH";
    QSqlQuery q(*scratch.db());
    if (!scratch.ok() || !samples::WriteNetworkToBaseDb(scratch.db(), net, "G", "SCH", error) ||
        !AddMissingFamilies(q) ||
        CLFCalDataTransfer(0, scheme, scratch.db(), nullptr).ImportLDataFromBaseDB() != 0) {
        state.SkipWithError("the network could not be prepared");
        return;
    }
    for (const char* sql :
         {"UPDATE L2_0 SET X1=X1*1.01 WHERE MOD(EleID,10)=0",
          "UPDATE L3_0 SET X1=X1*1.01 WHERE MOD(EleID,10)=0",
          "UPDATE L4_0 SET Pd1_MW=Pd1_MW+1 WHERE MOD(EleID,10)=0",
          "UPDATE L5_0 SET Pg=Pg+0.01 WHERE MOD(EleID,10)=0",
          "UPDATE L6_0 SET Pl=Pl+0.01 WHERE MOD(EleID,10)=0",
          "UPDATE LK_0 SET Lbreak=1-Lbreak WHERE MOD(EleID,10)=0",
          "UPDATE L2_0 SET EleID=EleID+100000000 WHERE MOD(EleID,100)=1",
          "UPDATE L3_0 SET EleID=EleID+100000000 WHERE MOD(EleID,100)=1",
          "UPDATE L4_0 SET EleID=EleID+100000000 WHERE MOD(EleID,100)=1",
          "UPDATE L5_0 SET EleID=EleID+100000000 WHERE MOD(EleID,100)=1",
          "UPDATE L6_0 SET EleID=EleID+100000000 WHERE MOD(EleID,100)=1",
          "UPDATE LK_0 SET EleID=EleID+100000000 WHERE MOD(EleID,100)=1"}) {
        if (!q.exec(sql)) {
            state.SkipWithError("the job could not be changed");
            return;
        }
    }
    const char* tables[] = {"CDB_ACLINEBAK",  "CDB_PCAPREABAK", "CDB_SCAPREABAK",
                            "CDB_TRANS_2WBAK", "CDB_SHIFTBAK",   "CDB_TRANS_3WBAK",
                            "CDB_DCLINEBAK",  "CDB_GENERATBAK", "CDB_LOADBAK",
                            "CDB_BREAKERBAK", "CDB_ISOSWITCHBAK", "CDB_DATAGROUPBAK"};
    dbserver::ServerStatementTime server(scratch);
    double wall = 0, inServer = 0;
    std::vector<int> counts;
    int orphans = 0, result = -1;
    for (auto _ : state) {
        state.PauseTiming();
        for (const char* t : tables) {
            q.exec(QString("DELETE FROM %1 WHERE GrpName='NEW'").arg(t));
        }
        server.reset();
        state.ResumeTiming();
        QElapsedTimer timer;
        timer.start();
        CLFCalDataTransfer job(0, scheme, scratch.db(), nullptr);
        job.SetStatementMode(SaveStatementMode::Mended);
        result = job.SaveLDataToBaseDB("NEW", true);
        wall += timer.nsecsElapsed() / 1e9;
        state.PauseTiming();
        inServer += server.seconds();
        counts = {job.Nacline, job.Ntrans, job.Ndcline, job.Ngenerat, job.Nload, job.Nswitch};
        state.ResumeTiming();
    }
    q.exec("SELECT (SELECT COUNT(*) FROM L2_0 WHERE EleID>100000000) + (SELECT COUNT(*) FROM "
           "L3_0 WHERE EleID>100000000) + (SELECT COUNT(*) FROM L4_0 WHERE EleID>100000000) + "
           "(SELECT COUNT(*) FROM L5_0 WHERE EleID>100000000) + (SELECT COUNT(*) FROM L6_0 WHERE "
           "EleID>100000000) + (SELECT COUNT(*) FROM LK_0 WHERE EleID>100000000)");
    orphans = q.next() ? q.value(0).toInt() : -1;
    if (result != 0) {
        state.SkipWithError("the save-back did not run to its end");
        return;
    }
    const char* names[] = {"lines", "transformers", "dc", "generators", "loads", "switches"};
    for (std::size_t k = 0; k < counts.size(); ++k) {
        state.counters[names[k]] = counts[k];
    }
    state.counters["orphan_rows"] = orphans;
    if (wall > 0) {
        state.counters["server_s"] = inServer / state.iterations();
        state.counters["library_share_%"] = 100.0 * (wall - inServer) / wall;
    }
}
BENCHMARK(BM_SaveBack)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2)
    ->UseRealTime();

} // namespace
