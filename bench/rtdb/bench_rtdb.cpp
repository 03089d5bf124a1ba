// The real-time database on 100,000 ln records with distinct ids, single thread: keyed
// select and fetch beside a plain hash map of the same records, select and update,
// insert, rollback of 100,000 updates, and the resident memory of the table against the
// bytes of its records, texts and index.

#include "BenchStats.h"
#include "records/NetworkRecords.h"
#include "records/RecordFlags.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <unistd.h>
#include <unordered_map>
#include <vector>

using namespace dtsdb;

namespace {

constexpr int kRecords = 100000;

struct Names
{
    std::vector<std::string> id, iname, jname;
    Names()
    {
        for (int i = 0; i < kRecords; ++i) {
            id.push_back("L" + std::to_string(i) + "_ac");
            iname.push_back("N" + std::to_string(i));
            jname.push_back("N" + std::to_string(i + 1));
        }
    }
};
const Names& names()
{
    static Names n;
    return n;
}

ln Line(int i)
{
    ln l;
    l.id = names().id[i].c_str();
    l.I_Name = names().iname[i].c_str();
    l.J_Name = names().jname[i].c_str();
    l.Zone = "1";
    l.Type = "LGJ-400";
    l.lntype = 1;
    l.R1 = 0.01f * (i % 7);
    l.X1 = 0.1f;
    return l;
}

std::size_t TextBytes(const ln& l)
{
    std::size_t n = 0;
    for (const char* s : {l.id, l.Zone, l.I_Name, l.J_Name, l.Type, l.Bus_Ctrl}) {
        n += std::strlen(s) + 1;
    }
    return n;
}

void Fill(dbDatabase& db)
{
    for (int i = 0; i < kRecords; ++i) {
        ln l = Line(i);
        db.insertRecord(&ln::dbDescriptor, nullptr, &l);
    }
    db.commit();
}

void Empty(dbDatabase& db)
{
    dbCursor<ln> c(dbCursorForUpdate);
    c.removeAll();
    db.commit();
}

// The ids to look up, in a random order fixed by the seed. They are copied into one
// list in that order, as a transfer reads them from consecutive rows of a job table:
// the record is what the lookup has to find, not the id.
std::vector<std::string> Order()
{
    std::vector<int> o(kRecords);
    for (int i = 0; i < kRecords; ++i) {
        o[i] = i;
    }
    std::shuffle(o.begin(), o.end(), std::mt19937(42));
    std::vector<std::string> ids;
    for (int i : o) {
        ids.push_back(names().id[i]);
    }
    return ids;
}

long ResidentBytes()
{
    long pages = 0, resident = 0;
    if (FILE* f = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(f, "%ld %ld", &pages, &resident) != 2) {
            resident = 0;
        }
        std::fclose(f);
    }
    return resident * sysconf(_SC_PAGESIZE);
}

// The same records in a plain hash map by id: the baseline of a keyed select. A lookup
// makes its key from the id's bytes, as the engine copies its parameter, and copies the
// record out, as a fetch does.
using LineMap = std::unordered_map<std::string, ln>;

const ln& FoundInMap(const LineMap& map, const char* id)
{
    static const ln none;
    auto it = map.find(std::string(id));
    return it == map.end() ? none : it->second;
}

// Blocks of lookups, the engine's and the map's of the same ids in turn, each timed by the
// thread's CPU clock, so that both meet the same machine; which goes first alternates.
// `idOf(k)` is the id of the k-th lookup. The counters give each side's nanoseconds per
// lookup and their ratio within the run.
template <class IdOf> void EngineAgainstMap(benchmark::State& state, IdOf idOf)
{
    constexpr int kBlock = 1000;
    dbDatabase db;
    db.open("bench");
    Fill(db);
    LineMap map;
    map.reserve(kRecords);
    for (int i = 0; i < kRecords; ++i) {
        map.emplace(names().id[i], Line(i));
    }
    std::size_t next = 0;
    double engine = 0, plain = 0, sum = 0;
    long long found = 0, lookups = 0;
    bool engineFirst = true;
    for (auto _ : state) {
        const std::size_t first = next;
        auto runEngine = [&]() {
            const double t0 = benchstats::ThreadCpuSeconds();
            for (int i = 0; i < kBlock; ++i) {
                dbCursor<ln> c; // a fresh cursor and query per lookup, as a transfer makes them
                dbQuery q;
                q = "id=", idOf(first + i);
                if (c.select(q) == 1) {
                    benchmark::DoNotOptimize(*c.get());
                    sum += c->R1;
                    ++found;
                }
            }
            engine += benchstats::ThreadCpuSeconds() - t0;
        };
        auto runMap = [&]() {
            const double t0 = benchstats::ThreadCpuSeconds();
            for (int i = 0; i < kBlock; ++i) {
                ln out;
                std::memcpy(static_cast<void*>(&out), &FoundInMap(map, idOf(first + i)),
                            sizeof out);
                benchmark::DoNotOptimize(out);
                sum += out.R1;
            }
            plain += benchstats::ThreadCpuSeconds() - t0;
        };
        if (engineFirst) {
            runEngine();
            runMap();
        } else {
            runMap();
            runEngine();
        }
        engineFirst = !engineFirst;
        next += kBlock;
        lookups += kBlock;
    }
    benchmark::DoNotOptimize(sum);
    db.commit();
    if (found != lookups) {
        state.SkipWithError("the engine missed a record");
        return;
    }
    state.SetItemsProcessed(lookups);
    state.counters["engine_ns"] = 1e9 * engine / static_cast<double>(lookups);
    state.counters["map_ns"] = 1e9 * plain / static_cast<double>(lookups);
    state.counters["engine_to_map"] = plain > 0 ? engine / plain : 0;
}

// Ids in a random order: each lookup misses the caches, as a transfer's does.
void BM_KeyedSelectFetch(benchmark::State& state)
{
    const auto order = Order();
    EngineAgainstMap(state, [&](std::size_t k) { return order[k % kRecords].c_str(); });
}
BENCHMARK(BM_KeyedSelectFetch)->Iterations(300)->Apply(benchstats::Repeated);

// The same select on one record again and again: the engine's own cost, without the
// cache misses of a record picked at random.
void BM_KeyedSelectFetchCached(benchmark::State& state)
{
    EngineAgainstMap(state, [](std::size_t) { return "L4711_ac"; });
}
BENCHMARK(BM_KeyedSelectFetchCached)->Iterations(300)->Apply(benchstats::Repeated);

void BM_SelectUpdate(benchmark::State& state)
{
    dbDatabase db;
    db.open("bench");
    Fill(db);
    const auto order = Order();
    std::size_t k = 0;
    for (auto _ : state) {
        dbCursor<ln> c(dbCursorForUpdate);
        dbQuery q;
        q = "id=", order[k].c_str();
        if (c.select(q) == 1) {
            c->Pi += 1.0f;
            c->q |= LN_INJOB;
            c.update();
        }
        if (++k == kRecords) {
            k = 0;
            db.commit(); // as a transfer's caller would, once per pass over the table
        }
    }
    state.SetItemsProcessed(state.iterations());
    db.commit();
}
BENCHMARK(BM_SelectUpdate);

void BM_Insert(benchmark::State& state)
{
    dbDatabase db;
    db.open("bench");
    std::vector<ln> lines;
    for (int i = 0; i < kRecords; ++i) {
        lines.push_back(Line(i));
    }
    for (auto _ : state) {
        for (const ln& l : lines) {
            db.insertRecord(&ln::dbDescriptor, nullptr, &l);
        }
        state.PauseTiming();
        db.commit();
        Empty(db);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * kRecords);
}
BENCHMARK(BM_Insert)->Unit(benchmark::kMillisecond);

void BM_Rollback100kUpdates(benchmark::State& state)
{
    dbDatabase db;
    db.open("bench");
    Fill(db);
    for (auto _ : state) {
        {
            dbCursor<ln> c(dbCursorForUpdate);
            if (c.select() > 0) {
                do {
                    c->Pi = 5.0f;
                    c.update();
                } while (c.next());
            }
        }
        auto t0 = std::chrono::steady_clock::now();
        db.rollback();
        auto t1 = std::chrono::steady_clock::now();
        state.SetIterationTime(std::chrono::duration<double>(t1 - t0).count());
    }
}
BENCHMARK(BM_Rollback100kUpdates)->UseManualTime()->Unit(benchmark::kMillisecond);

// Resident memory of a table of 100,000 records, against the bytes of the records and
// their texts (the target is at most twice that, plus the index).
void BM_TableMemory(benchmark::State& state)
{
    for (auto _ : state) {
        long before = ResidentBytes();
        auto* db = new dbDatabase;
        db->open("bench");
        Fill(*db);
        long after = ResidentBytes();
        std::size_t records = kRecords * sizeof(ln);
        std::size_t texts = 0;
        for (int i = 0; i < kRecords; ++i) {
            texts += TextBytes(Line(i));
        }
        state.counters["record_bytes"] = static_cast<double>(records);
        state.counters["text_bytes"] = static_cast<double>(texts);
        state.counters["index_bytes"] = static_cast<double>(db->indexBytes(ln::dbDescriptor));
        state.counters["table_bytes"] = static_cast<double>(db->storageBytes(ln::dbDescriptor));
        state.counters["resident_growth"] = static_cast<double>(after - before);
        state.counters["ratio_to_records_and_texts"] =
            static_cast<double>(after - before -
                                static_cast<long>(db->indexBytes(ln::dbDescriptor))) /
            static_cast<double>(records + texts);
        delete db;
    }
}
BENCHMARK(BM_TableMemory)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
