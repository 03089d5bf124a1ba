// Load-flow results of a network of N buses (N nodes, 1.5 N lines, 0.3 N generators,
// 0.5 N loads in the records) written to the result tables and read back, against the
// private MariaDB; and, for comparison, the same line rows by plain multi-row inserts.
// The results of the synthetic network with every family written in both write modes and
// loaded by the server from files of the same rows, in turn:
//   build/bench/results/bench_results --benchmark_filter=ResultsWriteModes

#include "BenchStats.h"
#include "SampleNetwork.h"
#include "ServerBench.h"
#include "ServerConnection.h"
#include "Study.h"
#include "common/SQLMultiInsert.h"
#include "loadflow/results/LFResultDataTransfer.h"
#include "records/NetworkRecords.h"
#include "records/RecordFlags.h"

#include <QDir>
#include <QFile>
#include <QElapsedTimer>
#include <QSqlQuery>
#include <benchmark/benchmark.h>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

using namespace dtsdb;

namespace {

struct Net
{
    std::vector<std::string> names;
};

void Fill(dbDatabase& db, int n, Net& net)
{
    net.names.clear();
    for (int i = 0; i < n; ++i) {
        net.names.push_back("N" + std::to_string(i));
    }
    for (int i = 0; i < n; ++i) {
        nd d;
        d.id = net.names[i].c_str();
        d.ibs = i;
        db.insertRecord(&nd::dbDescriptor, nullptr, &d);
        bs b;
        b.id = i;
        b.name = d.id;
        b.V = 1.0 - 0.00001 * (i % 100);
        b.Angle = -0.01 * (i % 500);
        db.insertRecord(&bs::dbDescriptor, nullptr, &b);
        bus p;
        p.id = d.id;
        p.nd = d.id;
        p.KV = "K220";
        p.ibs = i;
        db.insertRecord(&bus::dbDescriptor, nullptr, &p);
    }
    kv k;
    k.id = "K220";
    k.Base_kV = 220;
    db.insertRecord(&kv::dbDescriptor, nullptr, &k);
    std::string id;
    for (int i = 0; i < n * 3 / 2; ++i) {
        ln l;
        id = "L" + std::to_string(i) + "_ac";
        l.id = id.c_str();
        l.lntype = 1;
        l.I_Name = net.names[i % n].c_str();
        l.J_Name = net.names[(i * 7 + 1) % n].c_str();
        l.Zone = "1";
        l.Pi = 0.1f * (i % 13);
        l.Pj = -l.Pi;
        db.insertRecord(&ln::dbDescriptor, nullptr, &l);
    }
    for (int i = 0; i < n * 3 / 10; ++i) {
        un g;
        id = "G" + std::to_string(i);
        g.id = id.c_str();
        g.Bus_Name = net.names[(i * 3) % n].c_str();
        g.Pg = 1.5f;
        db.insertRecord(&un::dbDescriptor, nullptr, &g);
    }
    for (int i = 0; i < n / 2; ++i) {
        ld l;
        id = "D" + std::to_string(i);
        l.id = id.c_str();
        l.Bus_Name = net.names[(i * 2) % n].c_str();
        l.Pl = 0.5f;
        db.insertRecord(&ld::dbDescriptor, nullptr, &l);
    }
    db.commit();
}

int RowCount(QSqlDatabase* db)
{
    QSqlQuery q(*db);
    int rows = 0;
    for (const char* t : {"LFR_BS_R", "LFR_BUS_R", "LFR_ACLINE_R", "LFR_GEN_R", "LFR_LOAD_R"}) {
        q.exec(QString("SELECT COUNT(*) FROM %1").arg(t));
        rows += q.next() ? q.value(0).toInt() : 0;
    }
    return rows;
}

void BM_WriteResults(benchmark::State& state)
{
    dbserver::ScratchDatabase scratch(QStringLiteral("benchres"));
    dbDatabase rtdb;
    rtdb.open("bench");
    Net net;
    Fill(rtdb, static_cast<int>(state.range(0)), net);
    int rows = 0;
    for (auto _ : state) {
        CLFResultDataTransfer out(1, scratch.db(), &rtdb, false, 0);
        out.ImportRTDBDataToLFResultDB();
        rtdb.commit();
        state.PauseTiming();
        rows = RowCount(scratch.db());
        state.ResumeTiming();
    }
    state.counters["rows"] = rows;
    state.counters["rows_per_s"] =
        benchmark::Counter(rows * double(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_WriteResults)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2)
    ->UseRealTime();

// Changes every record of class T by `change` and writes it back.
template <class T, class Change> void ChangeAll(Change change)
{
    dbCursor<T> c(dbCursorForUpdate);
    if (c.select() > 0) {
        do {
            change(*c);
            c.update();
        } while (c.next());
    }
}

// Moves every element's stored values, so that two cases stored before and after it differ
// in every record.
void Shift(dbDatabase& db)
{
    ChangeAll<ln>([](ln& r) { r.Pi += 1.0f; });
    ChangeAll<un>([](un& r) { r.Pg += 1.0f; });
    ChangeAll<ld>([](ld& r) { r.Pl += 1.0f; });
    ChangeAll<bus>([](bus& r) { r.V += 0.01; });
    db.commit();
}

// Records and two stored cases of a network of N buses, made once per size and kept
// across the repetitions. One at a time, as the record classes belong to one database.
struct StoredCases
{
    int nodes = 0;
    dbserver::ScratchDatabase scratch{QStringLiteral("benchres")};
    dbDatabase rtdb;
    Net net;
    int rows = 0; // rows of one case
    std::unique_ptr<dbserver::ServerStatementTime> server;
};

StoredCases* PrepareCases(benchmark::State& state)
{
    const int nodes = static_cast<int>(state.range(0));
    auto& s = serverbench::Kept<StoredCases>();
    if (!s || s->nodes != nodes) {
        s.reset();
        s = std::make_unique<StoredCases>();
        s->nodes = nodes;
        s->rtdb.open("bench");
        Fill(s->rtdb, nodes, s->net);
        CLFResultDataTransfer(1, s->scratch.db(), &s->rtdb, false, 0).ImportRTDBDataToLFResultDB();
        s->rtdb.commit();
        s->rows = RowCount(s->scratch.db());
        Shift(s->rtdb);
        CLFResultDataTransfer(2, s->scratch.db(), &s->rtdb, false, 0).ImportRTDBDataToLFResultDB();
        s->rtdb.commit();
        s->server = std::make_unique<dbserver::ServerStatementTime>(s->scratch);
    }
    if (!s->scratch.ok() || s->rows == 0) {
        state.SkipWithError("the stored cases could not be prepared");
        return nullptr;
    }
    return s.get();
}

// The stored cases 1 and 2 read back in turn, so that each read changes every record it
// meets; client against server as ClientAndServer tells.
void BM_ReadResultsBack(benchmark::State& state)
{
    StoredCases* s = PrepareCases(state);
    if (!s) {
        return;
    }
    dbserver::ServerStatementTime& server = *s->server;
    serverbench::ClientAndServer sums;
    int caseNo = 1;
    for (auto _ : state) {
        state.PauseTiming();
        server.reset();
        state.ResumeTiming();
        QElapsedTimer timer;
        timer.start();
        const double cpu0 = benchstats::ThreadCpuSeconds();
        CLFResultDataTransfer in(caseNo, s->scratch.db(), &s->rtdb, false, 0);
        in.ImportLFResultDataToRTDB();
        s->rtdb.commit();
        sums.clientCpu += benchstats::ThreadCpuSeconds() - cpu0;
        sums.wall += timer.nsecsElapsed() / 1e9;
        state.PauseTiming();
        sums.serverCpu += server.cpuSeconds();
        sums.inServer += server.seconds();
        caseNo = 3 - caseNo;
        state.ResumeTiming();
    }
    const double n = static_cast<double>(state.iterations());
    state.counters["records_per_s"] = benchmark::Counter(s->rows * n, benchmark::Counter::kIsRate);
    sums.report(state);
}
BENCHMARK(BM_ReadResultsBack)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2)
    ->UseRealTime()
    ->Apply(benchstats::Repeated);

// The best this connection does: line rows of the same width, preformatted, batch 100 or 1,000.
void BM_PlainMultiInsert(benchmark::State& state)
{
    dbserver::ScratchDatabase scratch(QStringLiteral("benchres"));
    const int n = 150000;
    std::vector<QByteArray> rows;
    for (int i = 0; i < n; ++i) {
        rows.push_back(QByteArray("1,'L") + QByteArray::number(i) +
                       "','N1','N2',1,0.500000,0.100000,-0.490000,-0.080000,0.010000,0.020000,"
                       "1.020000,0.980000,0.000000,-3.500000,7,1.500000,100.000000,1,2,16,0");
    }
    for (auto _ : state) {
        QSqlQuery(*scratch.db()).exec("DELETE FROM LFR_ACLINE_R");
        SQLMultiInsert ins(scratch.db(), static_cast<int>(state.range(0)));
        ins.SetTableName("LFR_ACLINE_R");
        ins.SetFldNamelst("Case_No,ID_Name,I_Name,J_Name,ID_No,Pi,Qi,Pj,Qj,Qci,Qcj,Vi,Vj,Anglei,"
                          "Anglej,Zone_No,Rate_kA,Up_Limit,ibs,zbs,q,topflags");
        for (const QByteArray& r : rows) {
            ins.AddRecord(r);
        }
        ins.exec();
    }
    state.counters["rows_per_s"] =
        benchmark::Counter(n * double(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_PlainMultiInsert)
    ->Arg(100)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2)
    ->UseRealTime();

// The synthetic network of N buses with every family, through the study's steps up to the
// records, whose values are then spread so that every row carries numbers of many digits
// (the study's load flow does not converge on every size).
struct StudiedNetwork
{
    int nodes = 0;
    dbserver::ScratchDatabase scratch{QStringLiteral("benchresmodes")};
    dbDatabase rtdb;
    bool ok = false;
    QStringList tables; // the result tables written, each with its file of rows
    QString dir;
};

StudiedNetwork* PrepareStudied(benchmark::State& state)
{
    const int nodes = static_cast<int>(state.range(0));
    auto& s = serverbench::Kept<StudiedNetwork>();
    if (!s || s->nodes != nodes) {
        s.reset();
        s = std::make_unique<StudiedNetwork>();
        s->nodes = nodes;
        s->rtdb.open("bench");
        demo::Study study(s->scratch.db(), &s->rtdb);
        QString error;
        s->ok = s->scratch.ok() && study.LoadNetwork(samples::MakeSyntheticNetwork(nodes)) &&
                samples::AddOtherFamilies(s->scratch.db(), demo::Study::kGroup, error) &&
                study.Extract() && study.BuildAndImport();
        int i = 0;
        ChangeAll<bs>([&](bs& r) { r.V = 1 + (i++ % 97) * 0.000731, r.Angle = -0.0173 * (i % 400); });
        ChangeAll<ln>([&](ln& r) { r.Pi = 0.0137f * (i++ % 301), r.Qi = -r.Pi / 3, r.Pj = -r.Pi * 0.98f; });
        ChangeAll<xf>([&](xf& r) { r.Pi = 0.0211f * (i++ % 171), r.Pj = -r.Pi * 0.99f; });
        ChangeAll<un>([&](un& r) { r.Pg = 0.0313f * (i++ % 113), r.Qg = r.Pg / 5; });
        ChangeAll<ld>([&](ld& r) { r.Pl = 0.0097f * (i++ % 211), r.Ql = r.Pl / 4; });
        ChangeAll<cb>([&](cb& r) { r.q |= dtsdb::CB_TESTED; });
        s->rtdb.commit();
        // The rows of one batched write into files, for the server's own load of them.
        s->dir = QDir::tempPath() + QStringLiteral("/calcdata-bench-results-%1").arg(getpid());
        QDir().mkpath(s->dir);
        CLFResultDataTransfer out(1, s->scratch.db(), &s->rtdb, false, 0);
        out.SetWriteMode(RecordWriteMode::Batched);
        out.ImportRTDBDataToLFResultDB();
        s->rtdb.rollback();
        QSqlQuery q(*s->scratch.db());
        q.exec("SELECT TABLE_NAME FROM information_schema.TABLES WHERE TABLE_SCHEMA=DATABASE() "
               "AND TABLE_NAME LIKE 'lfr\\_%\\_r'");
        while (q.next()) {
            s->tables << q.value(0).toString();
        }
        for (const QString& t : s->tables) {
            QFile::remove(s->dir + "/" + t);
            s->ok = s->ok && s->scratch.exec(QStringLiteral("SELECT * FROM %1 WHERE Case_No=1 "
                                                            "INTO OUTFILE '%2/%1'")
                                                 .arg(t, s->dir));
        }
        serverbench::ReleaseAtEnd([dir = s->dir] { QDir(dir).removeRecursively(); });
    }
    if (!s->ok) {
        state.SkipWithError("the network could not be prepared");
        return nullptr;
    }
    return s.get();
}

// The results in both write modes and the server's own load of the same rows (its rows
// deleted first, as the library deletes a case's rows), in turn; batched_to_load_data is
// how many times longer the batched write takes than the server's load alone.
void BM_ResultsWriteModes(benchmark::State& state)
{
    StudiedNetwork* s = PrepareStudied(state);
    if (!s) {
        return;
    }
    const dbserver::ServerCpuClock server(*s->scratch.db());
    auto write = [&](RecordWriteMode mode) {
        return [&, mode]() {
            CLFResultDataTransfer out(1, s->scratch.db(), &s->rtdb, false, 0);
            out.SetWriteMode(mode);
            const bool ok = out.ImportRTDBDataToLFResultDB() == 0;
            s->rtdb.rollback(); // the switch flows, written alike by every run
            return ok;
        };
    };
    auto load = [&]() {
        bool ok = true;
        for (const QString& t : s->tables) {
            ok = s->scratch.exec(QStringLiteral("DELETE FROM %1 WHERE Case_No=1").arg(t)) &&
                 s->scratch.exec(QStringLiteral("LOAD DATA INFILE '%2/%1' INTO TABLE %1")
                                     .arg(t, s->dir)) &&
                 ok;
        }
        return ok;
    };
    serverbench::WaysInTurn(state, server,
                            {{"load_data", load},
                             {"batched", write(RecordWriteMode::Batched)},
                             {"per_record", write(RecordWriteMode::PerRecord)}});
    state.counters["rows"] = RowCount(s->scratch.db());
}
BENCHMARK(BM_ResultsWriteModes)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->UseRealTime()
    ->Apply(benchstats::Repeated);

} // namespace
