// The study program as a user meets it: its command line, its refusals (one line on
// standard error, exit status 2, nothing left on the server), its result files, and its
// progress lines.

#include "DbTest.h"
#include "ProgramRuns.h"
#include "Progress.h"
#include "StudyOptions.h"
#include "common/Session.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <cstdio>
#include <thread>
#include <tuple>

using demo::StudyCommandLine;

namespace {

StudyCommandLine::Outcome Parse(StudyCommandLine& cl, QStringList args,
                                const QString& environmentPassword = QString())
{
    args.prepend(QStringLiteral("calcdata_demo"));
    return cl.parse(args, environmentPassword);
}

QStringList Lines(const QString& path)
{
    QFile f(path);
    const bool written = f.open(QIODevice::ReadOnly); // a file not written has no lines
    return QString::fromUtf8(written ? f.readAll() : QByteArray()).split('\n', Qt::SkipEmptyParts);
}

} // namespace

TEST(StudyOptions, AcceptsWhatTheHelpOffersAndRefusesTheRestInOneLine)
{
    StudyCommandLine cl;
    const demo::StudyOptions& o = cl.options();
    ASSERT_EQ(Parse(cl, {}), StudyCommandLine::Run);
    EXPECT_TRUE(o.networkFile.isEmpty() && !o.ownServer && !o.keep && !o.faithfulSaveBack)
        << "the IEEE 14 sample on the private server, the mended statement mode";
    EXPECT_EQ(o.group, "NEW");
    ASSERT_EQ(Parse(cl, {"--synthetic", "500", "--out", "res", "--keep", "--quiet", "--database",
                         "study_1", "--faithful-saveback"}),
              StudyCommandLine::Run);
    EXPECT_EQ(std::tie(o.syntheticBuses, o.outDir, o.keep, o.quiet, o.database, o.faithfulSaveBack),
              std::make_tuple(500, QString("res"), true, true, QString("study_1"), true));
    ASSERT_EQ(Parse(cl, {"--server", "db.example:3307", "--user", "eng", "--password", "pw"}),
              StudyCommandLine::Run);
    EXPECT_EQ(std::tie(o.ownServer, o.server.host, o.server.port, o.server.user, o.server.password),
              std::make_tuple(true, QString("db.example"), 3307, QString("eng"), QString("pw")));
    ASSERT_EQ(Parse(cl, {"--server", "[::1]"}, "from-env"), StudyCommandLine::Run);
    EXPECT_EQ(std::tie(o.server.host, o.server.port, o.server.password),
              std::make_tuple(QString("::1"), 3306, QString("from-env")));
    EXPECT_EQ(Parse(cl, {"--help"}), StudyCommandLine::ShowHelp);
    EXPECT_EQ(Parse(cl, {"--version"}), StudyCommandLine::ShowVersion);

    // One of each check's refusals (an unknown option stands for all the parser refuses; the
    // group's, with its text, is the program's).
    const QList<QStringList> refused = {
        {"--netwrok", "x.json"},         {"--network", "a.json", "--synthetic", "9"},
        {"--synthetic", "2"},            {"--server", "host:99999"},
        {"--server", "host:port"},       {"--user", "eng"},
        {"--database", "x;DROP DATABASE y"}, {"--out", ""},
        {"--save-case", "solved.json"},  {"ieee14.json"},
        {"--existing"},                  {"--database", "b", "--existing", "--synthetic", "9"},
        {"--wait", "soon"},              {"--scheme", "华北电网运行方式调整计算方案甲乙丙"}};
    for (const QStringList& args : refused) {
        EXPECT_EQ(Parse(cl, args), StudyCommandLine::Invalid) << args.join(' ').toStdString();
        EXPECT_FALSE(cl.error().isEmpty() || cl.error().contains('\n')) << cl.error().toStdString();
    }
}

class Program : public testsupport::DbTest
{};

// Refused before anything is made on the server, with exit status 2 and one line on
// standard error: a bad command line, a file that is missing or cannot be read (a MATPOWER
// case with its line and the reason), a server that does not answer, a study database that
// stands already (it is left as it is) or whose schema cannot be loaded (it is dropped).
TEST_F(Program,
       RefusesInOneLineWithStatusTwoLeavingNothingWritesCsvKeepsADatabaseAskedAndEveryChineseName)
{
    QTemporaryDir tmp;
    const QString never = QString("t_never_%1").arg(QCoreApplication::applicationPid());
    const auto refused = [&](const QStringList& args, const QString& why,
                             const QProcessEnvironment& env = QProcessEnvironment::systemEnvironment()) {
        const ProgramRun r = AtOnce({args}, env)[0];
        EXPECT_EQ(r.status, 2) << args.join(' ').toStdString() << "\n" << r.err.toStdString();
        EXPECT_TRUE(r.err.startsWith("calcdata_demo: " + why) && r.err.count('\n') == 1)
            << r.err.toStdString();
        EXPECT_EQ(Count("information_schema.SCHEMATA WHERE SCHEMA_NAME='" + never + "'"), 0);
    };
    const auto write = [&](const QString& name, const QString& text) {
        QFile f(tmp.filePath(name));
        EXPECT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(text.toUtf8());
        return f.fileName();
    };
    refused({"--network", write("malformed.json", "{\"buses\": [ {\"num\": 1,"), "--database", never}, "");
    refused({"--server", "127.0.0.1:1", "--database", never}, "");
    refused({"--group", "华北电网运行方式调整甲", "--database", never},
            "--group needs a data group's name of 1 to 20 bytes as the base tables count them "
            "(a Chinese character 2, so at most 10 of them), not '华北电网运行方式调整甲' (22 "
            "bytes)\n");
    refused({"--database", scratch().name()}, "");
    refused({"--database", never, "--existing"}, "cannot open the database " + never);
    // The suite's database has no tables of job 3.
    refused({"--database", scratch().name(), "--existing", "--job", "3"},
            "the database " + scratch().name() + " has no tables of job 3 (L1_3, L2_3, L3_3, L4_3, "
            "L5_3, L6_3, LK_3); the schema's CALL create_lf_job_tables(3) makes them\n");
    EXPECT_EQ(Count("LF_CASE"), 0) << "the suite's own database stands and still answers";
    QProcessEnvironment noClient = QProcessEnvironment::systemEnvironment();
    noClient.insert("PATH", tmp.path());
    refused({"--database", never}, "cannot load the schema into " + never, noClient);

    const QString head = "function mpc = bad\nmpc.baseMVA = 100;\nmpc.bus = [\n"
                         "\t1\t3\t0\t0\t0\t0\t1\t1\t0\t230\t1\t1.1\t0.9;\n"
                         "\t2\t1\t50\t20\t0\t0\t1\t1\t0\t230\t1\t1.1\t0.9;\n];\n";
    const QString gen = "mpc.gen = [ 1 50 0 100 -100 1.02 100 1 100 0 ];\n";
    const QString branch = "mpc.branch = [\n 1 2 0.01 0.1 0 0 0 0 0 0 1;\n];\n";
    const std::pair<QString, QString> malformed[] = {
        {head + branch, "bad.m:9: the case has no matrix mpc.gen"},
        {QString(head).replace("0\t230\t1\t1.1\t0.9;\n];", "0\t230\t1\t1.1;\n];") + gen + branch,
         "bad.m:5: this row of mpc.bus has 12 values, the rows above have 13"},
        {head + gen + QString(branch).replace(" 1 2 ", " 1 7 "),
         "bad.m:9: branch from bus 1 to bus 7: there is no bus 7"},
        {head + gen + QString(branch).replace("0.01", "0.0l"),
         "bad.m:9: '0.0l' in mpc.branch is not a number"},
        {head + gen + QString(branch).replace("0.01", "Inf"),
         "bad.m:9: Inf as r (column 3 of mpc.branch): only limits and ratings may be unbounded"},
        {head + gen + branch + "mpc.bus_name = { '广州供电局一号变电站甲'; 'B2' };\n",
         "bad.m:11: the name '广州供电局一号变电站甲' of bus 1 takes 22 bytes; the base tables "
         "hold 20"},
    };
    for (const auto& [text, why] : malformed) {
        refused({"--network", write("bad.m", text), "--database", never}, why + "\n");
    }

    // IEEE 14 into CSV files, checked against the published solution in MW and Mvar (branch
    // 1-2: 156.88 - j20.40 at its from end, -152.59 + j27.68 at its to end; generator 1:
    // 232.39 - j16.55); the sample has no base voltages, so no kV and no line rating. At the
    // same time the Chinese sample from its file to the CSV files: every bus, line (with its
    // ends) and generator under the name the file gives it, the save-back of their changes
    // included. (A group of ten Chinese characters is the concurrent test's.)
    const QString out = tmp.filePath("results/ieee14"), cn = tmp.filePath("cn");
    const QString kept = QString("t_kept_%1").arg(QCoreApplication::applicationPid());
    const std::vector<ProgramRun> runs =
        AtOnce({{"--out", out, "--keep", "--database", kept, "--quiet"},
                {"--network", CALCDATA_SAMPLES_DIR "/cn_grid.json", "--out", cn}});
    const ProgramRun& r = runs[0];
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_TRUE(r.err.isEmpty()) << "quiet: " << r.err.toStdString();
    EXPECT_TRUE(r.out.startsWith("the study's database " + kept + " stays on")) << r.out.toStdString();
    Exec("DROP DATABASE " + kept); // fails the test unless it was kept

    const std::tuple<const char*, const char*, int, QString, std::vector<double>> files[] = {
        {"buses.csv", "bus,V_pu,V_kV,angle_deg", 15, "B1,1.060000,,0.0000", {}},
        {"branches.csv",
         "branch,kind,from_node,to_node,circuit,P_from_MW,Q_from_Mvar,P_to_MW,Q_to_Mvar,loading_pct",
         21, "L1,line,N1,N2,1", {156.88, -20.40, -152.59, 27.68}},
        {"generators.csv", "generator,node,P_MW,Q_Mvar,V_pu,angle_deg", 6, "G1,N1G",
         {232.39, -16.55, 1.06, 0}},
        {"switches.csv", "switch,from_node,to_node,P_MW,Q_Mvar", 11, "", {}}};
    for (const auto& [file, header, lines, first, values] : files) {
        const QStringList written = Lines(out + "/" + file);
        ASSERT_EQ(written.size(), lines) << file;
        EXPECT_EQ(written[0], header);
        EXPECT_TRUE(written[1].startsWith(first)) << written[1].toStdString();
        const QStringList cells = written[1].mid(first.size() + 1).split(',');
        for (std::size_t c = 0; c < values.size(); ++c) {
            EXPECT_NEAR(cells.value(int(c)).toDouble(), values[c], 0.01) << file << " " << c;
        }
    }
    EXPECT_TRUE(Lines(out + "/branches.csv")[1].endsWith(",")) << "unrated";

    ASSERT_EQ(runs[1].status, 0) << runs[1].err.toStdString();
    QFile file(CALCDATA_SAMPLES_DIR "/cn_grid.json");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QJsonObject net = QJsonDocument::fromJson(file.readAll()).object();
    QMap<int, QString> bus;
    QStringList names[3]; // as buses.csv, branches.csv and generators.csv begin their lines
    for (const QJsonValue& b : net["buses"].toArray()) {
        names[0] << (bus[b["num"].toInt()] = b["name"].toString());
        EXPECT_TRUE(runs[1].out.contains("\n  " + names[0].last() + " ")) << "printed";
    }
    for (const QJsonValue& b : net["branches"].toArray()) {
        names[1] << b["name"].toString() + ",line," + bus[b["from"].toInt()] + "," +
                        bus[b["to"].toInt()];
    }
    for (const QJsonValue& g : net["gens"].toArray()) {
        names[2] << g["name"].toString();
    }
    const char* cnFiles[] = {"buses.csv", "branches.csv", "generators.csv"};
    for (int f = 0; f < 3; ++f) {
        QStringList written;
        for (const QString& line : Lines(cn + "/" + cnFiles[f]).mid(1)) {
            written << line.section(',', 0, f == 1 ? 3 : 0);
        }
        written.sort();
        names[f].sort();
        EXPECT_EQ(written, names[f]) << cnFiles[f];
    }
}

// Servers that nobody set up for the library, from CALCDATA_OTHER_SERVERS (HOST:PORT, comma
// separated; scripts/test.sh gives a MariaDB with its own defaults and, in its cluster run, a
// cluster node): the study sets up its sessions, says what it changed, takes the schema's
// table spellings where the server compares names by case, and runs to its end.
TEST(StudyOnOtherServers, SetsUpItsSessionsTakesTheSchemasSpellingsWhereNeededAndRunsToItsEnd)
{
    const QStringList servers =
        qEnvironmentVariable("CALCDATA_OTHER_SERVERS").split(',', Qt::SkipEmptyParts);
    if (servers.isEmpty()) {
        GTEST_SKIP() << "no other server given (CALCDATA_OTHER_SERVERS, as scripts/test.sh sets)";
    }
    for (const QString& server : servers) {
        SCOPED_TRACE(server.toStdString());
        const dbserver::ServerAddress a{{}, server.section(':', 0, 0),
                                        server.section(':', 1).toInt(), "root", {}};
        SessionSetup setup;
        dbserver::OpenConnection(a, "other", QString(), nullptr, &setup);
        QSqlDatabase::removeDatabase("other");
        ASSERT_GE(setup.lowerCaseTableNames, 0) << "the server answers";

        const ProgramRun r = AtOnce({{"--server", server, "--user", "root"}})[0];
        ASSERT_EQ(r.status, 0) << r.err.toStdString();
        const QStringList lines = r.out.split('\n');
        EXPECT_EQ(lines.contains("the server compares table names by case "
                                 "(lower_case_table_names=0): the statements name every table "
                                 "in the schema's spelling"),
                  setup.lowerCaseTableNames == 0);
        EXPECT_TRUE(lines.contains(
            "the study's sessions: sql_mode: 'STRICT_TRANS_TABLES,ERROR_FOR_DIVISION_BY_ZERO,"
            "NO_AUTO_CREATE_USER,NO_ENGINE_SUBSTITUTION' -> 'ERROR_FOR_DIVISION_BY_ZERO,"
            "NO_AUTO_CREATE_USER,NO_ENGINE_SUBSTITUTION'"))
            << "MariaDB's own default mode less the strict one\n" << r.out.toStdString();
        EXPECT_TRUE(lines.contains("    CDB_GENERATBAK      5 row(s): G1, G2, G3, G4, G5"))
            << r.out.toStdString();
    }
}

// Quiet mode, a progress with nothing to write to, is the CSV test's --quiet run.
TEST(StudyProgress, TellsAStepOverASecondAndIsSilentForShortSteps)
{
    std::FILE* sink = std::tmpfile();
    ASSERT_NE(sink, nullptr);
    {
        demo::Progress progress(sink, 2);
        progress.begin("short");
        progress.end();
        progress.begin("long");
        progress.advance(300, 1200, "rows");
        std::this_thread::sleep_for(std::chrono::milliseconds(2500));
        progress.end();
    }
    std::rewind(sink);
    QFile written;
    ASSERT_TRUE(written.open(sink, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle));
    const QString text = QString::fromUtf8(written.readAll());
    EXPECT_FALSE(text.contains("short")) << text.toStdString();
    EXPECT_TRUE(text.contains("  [2/2] long: 300 of 1200 rows (25 %), 1 s\n")) << text.toStdString();
    EXPECT_TRUE(text.contains("  [2/2] long: done in 2.")) << text.toStdString();
}
