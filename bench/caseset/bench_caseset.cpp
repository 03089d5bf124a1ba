// A stability case on the synthetic network of 10,000 nodes, loaded into the real-time
// database by ImportSTCaseDataToRTDB against the private MariaDB: 1,000 faults (half of
// them inside their line, each on a new bus), 1,000 disturbances (a hundred of each kind;
// curves of three points, type 6 on single loads) and 1,000 output variables (generator
// angles, node voltages, line and transformer outputs) with ten analysis groups.
//
// Where the time goes: the driver runs with every family on, then with one family on at a
// time; a family's share is its run minus the run with all of them off (which still
// loads the case record, the criteria and the output settings and empties every record
// table). The disturbances are split by kind the same way, and beside them stands the
// time of the working table's statements alone (type 6 makes and drops DT6 for each of
// its rows). Medians of several runs.

#include "SampleNetwork.h"
#include "ServerConnection.h"
#include "Study.h"
#include "records/StabilityCaseRecords.h"
#include "stability/caseset/STCaseDataTransfer.h"
#include "stability/caseset/STCaseStatements.h"

#include <QElapsedTimer>
#include <QSqlQuery>
#include <QStringList>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <vector>

namespace {

constexpr int kCase = 1;
constexpr int kRuns = 5;

bool Exec(QSqlDatabase* db, const QString& sql)
{
    QSqlQuery q(*db);
    return q.exec(sql);
}

// The rows of a three-column query, each as "a|b|c".
QStringList Names(QSqlDatabase* db, const QString& sql)
{
    QStringList out;
    QSqlQuery q(*db);
    q.exec(sql);
    while (q.next()) {
        out << q.value(0).toString() + "|" + q.value(1).toString() + "|" + q.value(2).toString();
    }
    return out;
}

// Inserts `rows` (each a parenthesised value list) into `table` in batches.
bool InsertRows(QSqlDatabase* db, const QString& head, const QStringList& rows)
{
    for (int i = 0; i < rows.size(); i += 500) {
        if (!Exec(db, head + " VALUES " + rows.mid(i, 500).join(','))) {
            return false;
        }
    }
    return true;
}

bool WriteCase(QSqlDatabase* db)
{
    const QStringList lines = Names(db, "SELECT ID_Name,I_Name,J_Name FROM L2_0 WHERE Ntype=1 "
                                        "ORDER BY EleID LIMIT 1000");
    const QStringList gens =
        Names(db, "SELECT ID_Name,Node_Name,'' FROM L5_0 ORDER BY EleID LIMIT 300");
    const QStringList loads =
        Names(db, "SELECT ID_Name,Node_Name,'' FROM L6_0 ORDER BY EleID LIMIT 200");
    const QStringList xfs =
        Names(db, "SELECT ID_Name,I_Name,J_Name FROM L3_0 ORDER BY EleID LIMIT 200");
    if (lines.size() < 1000 || gens.size() < 300 || loads.size() < 200 || xfs.size() < 200) {
        return false;
    }
    auto part = [](const QString& row, int k) { return row.section('|', k, k); };

    QStringList faults, inf, t1, t2, t3, t10, t4, t5, t6, t7, t8, t9, vars;
    for (int k = 0; k < 1000; ++k) {
        const QString& l = lines[k];
        faults << QString("(%1,1,'%2','%3','%4',1,%5,'%6',1,1,1,%7,1,0,0.1,0.2,0,0.01)")
                      .arg(kCase)
                      .arg(part(l, 0), part(l, 1), part(l, 2))
                      .arg(k % 2 ? 50 : 0)
                      .arg(k % 2 ? QString("F%1").arg(k) : QString())
                      .arg(k % 3 == 0 ? 1 : 0);
    }
    for (int k = 0; k < 100; ++k) {
        const QString node = part(lines[k], 1);
        const QString& g = gens[k];
        const QString& ld = loads[k];
        const QString& l = lines[100 + k];
        const QString name = QString("D%1").arg(k);
        // Curves at a node, one name each.
        inf << QString("(%1,1,'%2','%3',0,'','',1)").arg(kCase).arg(node, name + "p")
            << QString("(%1,2,'%2','%3',0,'','',1)").arg(kCase).arg(node, name + "v")
            << QString("(%1,3,'%2','%3',0,'','',1)").arg(kCase).arg(node, name + "w")
            << QString("(%1,10,'%2','%3',0,'','',1)").arg(kCase).arg(node, name + "x");
        for (int p = 0; p < 3; ++p) {
            t1 << QString("(%1,'%2','%3',%4,0.%4,0.0%4)").arg(kCase).arg(name + "p", node).arg(p);
            t2 << QString("(%1,'%2','%3',%4,0.9%4)").arg(kCase).arg(name + "v", node).arg(p);
            t3 << QString("(%1,'%2','%3',%4,0.9%4)").arg(kCase).arg(name + "w", node).arg(p);
            t10 << QString("(%1,'%2','%3',%4,0.9%4)").arg(kCase).arg(name + "x", node).arg(p);
        }
        // Generators, loads and branches.
        inf << QString("(%1,4,'%2','%3',0,'','',1)").arg(kCase).arg(part(g, 1), name + "g")
            << QString("(%1,5,'%2','%3',0,'','',1)").arg(kCase).arg(part(g, 1), name + "c")
            << QString("(%1,6,'%2','',0,'','',1)").arg(kCase).arg(part(ld, 1))
            << QString("(%1,7,'','%2',1,'%3','%4',1)")
                   .arg(kCase)
                   .arg(name + "b", part(l, 1), part(l, 2))
            << QString("(%1,8,'%2','%3',0,'','',1)").arg(kCase).arg(part(ld, 1), name + "o")
            << QString("(%1,9,'%2','%3',2,'%4','',1)")
                   .arg(kCase)
                   .arg(part(g, 1), name + "s", part(lines[k], 1));
        t4 << QString("(%1,'%2','%3','%4','%2',1,0.5,0.4,1,0)")
                  .arg(kCase)
                  .arg(part(g, 1), name + "g", node);
        t5 << QString("(%1,%2,'%3','%4','%5',0.8,0.5,0.1,0,0)")
                  .arg(kCase)
                  .arg(k % 4 + 1)
                  .arg(name + "c", part(g, 1), part(gens[k + 100], 1));
        t6 << QString("(%1,0,2,'%2','%3','',0.7,0.2,0.3,0,0,1,0)")
                  .arg(kCase)
                  .arg(name + "l", part(ld, 1));
        t7 << QString("(%1,2,1,'%2','%3','%4',0.85,0.3,0.2,0.5,4)")
                  .arg(kCase)
                  .arg(name + "b", part(l, 1), part(l, 2));
        t8 << QString("(%1,'%2','%3',0.09,0.01,6.25,0,0,3)")
                  .arg(kCase)
                  .arg(name + "o", part(ld, 1));
        t9 << QString("(%1,'%2','%3',1.05,2,0.02,3,1,0.25,0)")
                  .arg(kCase)
                  .arg(name + "s", part(g, 1));
    }
    int varId = 0;
    auto var = [&](int type, const QString& id, const QString& i, const QString& j, int idNo) {
        ++varId;
        vars << QString("(%1,%2,%3,'C',1,%3,'%4','%5','%6',%7,0,'V%3')")
                    .arg(kCase)
                    .arg(type)
                    .arg(varId)
                    .arg(id, i, j)
                    .arg(idNo);
    };
    for (int k = 0; k < 200; ++k) {
        var(1, "", part(gens[k], 0), part(gens[k + 1], 0), 0);
    }
    for (int k = 0; k < 300; ++k) {
        var(2, part(lines[k], 1), part(lines[k], 1), "", 0);
    }
    for (int k = 0; k < 300; ++k) {
        var(7, part(lines[k], 0), part(lines[k], 1), part(lines[k], 2), 6);
    }
    for (int k = 0; k < 100; ++k) {
        var(7, part(xfs[k], 0), part(xfs[k], 1), part(xfs[k], 2), 10);
        var(12, part(lines[k], 2), part(lines[k], 2), "", 0);
    }
    QStringList groups, groupBuses;
    for (int k = 1; k <= 10; ++k) {
        groups << QString("(%1,1,%2,'A%2',1)").arg(kCase).arg(k);
        groupBuses << QString("(%1,'B%1')").arg(k);
    }
    const QString faultHead = "INSERT INTO ST_FAULT (Case_No,Valid,ID_Name,I_Name,J_Name,ID_No,"
                              "Locate,Name,A,B,C,Ground,`Short`,`Open`,T_Start,T_End,R_Fault,"
                              "X_Fault)";
    return Exec(db, QString("INSERT INTO ST_CASE (Case_No,CASE_LF,T_Total) VALUES (%1,0,10)")
                        .arg(kCase)) &&
           Exec(db, QString("INSERT INTO ST_OUT (Case_No,Variable,AnaFunc,B1) VALUES "
                            "(%1,1,2,'N1')")
                        .arg(kCase)) &&
           InsertRows(db, faultHead, faults) &&
           InsertRows(db,
                      "INSERT INTO ST_DIST_INF (Case_No,Type,Bus_Name,ID_Name,ID_No,I_Name,"
                      "J_Name,Valid)",
                      inf) &&
           InsertRows(db, "INSERT INTO ST_DIST_T1 (Case_No,ID_Name,Bus_Name,T_X,P_Y1,Q_Y2)", t1) &&
           InsertRows(db, "INSERT INTO ST_DIST_T2 (Case_No,ID_Name,Bus_Name,T_X,V_Y)", t2) &&
           InsertRows(db, "INSERT INTO ST_DIST_T3 (Case_No,ID_Name,Bus_Name,T_X,V_Y)", t3) &&
           InsertRows(db, "INSERT INTO ST_DIST_T10 (Case_No,ID_Name,Bus_Name,T_X,V_Y)", t10) &&
           InsertRows(db,
                      "INSERT INTO ST_DIST_T4 (Case_No,Gen_Name,ID_Name,I_Name,J_Name,ID_No,"
                      "K_Ratio,PG0,T_Start,T_End)",
                      t4) &&
           InsertRows(db,
                      "INSERT INTO ST_DIST_T5 (Case_No,Sub_Type,ID_Name,Gen_Name,Ref_Name,"
                      "V_Crit,K_Ratio,T_Delay,T_Start,T_End)",
                      t5) &&
           InsertRows(db,
                      "INSERT INTO ST_DIST_T6 (Case_No,Nrange,Sub_Type,ID_Name,Load_Name,"
                      "Ref_Name,V_Crit,K_Ratio,T_Delay,ID_Branch,ID_No,T_Start,T_End)",
                      t6) &&
           InsertRows(db,
                      "INSERT INTO ST_DIST_T7 (Case_No,Sub_Type,ID_No,ID_Name,I_Name,J_Name,"
                      "V_Crit,K_Ratio,T_Delay,T_Start,T_End)",
                      t7) &&
           InsertRows(db,
                      "INSERT INTO ST_DIST_T8 (Case_No,ID_Name,Load_Name,P0,DPm,Omega,Angle,"
                      "T_Start,T_End)",
                      t8) &&
           InsertRows(db,
                      "INSERT INTO ST_DIST_T9 (Case_No,ID_Name,Gen_Name,V0,PG0,DVm,Omega,"
                      "Angle,T_Start,T_End)",
                      t9) &&
           InsertRows(db,
                      "INSERT INTO ST_VAR_INF (Case_No,Type,Coord_ID,Coord_Name,Coord_Mont,"
                      "Var_ID,ID_name,I_Name,J_Name,ID_No,Sub_Type,Var_Name)",
                      vars) &&
           InsertRows(db, "INSERT INTO ST_ANACAL (Case_No,Valid,Grp_NO,Grp_Name,NumBus)", groups) &&
           InsertRows(db, "INSERT INTO ST_ANA_GRP (Grp_NO,Bus_Name)", groupBuses);
}

struct Run
{
    double ms = 0;
    double serverMs = 0;
};

// The driver on a fresh transfer object, `kRuns` times; the median wall time and the
// server's time of that run.
Run Median(dbserver::ScratchDatabase& scratch, dbserver::ServerStatementTime& server,
           dbDatabase& rtdb, int& result)
{
    std::vector<Run> runs;
    for (int r = 0; r < kRuns; ++r) {
        server.reset();
        QElapsedTimer timer;
        timer.start();
        CSTCaseDataTransfer transfer(kCase, scratch.db(), &rtdb);
        result = transfer.ImportSTCaseDataToRTDB();
        Run run;
        run.ms = timer.nsecsElapsed() / 1e6;
        run.serverMs = server.seconds() * 1e3;
        runs.push_back(run);
    }
    std::sort(runs.begin(), runs.end(), [](const Run& a, const Run& b) { return a.ms < b.ms; });
    return runs[runs.size() / 2];
}

void BM_ImportSTCase(benchmark::State& state)
{
    dbserver::ScratchDatabase scratch(QStringLiteral("benchcase"));
    dbDatabase rtdb;
    rtdb.open("bench");
    demo::Study study(scratch.db(), &rtdb);
    if (!scratch.ok() ||
        !study.LoadNetwork(samples::MakeSyntheticNetwork(static_cast<int>(state.range(0)))) ||
        !study.Extract() || !study.BuildAndImport() || !WriteCase(scratch.db())) {
        state.SkipWithError("the network or the case could not be prepared");
        return;
    }
    dbserver::ServerStatementTime server(scratch);
    QSqlDatabase* db = scratch.db();
    auto flags = [&](int fault, int dist, int variable, int ana) {
        Exec(db, QString("UPDATE ST_CASE SET Ctrl_Fault=%1,CTRL_DIST=%2 WHERE Case_No=%3")
                     .arg(fault)
                     .arg(dist)
                     .arg(kCase));
        Exec(db, QString("UPDATE ST_OUT SET Variable=%1,AnaFunc=%2 WHERE Case_No=%3")
                     .arg(variable)
                     .arg(ana)
                     .arg(kCase));
    };
    int result = -1;
    for (auto _ : state) {
        flags(1, 1, 1, 2);
        Median(scratch, server, rtdb, result); // the first run adds the faults' buses
        const Run all = Median(scratch, server, rtdb, result);
        state.counters["all_ms"] = all.ms;
        state.counters["all_server_%"] = 100.0 * all.serverMs / all.ms;
        state.counters["result"] = result;
        {
            dbCursor<dtsdb::stdist> d;
            dbCursor<dtsdb::stfault> f;
            dbCursor<dtsdb::stvar_inf> v;
            state.counters["stdist"] = d.select();
            state.counters["stfault"] = f.select();
            state.counters["stvar_inf"] = v.select();
            rtdb.precommit();
        }
        flags(0, 0, 0, 0);
        const Run none = Median(scratch, server, rtdb, result);
        state.counters["none_ms"] = none.ms;
        flags(1, 0, 0, 0);
        state.counters["faults_ms"] = Median(scratch, server, rtdb, result).ms - none.ms;
        flags(0, 0, 1, 2);
        state.counters["outputs_ms"] = Median(scratch, server, rtdb, result).ms - none.ms;
        flags(0, 1, 0, 0);
        const Run dist = Median(scratch, server, rtdb, result);
        state.counters["dist_ms"] = dist.ms - none.ms;
        state.counters["dist_server_%"] =
            100.0 * (dist.serverMs - none.serverMs) / (dist.ms - none.ms);
        for (int type = 1; type <= 10; ++type) {
            Exec(db, QString("UPDATE ST_DIST_INF SET Valid = IF(Type=%1,1,0)").arg(type));
            state.counters["dist_t" + std::to_string(type) + "_ms"] =
                Median(scratch, server, rtdb, result).ms - none.ms;
        }
        Exec(db, "UPDATE ST_DIST_INF SET Valid = 1");
        // For comparison in the same run: the working table's statements alone, made and
        // dropped as a hundred type-6 rows make and drop it.
        std::vector<double> ddl;
        for (int r = 0; r < kRuns; ++r) {
            QElapsedTimer timer;
            timer.start();
            for (int row = 0; row < 100; ++row) {
                Exec(db, stcase::SQL_DT6_DROP_BEFORE);
                Exec(db, stcase::SQL_DT6_CREATE);
                Exec(db, stcase::SQL_DT6_DROP_AFTER);
            }
            ddl.push_back(timer.nsecsElapsed() / 1e6);
        }
        std::sort(ddl.begin(), ddl.end());
        state.counters["dt6_ddl_x100_ms"] = ddl[ddl.size() / 2];
    }
}
BENCHMARK(BM_ImportSTCase)->Arg(10000)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

} // namespace
