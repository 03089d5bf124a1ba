// The study program: a whole load-flow study with the library, on a database of its own,
// on the project's private MariaDB or on a server the user owns. Run it with --help for
// its options. The network is the IEEE 14-bus case unless told otherwise.
//
// Each step's messages are printed as the suite's message window would show them: level,
// then text. Steps over a second report their progress on standard error. Exit status: 0
// done; 1 a step of the study failed in a way the design does not foresee; 2 a wrong
// option, a network file that cannot be read, or a server that cannot be used, told in one
// line on standard error, with nothing left behind on the server.
// 3: another run on the same database held the study's job, its data group or the shared
// table tmp beyond --wait seconds, or the new data group exists already; nothing was written.
//
// With --database NAME --existing the study runs on a base database that stands, as one of
// several engineers' studies side by side (--job, --scheme, --group): the guard of
// common/RunGuard.h holds the job and the group from the start to the end of the study.
//
// The update back and the results go in the batched write mode, each family's rows in
// one bulk load; the save-back runs in the mended statement mode, so that it goes to its
// end. With --faithful-saveback the save-back sends the design's texts as they stand and
// shows where this server stops it; --faithful-statements does so too and writes the
// results and the update back with the design's statements, record by record. Each step's
// time is told with the program's CPU time and, where the server runs on this machine,
// the server's.

#include "Progress.h"
#include "SampleNetwork.h"
#include "ServerConnection.h"
#include "Study.h"
#include "StudyOptions.h"
#include "common/GbkWidth.h"
#include "StudyReport.h"
#include "common/ModalBox.h"
#include "common/RunGuard.h"
#include "common/Session.h"
#include "platform/WinDockFeedback.h"
#include "rtdb/rtdb.h"

#include <QApplication>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QSqlQuery>
#include <QVariant>
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>

namespace {

const char* const kProgram = "calcdata_demo";

// One line on standard error: line breaks inside a server's or client's text are folded.
int refuse(const QString& why, int status = 2)
{
    QString line = why.trimmed();
    line.replace(QLatin1Char('\n'), QLatin1String("; "));
    std::fprintf(stderr, "%s: %s\n", kProgram, qPrintable(line));
    return status;
}

// Why the database cannot serve an existing-database study of `job`, in one line; empty when
// it holds the base tables the study reads and writes and the job's tables.
QString MissingTables(QSqlDatabase* db, int job)
{
    QStringList wanted = {"CDB_SBBAK",        "CDB_NODEBAK",       "CDB_BUSBAK",
                          "CDB_ACLINEBAK",    "CDB_TRANS_2WBAK",   "CDB_GENERATBAK",
                          "CDB_LOADBAK",      "CDB_BREAKERBAK",    "CDB_ISOSWITCHBAK",
                          "CDB_SCHEMEINFBAK", "CDB_SCHEMECONTBAK", "CDB_DATAGROUPBAK",
                          "LF_CASE",          "LFR_BS_R"};
    const int base = wanted.size();
    for (const char* prefix : {"L1", "L2", "L3", "L4", "L5", "L6", "LK"}) {
        wanted << QStringLiteral("%1_%2").arg(prefix).arg(job);
    }
    QSqlQuery q(*db);
    q.exec("SELECT UPPER(TABLE_NAME) FROM information_schema.TABLES WHERE "
           "TABLE_SCHEMA=DATABASE()");
    QStringList present;
    while (q.next()) {
        present << q.value(0).toString();
    }
    QStringList missing;
    for (const QString& t : wanted) {
        if (!present.contains(t.toUpper())) {
            missing << t;
        }
    }
    if (missing.isEmpty()) {
        return QString();
    }
    if (wanted.indexOf(missing.first()) < base) {
        return QStringLiteral("the database %1 is no base database: it lacks %2")
            .arg(db->databaseName(), missing.join(", "));
    }
    return QStringLiteral("the database %1 has no tables of job %2 (%3); the schema's "
                          "CALL create_lf_job_tables(%2) makes them")
        .arg(db->databaseName())
        .arg(job)
        .arg(missing.join(", "));
}

int fail(const char* step, const QString& why)
{
    std::fprintf(stderr, "%s: the step \"%s\" failed: %s\n", kProgram, step, qPrintable(why));
    return 1;
}

class Output
{
public:
    explicit Output(bool quiet) : m_quiet(quiet) {}
    void heading(const char* text) const
    {
        if (!m_quiet) {
            std::printf("\n== %s\n", text);
        }
    }
    __attribute__((format(printf, 2, 3))) void line(const char* format, ...) const
    {
        if (!m_quiet) {
            va_list args;
            va_start(args, format);
            std::vprintf(format, args);
            va_end(args);
        }
    }
    bool quiet() const { return m_quiet; }

private:
    bool m_quiet;
};

// A name padded to `columns` terminal columns: a Chinese character takes two, as it takes
// two bytes in the design's count, so the same width lines the columns up.
QByteArray padded(const QVariant& name, int columns)
{
    const QString text = name.toString();
    return text.toUtf8() + QByteArray(std::max(0, columns - GbkWidth(text)), ' ');
}

// The terminal columns that the widest name of `column` takes, at least `least`; the query
// is left before its first row.
int widest(QSqlQuery& q, int column, int least)
{
    int width = least;
    while (q.next()) {
        width = std::max(width, GbkWidth(q.value(column).toString()));
    }
    q.seek(QSql::BeforeFirstRow);
    return width;
}

// The buses as the result table holds them: all of a small network, the extremes of a
// large one (every bus goes into buses.csv with --out).
void printBuses(QSqlDatabase* db, int job, const Output& out)
{
    QSqlQuery q(*db);
    q.exec(QString("SELECT COUNT(*) FROM LFR_BS_R WHERE Case_No=%1").arg(job));
    const int buses = q.next() ? q.value(0).toInt() : 0;
    if (buses <= 30) {
        q.exec(QString("SELECT Bus_Name, V, Angle FROM LFR_BS_R WHERE Case_No=%1 ORDER BY ibs")
                   .arg(job));
        const int w = widest(q, 0, 10);
        out.line("  %s %10s %12s\n", padded("bus", w).constData(), "V (pu)", "angle (deg)");
        while (q.next()) {
            out.line("  %s %10.4f %12.3f\n", padded(q.value(0), w).constData(),
                     q.value(1).toDouble(), q.value(2).toDouble());
        }
        return;
    }
    out.line("  %d buses; the extremes (every bus in buses.csv with --out DIR):\n", buses);
    out.line("  %-22s %-10s %10s %12s\n", "", "bus", "V (pu)", "angle (deg)");
    const std::pair<const char*, const char*> extremes[] = {
        {"lowest voltage", "V ASC"},
        {"highest voltage", "V DESC"},
        {"largest angle behind", "Angle ASC"},
        {"largest angle ahead", "Angle DESC"}};
    for (const auto& [label, order] : extremes) {
        q.exec(QString("SELECT Bus_Name, V, Angle FROM LFR_BS_R WHERE Case_No=%1 AND V>0 ORDER "
                       "BY %2 LIMIT 1")
                   .arg(job)
                   .arg(order));
        if (q.next()) {
            out.line("  %-22s %s %10.4f %12.3f\n", label, padded(q.value(0), 10).constData(),
                     q.value(1).toDouble(), q.value(2).toDouble());
        }
    }
}

void printLineFlows(QSqlDatabase* db, int job, double sb, const Output& out)
{
    QSqlQuery q(*db);
    q.exec(QString("SELECT ID_Name, I_Name, J_Name, Pi, Qi FROM LFR_ACLINE_R WHERE Case_No=%1 "
                   "ORDER BY ABS(Pi) DESC LIMIT 5")
               .arg(job));
    const int line = widest(q, 0, 8), from = widest(q, 1, 8), to = widest(q, 2, 8);
    out.line("  largest line flows:\n  %s %s %s %10s %10s\n", padded("line", line).constData(),
             padded("from", from).constData(), padded("to", to).constData(), "P (MW)",
             "Q (Mvar)");
    while (q.next()) {
        out.line("  %s %s %s %10.2f %10.2f\n", padded(q.value(0), line).constData(),
                 padded(q.value(1), from).constData(), padded(q.value(2), to).constData(),
                 q.value(3).toDouble() * sb, q.value(4).toDouble() * sb);
    }
}

} // namespace

// The report draws its pictures with Qt's widgets and painter, which need an application
// of their kind: offscreen, unless the caller chose a platform.
std::unique_ptr<QCoreApplication> MakeApplication(int& argc, char** argv)
{
    for (int k = 1; k < argc; ++k) {
        if (std::strncmp(argv[k], "--report", 8) == 0) {
            report::UseOffscreenPlatform();
            return std::make_unique<QApplication>(argc, argv);
        }
    }
    return std::make_unique<QCoreApplication>(argc, argv);
}

int main(int argc, char** argv)
{
    const std::unique_ptr<QCoreApplication> application = MakeApplication(argc, argv);
    QCoreApplication& app = *application;
    QCoreApplication::setApplicationName(kProgram);
    QCoreApplication::setApplicationVersion(CALCDATA_VERSION);

    demo::StudyCommandLine commandLine;
    switch (commandLine.parse(app.arguments(), qEnvironmentVariable("MYSQL_PWD"))) {
    case demo::StudyCommandLine::ShowHelp:
        std::printf("%s", qPrintable(commandLine.helpText()));
        return 0;
    case demo::StudyCommandLine::ShowVersion:
        std::printf("%s %s\n", kProgram, CALCDATA_VERSION);
        return 0;
    case demo::StudyCommandLine::Invalid:
        return refuse(commandLine.error());
    case demo::StudyCommandLine::Run:
        break;
    }
    const demo::StudyOptions& options = commandLine.options();
    const Output out(options.quiet);
    QElapsedTimer wall;
    wall.start();

    // What can be checked without the server comes first: nothing is made on it for a
    // network file that cannot be read or a results folder that cannot be written.
    samples::Network net;
    QString error;
    QStringList notHeld;
    if (options.existing) {
        // The base database as it stands: no network is read.
    } else if (options.syntheticBuses > 0) {
        net = samples::MakeSyntheticNetwork(options.syntheticBuses);
    } else if (options.networkFile.endsWith(QLatin1String(".m"), Qt::CaseInsensitive)
                   ? !samples::ReadMatpowerCase(options.networkFile, net, notHeld, error)
                   : !samples::ReadNetworkJson(options.networkFile.isEmpty()
                                                   ? QString(CALCDATA_SAMPLES_DIR "/ieee14.json")
                                                   : options.networkFile,
                                               net, error)) {
        return refuse(error);
    } else if (net.buses.empty()) {
        return refuse(options.networkFile + " holds no buses");
    }
    // What the file holds beyond the base tables is said even in quiet mode: it is lost.
    for (const QString& kind : notHeld) {
        std::fprintf(stderr, "%s: %s: not held by the base tables: %s\n", kProgram,
                     qPrintable(QFileInfo(options.networkFile).fileName()), qPrintable(kind));
    }
    if (!options.saveCase.isEmpty()) {
        const QFileInfo target(options.saveCase);
        if (!target.absoluteDir().exists() || !QFileInfo(target.absolutePath()).isWritable()) {
            return refuse(QStringLiteral("cannot write the solved case into the folder %1")
                              .arg(target.absolutePath()));
        }
    }
    for (const QString& folder : {options.outDir, options.reportDir}) {
        if (!folder.isEmpty() && (!QDir().mkpath(folder) || !QFileInfo(folder).isWritable())) {
            return refuse(QStringLiteral("cannot write the results into the folder %1")
                              .arg(QFileInfo(folder).absoluteFilePath()));
        }
    }
    if (!options.existing) {
        out.line("network %s: %zu buses, %zu branches, %zu generators\n", qPrintable(net.name),
                 net.buses.size(), net.branches.size(), net.gens.size());
    }

    // The server: reachable, and the study's sessions set up as the library's statements
    // need (dbserver::OpenConnection calls SetUpSession on each). A server that compares
    // table names by case gets the schema's spellings of the few names that statements
    // write otherwise.
    const dbserver::ServerAddress& server = options.server;
    {
        QString error;
        SessionSetup setup;
        bool open = false;
        for (int attempt = 0; attempt < 2 && !open; ++attempt) {
            {
                QSqlDatabase check =
                    dbserver::OpenConnection(server, "check", QString(), &error, &setup);
                open = check.isOpen();
            }
            QSqlDatabase::removeDatabase("check");
            if (!open && setup.lowerCaseTableNames == 0 &&
                GetTableSpelling() == TableSpelling::AsWritten) {
                SetTableSpelling(TableSpelling::Schema);
                out.line("the server compares table names by case (lower_case_table_names=0): "
                         "the statements name every table in the schema's spelling\n");
                continue;
            }
            break;
        }
        if (!open && setup.lowerCaseTableNames < 0 && setup.problems.isEmpty()) {
            return refuse(QStringLiteral("cannot reach the %1 at %2: %3%4")
                              .arg(options.ownServer ? "server" : "private server",
                                   server.describe(), error,
                                   options.ownServer ? QString()
                                                     : QStringLiteral(" (start it with: bash "
                                                                      "scripts/db.sh start)")));
        }
        if (!open) {
            return refuse(error + QStringLiteral(" (README: The SQL server and its sql_mode)"));
        }
        for (const QString& change : setup.changes) {
            out.line("the study's sessions: %s\n", qPrintable(change));
        }
    }

    demo::Progress progress(options.quiet ? nullptr : stderr,
                            9 + (options.outDir.isEmpty() ? 0 : 1) +
                                (options.saveCase.isEmpty() ? 0 : 1) +
                                (options.reportDir.isEmpty() ? 0 : 1));
    WinDockFeedback::SetSink([&](const char* text, int level) {
        out.line("  [%2d] %s\n", level, text);
        progress.note(QString::fromLocal8Bit(text));
    });
    SetModalBoxHook([&](ModalBoxKind kind, const QString& caption, const QString& text) {
        out.line("  [%s] %s: %s\n", kind == ModalBoxKind::Warning ? "box!" : "box",
                 qPrintable(caption), qPrintable(text));
        progress.note(text);
    });

    QElapsedTimer setup;
    setup.start();
    std::unique_ptr<dbserver::ScratchDatabase> scratch;
    QSqlDatabase existing;
    QSqlDatabase* db = nullptr;
    if (options.existing) {
        QString error;
        existing = dbserver::OpenConnection(server, "study", options.database, &error);
        if (!existing.isOpen()) {
            return refuse(QStringLiteral("cannot open the database %1 on %2: %3")
                              .arg(options.database, server.describe(), error));
        }
        db = &existing;
        const QString missing = MissingTables(db, options.job);
        if (!missing.isEmpty()) {
            return refuse(missing);
        }
    } else {
        progress.begin(QStringLiteral("a database on the server, with the schema"));
        scratch = std::make_unique<dbserver::ScratchDatabase>(
            server, options.database.isEmpty()
                        ? dbserver::ScratchDatabase::UniqueName(QStringLiteral("calcdata_study"))
                        : options.database);
        progress.end();
        if (!scratch->ok()) {
            return refuse(scratch->error());
        }
        db = scratch->db();
        if (options.keep) {
            scratch->keep();
        }
    }
    const QString databaseName = options.existing ? options.database : scratch->name();
    const double setupMs = setup.nsecsElapsed() / 1e6;

    // The job and the data group are this study's from here to its end, against other runs
    // on the same database (the extraction takes the shared table tmp for its own time).
    CRunGuard guard(db, options.waitSeconds);
    if (!guard.Take({runguard::JobTables("L", options.job), runguard::DataGroup(options.group)})) {
        return refuse(guard.Refusal(), 3);
    }
    if (guard.GroupExists(options.group)) {
        return refuse(runguard::GroupExistsMessage(options.group), 3);
    }
    // The kept database is told also when a step fails (and in quiet mode: it is what the
    // user asked for); without --keep the scratch database goes with the program.
    auto tellKept = [&]() {
        if (options.keep) {
            std::printf("%sthe study's database %s stays on %s; reach it with:\n  %s\n",
                        out.quiet() ? "" : "\n", qPrintable(databaseName),
                        qPrintable(server.describe()),
                        qPrintable(server.clientCommand(databaseName)));
        }
    };
    auto failed = [&](const char* step, const QString& why) {
        std::fflush(stdout);
        const int status = fail(step, why);
        tellKept();
        return status;
    };
    dbDatabase rtdb;
    rtdb.open("study");
    demo::Study study(db, &rtdb);
    study.setProgress(&progress);
    study.setWriteMode(options.faithfulStatements ? RecordWriteMode::PerRecord
                                                  : RecordWriteMode::Batched);
    const dbserver::ServerCpuClock serverClock(*db);
    if (serverClock.available()) {
        study.setServerClock(&serverClock);
    }
    study.setJob(options.job, options.scheme);
    study.setGuard(options.waitSeconds);

    out.heading(QStringLiteral("1. %1extraction by scheme %2 into job %3")
                    .arg(options.existing ? QString() : "the network into the base database, ",
                         options.scheme)
                    .arg(options.job)
                    .toUtf8()
                    .constData());
    if (!options.existing && !study.LoadNetwork(net)) {
        return failed("load the network", study.error());
    }
    if (!study.Extract()) {
        if (!study.guardRefusal().isEmpty()) {
            return refuse(study.guardRefusal(), 3);
        }
        return failed("ImportLDataFromBaseDB", study.error());
    }
    out.heading("2. network records from the job tables, ImportLDataToRTDB, commit");
    if (!study.BuildAndImport()) {
        return failed("records and ImportLDataToRTDB", study.error());
    }
    const demo::RecordCounts& c = study.counts();
    out.line("  records: %d nodes on %d calculation buses, %d lines, %d transformers, "
             "%d shunts, %d generators, %d loads, %d switches\n",
             c.nodes, c.buses, c.lines, c.transformers, c.shunts, c.generators, c.loads,
             c.switches);
    out.heading("3. load flow on the real-time records (Newton-Raphson)");
    if (!study.Solve()) {
        return failed("load flow", study.error());
    }
    out.line("  converged in %d iterations, largest mismatch %.2e pu\n",
             study.solution().iterations, study.solution().maxMismatch);
    out.heading("4. ImportRTDBDataToLFResultDB");
    if (!study.StoreResults()) {
        return failed("ImportRTDBDataToLFResultDB", study.error());
    }
    printBuses(db, options.job, out);
    printLineFlows(db, options.job, study.basePower(), out);
    if (!options.outDir.isEmpty()) {
        if (!study.WriteResultFiles(options.outDir)) {
            return failed("results into CSV files", study.error());
        }
        out.line("  results written to %s (buses.csv, branches.csv, generators.csv, "
                 "switches.csv)\n",
                 qPrintable(QDir(options.outDir).absolutePath()));
    }
    if (!options.saveCase.isEmpty()) {
        if (!study.WriteSolvedCase(net, options.saveCase)) {
            return failed("the solved network into a MATPOWER case", study.error());
        }
        out.line("  the solved network written to %s (MATPOWER case, version 2)\n",
                 qPrintable(QFileInfo(options.saveCase).absoluteFilePath()));
    }

    const bool faithful = options.faithfulSaveBack;
    const QString& group = options.group;
    const QByteArray groupText = group.toUtf8();
    out.heading(QStringLiteral("5. a change in the records, UpdateLDataFromRTDB, SaveLDataToBaseDB "
                               "into group %1 (%2 statements)")
                    .arg(group, faithful ? "faithful" : "mended")
                    .toUtf8()
                    .constData());
    if (!study.ChangeAndSaveBack(group,
                                 faithful ? SaveStatementMode::Faithful : SaveStatementMode::Mended,
                                 options.allOrNothing)) {
        if (!study.guardRefusal().isEmpty()) {
            return refuse(study.guardRefusal(), 3);
        }
        return failed("UpdateLDataFromRTDB", study.error());
    }
    out.line("  changed: generator %s gives 10 %% more, line %s is taken out of service\n",
             qPrintable(study.changedGenerator()), qPrintable(study.lineTakenOut()));
    QSqlQuery q(*db);
    q.prepare("SELECT COUNT(*) FROM CDB_ACLINEBAK WHERE GrpName=?");
    q.addBindValue(group);
    q.exec();
    const int saved = q.next() ? q.value(0).toInt() : -1;
    if (study.saveBackResult() == 0) {
        if (faithful) {
            out.line("  the save-back completed; group %s holds:\n", groupText.constData());
        } else {
            out.line("  the save-back ran to its end in the mended statement mode: the statements "
                     "that\n  MariaDB refuses as the design writes them (\"a.Gm*1.0e6*/(...)\", "
                     "the phase shifter's\n  missing comma, joins named across a comma) were "
                     "sent as intended; every other\n  statement as written "
                     "(--faithful-saveback sends them all as written).\n  group %s holds:\n",
                     groupText.constData());
        }
        // A large network's group holds thousands of rows: the first ten stand for them.
        for (const demo::GroupRows& g : study.GroupContents(group)) {
            QStringList names = g.firstNames;
            if (g.rows > names.size()) {
                names << QStringLiteral("...");
            }
            out.line("    %-17s %3lld row(s): %s\n", qPrintable(g.table), g.rows,
                     qPrintable(names.join(", ")));
        }
    } else {
        out.line("  the save-back stopped where the design says this server stops it: the "
                 "two-winding\n  transformer statement (\"a.Gm*1.0e6*/(...)\") is refused by "
                 "MariaDB, so lines and\n  capacitors were saved (%d line rows now in group "
                 "%s) and transformers,\n  generators, loads, switches, the group's own row and "
                 "new nodes were not.\n",
                 saved, groupText.constData());
    }

    double reportMs = -1;
    if (!options.reportDir.isEmpty()) {
        out.heading("6. the report");
        progress.begin(QStringLiteral("the report"));
        QElapsedTimer t;
        t.start();
        const report::ReportInput input{
            &net, &study, db, group,
            {{QStringLiteral("a database on the server, with the schema"), setupMs}}};
        const bool written = report::WriteStudyReport(options.reportDir, input, error);
        reportMs = t.nsecsElapsed() / 1e6;
        progress.end();
        if (!written) {
            return failed("the report", error);
        }
        out.line("  open %s in a browser\n",
                 qPrintable(QDir(options.reportDir).absoluteFilePath("report.html")));
    }

    out.heading(options.faithfulStatements
                    ? "time of each step (the design's statements, one per record)"
                    : "time of each step (batched write mode)");
    out.line("  %-48s %10s %10s %10s %7s\n", "", "elapsed", "program", "server",
             "server");
    out.line("  %-48s %10s %10s %10s %7s\n", "", "ms", "CPU ms", "CPU ms", "share");
    out.line("  %-48s %10.1f\n", "a database on the server, with the schema", setupMs);
    demo::StepTime total{QStringLiteral("whole study (the steps above the database)")};
    total.serverCpuMs = serverClock.available() ? 0 : -1;
    auto row = [&](const demo::StepTime& t) {
        if (t.serverCpuMs < 0) {
            out.line("  %-48s %10.1f %10.1f %10s\n", qPrintable(t.step), t.ms, t.programCpuMs,
                     "-");
        } else {
            out.line("  %-48s %10.1f %10.1f %10.1f %6.0f%%\n", qPrintable(t.step), t.ms,
                     t.programCpuMs, t.serverCpuMs, t.ms > 0 ? 100.0 * t.serverCpuMs / t.ms : 0);
        }
    };
    for (const demo::StepTime& t : study.times()) {
        row(t);
        total.ms += t.ms;
        total.programCpuMs += t.programCpuMs;
        if (total.serverCpuMs >= 0 && t.serverCpuMs >= 0) {
            total.serverCpuMs += t.serverCpuMs;
        }
    }
    row(total);
    if (reportMs >= 0) {
        out.line("  %-48s %10.1f            (%.1f %% of the study)\n", "the report", reportMs,
                 100 * reportMs / total.ms);
    }
    out.line("  %-48s %10.1f\n", "whole run", wall.nsecsElapsed() / 1e6);
    if (!serverClock.available()) {
        out.line("  (the server's CPU time is told where the server runs on this machine)\n");
    }
    rtdb.close();
    tellKept();
    return 0;
}
