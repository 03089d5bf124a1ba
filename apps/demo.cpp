// The demo: a whole load-flow study with the library, against the private MariaDB on a
// database of its own. The network is the IEEE 14-bus case unless told otherwise:
//
//   calcdata_demo [--network FILE.json] [--synthetic N] [--faithful-saveback]
//
// The save-back runs in the mended statement mode, so that it goes to its end; with
// --faithful-saveback it sends the design's texts as they stand and shows where this
// server stops it.
//
// Each step's messages are printed as the suite's message window would show them:
// level, then text. The program exits non-zero when a step fails in a way the design
// does not foresee, and says which.

#include "SampleNetwork.h"
#include "ServerConnection.h"
#include "Study.h"
#include "platform/WinDockFeedback.h"
#include "rtdb/rtdb.h"

#include <QCoreApplication>
#include <QSqlQuery>
#include <QStringList>
#include <QVariant>
#include <cmath>
#include <cstdio>

namespace {

int fail(const char* step, const QString& why)
{
    std::fprintf(stderr, "\ndemo: the step \"%s\" failed: %s\n", step, qPrintable(why));
    return 1;
}

void heading(const char* text)
{
    std::printf("\n== %s\n", text);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    WinDockFeedback::SetSink(
        [](const char* text, int level) { std::printf("  [%2d] %s\n", level, text); });

    samples::Network net;
    QString error;
    const QStringList args = app.arguments();
    const int synthetic = args.indexOf("--synthetic");
    const int file = args.indexOf("--network");
    const bool faithful = args.contains("--faithful-saveback");
    if (synthetic > 0 && synthetic + 1 < args.size()) {
        net = samples::MakeSyntheticNetwork(args[synthetic + 1].toInt());
    } else {
        const QString path = file > 0 && file + 1 < args.size()
                                 ? args[file + 1]
                                 : QString(CALCDATA_SAMPLES_DIR "/ieee14.json");
        if (!samples::ReadNetworkJson(path, net, error)) {
            return fail("read the network file", error);
        }
    }
    std::printf("network %s: %zu buses, %zu branches, %zu generators\n", qPrintable(net.name),
                net.buses.size(), net.branches.size(), net.gens.size());

    dbserver::ScratchDatabase scratch(QStringLiteral("demo"));
    if (!scratch.ok()) {
        return fail("open a database on the private server", scratch.error());
    }
    dbDatabase rtdb;
    rtdb.open("demo");
    demo::Study study(scratch.db(), &rtdb);

    heading("1. the network into the base database, extraction by scheme into job 0");
    if (!study.LoadNetwork(net)) {
        return fail("load the network", study.error());
    }
    if (!study.Extract()) {
        return fail("ImportLDataFromBaseDB", study.error());
    }
    heading("2. network records from the job tables, ImportLDataToRTDB, commit");
    if (!study.BuildAndImport()) {
        return fail("records and ImportLDataToRTDB", study.error());
    }
    const demo::RecordCounts& c = study.counts();
    std::printf("  records: %d nodes on %d calculation buses, %d lines, %d transformers, "
                "%d shunts, %d generators, %d loads, %d switches\n",
                c.nodes, c.buses, c.lines, c.transformers, c.shunts, c.generators, c.loads,
                c.switches);
    heading("3. load flow on the real-time records (Newton-Raphson)");
    if (!study.Solve()) {
        return fail("load flow", study.error());
    }
    std::printf("  converged in %d iterations, largest mismatch %.2e pu\n",
                study.solution().iterations, study.solution().maxMismatch);
    heading("4. ImportRTDBDataToLFResultDB");
    if (!study.StoreResults()) {
        return fail("ImportRTDBDataToLFResultDB", study.error());
    }
    const double sb = study.basePower();
    QSqlQuery q(*scratch.db());
    q.exec("SELECT Bus_Name, V, Angle FROM LFR_BS_R WHERE Case_No=0 ORDER BY ibs LIMIT 20");
    std::printf("  %-10s %10s %12s\n", "bus", "V (pu)", "angle (deg)");
    while (q.next()) {
        std::printf("  %-10s %10.4f %12.3f\n", qPrintable(q.value(0).toString()),
                    q.value(1).toDouble(), q.value(2).toDouble());
    }
    q.exec("SELECT ID_Name, I_Name, J_Name, Pi, Qi FROM LFR_ACLINE_R WHERE Case_No=0 ORDER BY "
           "ABS(Pi) DESC LIMIT 5");
    std::printf("  largest line flows:\n  %-8s %-8s %-8s %10s %10s\n", "line", "from", "to",
                "P (MW)", "Q (Mvar)");
    while (q.next()) {
        std::printf("  %-8s %-8s %-8s %10.2f %10.2f\n", qPrintable(q.value(0).toString()),
                    qPrintable(q.value(1).toString()), qPrintable(q.value(2).toString()),
                    q.value(3).toDouble() * sb, q.value(4).toDouble() * sb);
    }
    heading(faithful ? "5. a change in the records, UpdateLDataFromRTDB, SaveLDataToBaseDB into "
                       "group NEW (faithful statements)"
                     : "5. a change in the records, UpdateLDataFromRTDB, SaveLDataToBaseDB into "
                       "group NEW (mended statements)");
    if (!study.ChangeAndSaveBack("NEW", faithful ? SaveStatementMode::Faithful
                                                 : SaveStatementMode::Mended)) {
        return fail("UpdateLDataFromRTDB", study.error());
    }
    std::printf("  changed: generator %s gives 10 %% more, line %s is out of service\n",
                qPrintable(study.changedGenerator()), qPrintable(study.lineTakenOut()));
    q.exec("SELECT COUNT(*) FROM CDB_ACLINEBAK WHERE GrpName='NEW'");
    const int saved = q.next() ? q.value(0).toInt() : -1;
    if (study.saveBackResult() == 0) {
        if (faithful) {
            std::printf("  the save-back completed; group NEW holds:\n");
        } else {
            std::printf(
                "  the save-back ran to its end in the mended statement mode: the statements "
                "that\n  MariaDB refuses as the design writes them (\"a.Gm*1.0e6*/(...)\", the "
                "phase shifter's\n  missing comma, joins named across a comma) were sent as "
                "intended; every other\n  statement as written (--faithful-saveback sends them "
                "all as written).\n  group NEW holds:\n");
        }
        for (const char* table : {"CDB_ACLINEBAK", "CDB_PCAPREABAK", "CDB_SCAPREABAK",
                                  "CDB_TRANS_2WBAK", "CDB_SHIFTBAK", "CDB_TRANS_3WBAK",
                                  "CDB_DCLINEBAK", "CDB_GENERATBAK", "CDB_LOADBAK",
                                  "CDB_BREAKERBAK", "CDB_ISOSWITCHBAK", "CDB_DATAGROUPBAK"}) {
            q.exec(QString("SELECT %1 FROM %2 WHERE GrpName='NEW' ORDER BY id")
                       .arg(QString(table) == "CDB_DATAGROUPBAK" ? "GrpName" : "ID_Name", table));
            QStringList names;
            while (q.next()) {
                names << q.value(0).toString();
            }
            if (!names.isEmpty()) {
                std::printf("    %-17s %3lld row(s): %s\n", table, static_cast<long long>(names.size()),
                            qPrintable(names.join(", ")));
            }
        }
    } else {
        std::printf(
            "  the save-back stopped where the design says this server stops it: the "
            "two-winding\n  transformer statement (\"a.Gm*1.0e6*/(...)\") is refused by MariaDB, "
            "so lines and\n  capacitors were saved (%d line rows now in group NEW) and "
            "transformers,\n  generators, loads, switches, the group's own row and new nodes "
            "were not.\n",
            saved);
    }
    heading("time of each step");
    double total = 0;
    for (const demo::StepTime& t : study.times()) {
        std::printf("  %-48s %10.1f ms\n", qPrintable(t.step), t.ms);
        total += t.ms;
    }
    std::printf("  %-48s %10.1f ms\n", "whole study", total);
    rtdb.close();
    return 0;
}
