// One label refresh (PrepareRTLabelLFRData) on the synthetic network of 10,000 and
// 100,000 nodes, against the private MariaDB, with a full label configuration: a row for
// every family, slot and quantity the label map knows. The network goes the road of a
// load-flow study first (base database, extraction, records, job import; the demo's load
// flow is left out, as the time of a refresh does not depend on the values, and it does
// not converge on the synthetic network of 100,000 nodes); the families the synthetic network lacks
// (series elements, DC lines, three-winding transformers) are added to the records, one per hundred
// nodes (DC lines one per thousand).

#include "SampleNetwork.h"
#include "ServerConnection.h"
#include "Study.h"
#include "labels/RTLabelData.h"
#include "records/NetworkRecords.h"
#include "records/RecordFlags.h"
#include "rtdb/rtdb.h"

#include <QElapsedTimer>
#include <QSqlQuery>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <ctime>
#include <string>
#include <vector>

using namespace dtsdb;

namespace {

struct MapRow
{
    int family, slot, quantity;
};

// Every family with its slots and quantities: 5 one-slot families, 6 branch families of
// 3 slots by 3 quantities, the three-winding family of 3 slots by 6 quantities.
std::vector<MapRow> FullConfiguration()
{
    std::vector<MapRow> rows;
    for (int family : {0, 1, 2, 4, 5}) {
        rows.push_back({family, 0, 8});
    }
    for (int family : {6, 7, 8, 9, 10, 11}) {
        for (int slot = 0; slot < 3; ++slot) {
            for (int quantity : {8, 9, 14}) {
                rows.push_back({family, slot, quantity});
            }
        }
    }
    for (int slot = 0; slot < 3; ++slot) {
        for (int quantity : {8, 9, 10, 14, 15, 16}) {
            rows.push_back({12, slot, quantity});
        }
    }
    return rows;
}

template <class T> int Count(const char* text = nullptr, int value = 0)
{
    dbCursor<T> c;
    if (!text) {
        return c.select();
    }
    dbQuery q;
    q = text, value;
    return c.select(q);
}

// Records of class T selected by `text` `value` (all when null) whose q has `bit`.
template <class T> int CountInJob(unsigned bit, const char* text = nullptr, int value = 0)
{
    dbCursor<T> c;
    dbQuery q;
    if (text) {
        q = text, value;
    }
    int n = 0;
    if ((text ? c.select(q) : c.select()) > 0) {
        do {
            n += (c->q & bit) ? 1 : 0;
        } while (c.next());
    }
    return n;
}

// How many record updates one refresh of `rows` makes: each row walks its family, and
// every record that passes the family's gate is updated once per row.
long long UpdatesPerRefresh(const std::vector<MapRow>& rows)
{
    int levelsWithBus = 0;
    {
        dbCursor<kv> k;
        if (k.select() > 0) {
            do {
                dbCursor<bs> b;
                dbQuery q;
                q = "id=", k->ibs;
                levelsWithBus += b.select(q) > 0 ? 1 : 0;
            } while (k.next());
        }
    }
    long long n = 0;
    for (const MapRow& r : rows) {
        switch (r.family) {
        case 0:
            n += levelsWithBus + Count<bus>("ibs >", 0);
            break;
        case 1:
            n += Count<un>();
            break;
        case 2:
            n += Count<ld>();
            break;
        case 4:
        case 5:
            n += CountInJob<cp>(CP_INJOB);
            break;
        case 6:
            n += CountInJob<ln>(LN_INJOB, "lntype=", 1);
            break;
        case 7:
            n += CountInJob<dln>(DLN_INJOB);
            break;
        case 8:
        case 9:
            n += CountInJob<ln>(LN_INJOB, "lntype=", 2);
            break;
        case 10:
        case 11:
        case 12:
            n += CountInJob<xf>(XF_INJOB, "type=", r.family - 9);
            break;
        }
    }
    return n;
}

// The families the synthetic network has no element of, in the job, with a flow.
void AddMissingFamilies(dbDatabase& rtdb, int nodes)
{
    std::string id, from, to;
    for (int k = 0; k < nodes / 100; ++k) {
        from = "N" + std::to_string(1 + k);
        to = "N" + std::to_string(2 + k);
        const float p = 0.01f * (k % 50) - 0.2f;
        ln s;
        id = "S" + std::to_string(k) + "_sc";
        s.id = id.c_str();
        s.lntype = 2;
        s.I_Name = from.c_str();
        s.J_Name = to.c_str();
        s.Pi = p;
        s.Pj = -p;
        s.q = LN_INJOB;
        rtdb.insertRecord(&ln::dbDescriptor, nullptr, &s);
        for (int w = 1; w <= 3; ++w) {
            xf t;
            id = "W" + std::to_string(k) + "_3w" + std::to_string(w);
            t.id = id.c_str();
            t.type = 3;
            t.Pi = w == 1 ? p : -p / 2;
            t.Pj = -t.Pi;
            t.q = XF_INJOB;
            rtdb.insertRecord(&xf::dbDescriptor, nullptr, &t);
        }
        if (k % 10 == 0) {
            dln d;
            id = "DC" + std::to_string(k);
            d.id = id.c_str();
            d.Pi = 10 * p;
            d.Pj = -10 * p;
            d.q = DLN_INJOB;
            rtdb.insertRecord(&dln::dbDescriptor, nullptr, &d);
        }
    }
    rtdb.commit();
}

double Median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.size() % 2 ? v[v.size() / 2] : (v[v.size() / 2 - 1] + v[v.size() / 2]) / 2;
}

// Seconds of this thread's processor time: on a machine shared with other work, the wall
// time of a run also holds the time the thread waited for a processor.
double ThreadSeconds()
{
    timespec ts;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return ts.tv_sec + ts.tv_nsec / 1e9;
}

struct Times
{
    std::vector<double> wall, cpu;
};

// One refresh of the full configuration, committed.
void Refresh(QSqlDatabase* db, dbDatabase* rtdb, int mode, Times& times)
{
    QElapsedTimer t;
    t.start();
    const double cpu = ThreadSeconds();
    PrepareRTLabelLFRData(db, rtdb, mode, false, false);
    times.cpu.push_back(ThreadSeconds() - cpu);
    times.wall.push_back(t.nsecsElapsed() / 1e9);
}

// The engine's floor: a walk over the AC lines with an update of each and nothing else,
// committed; processor seconds, and `updates` gets their number.
double PlainUpdateWalk(dbDatabase* rtdb, long long& updates)
{
    const double cpu = ThreadSeconds();
    dbCursor<ln> c(dbCursorForUpdate);
    dbQuery q;
    q = "lntype=", 1;
    updates = 0;
    if (c.select(q) > 0) {
        do {
            c.update();
            ++updates;
        } while (c.next());
    }
    rtdb->commit();
    return ThreadSeconds() - cpu;
}

// Refreshes of the full configuration, per unit (mode 0) and named (mode 32, which adds a
// base-voltage lookup per physical bus), alternating, kRepeats of each on one network;
// the time shown is the median refresh in mode 0, the counters give medians and spreads.
// For a ratio measured in the same run, the same number of plain update walks.
constexpr int kRepeats = 7;

void BM_LabelRefresh(benchmark::State& state)
{
    const int nodes = static_cast<int>(state.range(0));
    dbserver::ScratchDatabase scratch(QStringLiteral("benchlabels"));
    dbDatabase rtdb;
    rtdb.open("labels");
    demo::Study study(scratch.db(), &rtdb);
    if (!scratch.ok() || !study.LoadNetwork(samples::MakeSyntheticNetwork(nodes)) ||
        !study.Extract() || !study.BuildAndImport()) {
        state.SkipWithError(("the network could not be prepared: " + study.error()).toUtf8());
        return;
    }
    AddMissingFamilies(rtdb, nodes);
    const std::vector<MapRow> rows = FullConfiguration();
    QString values;
    for (const MapRow& r : rows) {
        values += QString("%1(%2,%3,%4,4,1)")
                      .arg(values.isEmpty() ? "" : ",")
                      .arg(r.family)
                      .arg(r.slot)
                      .arg(r.quantity);
    }
    if (!scratch.exec("INSERT INTO RTLABELMAP(Ele_OrderNo,RT_No,Label_Type,LabelsConf_Num,"
                      "MChanged) VALUES " +
                      values)) {
        state.SkipWithError("the label map could not be written");
        return;
    }
    const long long updates = UpdatesPerRefresh(rows);
    rtdb.commit();

    Times perUnit, named;
    std::vector<double> walk;
    long long walked = 0;
    for (auto _ : state) {
        for (int k = 0; k < kRepeats; ++k) {
            Refresh(scratch.db(), &rtdb, 0, perUnit);
            Refresh(scratch.db(), &rtdb, LABEL_MODE_NAMED, named);
            walk.push_back(PlainUpdateWalk(&rtdb, walked));
        }
        state.SetIterationTime(Median(perUnit.wall));
    }
    state.counters["map_rows"] = static_cast<double>(rows.size());
    state.counters["updates"] = static_cast<double>(updates);
    const auto report = [&](const std::string& name, const std::vector<double>& v) {
        state.counters[name + "_ms"] = 1e3 * Median(v);
        state.counters[name + "_min"] = 1e3 * *std::min_element(v.begin(), v.end());
        state.counters[name + "_max"] = 1e3 * *std::max_element(v.begin(), v.end());
    };
    report("wall", perUnit.wall);
    report("cpu", perUnit.cpu);
    report("named_wall", named.wall);
    report("named_cpu", named.cpu);
    state.counters["updates_per_s"] = updates / Median(perUnit.wall);
    state.counters["cpu_updates_per_s"] = updates / Median(perUnit.cpu);
    state.counters["named_updates_per_s"] = updates / Median(named.wall);
    // Processor time per update of a refresh, and of a bare update walk.
    state.counters["cpu_ns_per_update"] = 1e9 * Median(perUnit.cpu) / updates;
    state.counters["walk_ns_per_update"] = 1e9 * Median(walk) / walked;
}
BENCHMARK(BM_LabelRefresh)
    ->Arg(10000)
    ->Arg(100000)
    ->ArgName("nodes")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->UseManualTime();

} // namespace
