// The real-time database under two threads: a writer and a reader on the same table, each
// for a fixed number of operations.

#include "RtdbTest.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <set>
#include <string>
#include <thread>

using namespace dtsdb;
using testsupport::RtdbTest;

namespace {

constexpr int kRecords = 120;
constexpr int kTransactions = 150; // the writer's
constexpr int kReads = 600;        // the reader's

std::string Id(int k)
{
    return "L" + std::to_string(k) + "_ac";
}

// What a record says of the transaction that wrote it: R1 and X1 its number and its
// negative, Type its number as text. A record torn between two writes, or written by a
// transaction that was rolled back (negative numbers), is a failure of isolation.
struct Seen
{
    bool consistent = true;
    int generation = 0;
};

Seen Generation(const ln& r)
{
    Seen s;
    s.generation = int(r.R1);
    s.consistent = int(r.X1) == -s.generation && r.Type && std::to_string(s.generation) == r.Type;
    return s;
}

} // namespace

class Threads : public RtdbTest
{};

TEST_F(Threads, AReaderSeesOnlyCommittedStatesWhileAWriterCommitsAndRollsBack)
{
    for (int k = 0; k < kRecords; ++k) {
        ln r;
        const std::string id = Id(k);
        r.id = id.c_str();
        r.lntype = 1;
        r.Type = "0";
        Insert(r);
    }
    rtdb().commit();

    std::atomic<int> lastCommitted{0};
    auto writer = std::async(std::launch::async, [&] {
        std::string failure;
        for (int t = 1; t <= kTransactions && failure.empty(); ++t) {
            // Every fourth transaction is abandoned: negative numbers and an extra record,
            // then a rollback.
            const bool abandon = t % 4 == 0;
            const int g = abandon ? -t : t;
            const std::string text = std::to_string(g);
            // Half the records one by one through their key (the thread's remembered query
            // shape), the other half in one scan.
            for (int k = 0; k < kRecords / 2; ++k) {
                dbCursor<ln> c(dbCursorForUpdate);
                dbQuery q;
                const std::string id = Id(k);
                q = "id=", id.c_str();
                if (c.select(q) != 1) {
                    failure = "keyed select lost " + id;
                    break;
                }
                c->R1 = float(g);
                c->X1 = float(-g);
                c->Type = text.c_str();
                c.update();
                c.update(); // an update that changes nothing
            }
            dbCursor<ln> all(dbCursorForUpdate);
            dbQuery rest;
            rest = "lntype=", 1;
            if (all.select(rest) >= kRecords) {
                do {
                    if (Generation(*all).generation != g) {
                        all->R1 = float(g);
                        all->X1 = float(-g);
                        all->Type = text.c_str();
                        all.update();
                    }
                } while (all.next());
            } else {
                failure = "the scan lost records";
            }
            if (abandon) {
                ln extra;
                extra.id = "EXTRA";
                extra.lntype = 1;
                extra.R1 = float(g);
                extra.X1 = float(-g);
                extra.Type = text.c_str();
                rtdb().insertRecord(&ln::dbDescriptor, nullptr, &extra);
                rtdb().rollback();
            } else {
                rtdb().commit();
                lastCommitted = g;
            }
            std::this_thread::yield();
        }
        return failure;
    });
    auto reader = std::async(std::launch::async, [&] {
        std::string failure;
        int previous = 0;
        std::set<int> states;
        for (int r = 0; r < kReads && failure.empty(); ++r) {
            int generation = 0;
            int count = 0;
            if (r % 2 == 0) {
                dbCursor<ln> c(dbCursorViewOnly);
                if (c.select() > 0) {
                    generation = Generation(*c).generation;
                    do {
                        const Seen s = Generation(*c);
                        ++count;
                        if (!s.consistent || s.generation != generation) {
                            failure = "a scan saw records of two transactions or a torn record";
                        }
                    } while (c.next());
                }
                if (count != kRecords) {
                    failure = "a scan saw " + std::to_string(count) + " records";
                }
            } else {
                // Two records by their keys, in one read transaction.
                const std::string a = Id(r % kRecords), b = Id((r * 7 + 3) % kRecords);
                dbCursor<ln> c(dbCursorViewOnly);
                dbQuery q;
                q = "id=", a.c_str();
                if (c.select(q) == 1) {
                    generation = Generation(*c).generation;
                    q = "id=", b.c_str();
                    if (c.select(q) != 1 || Generation(*c).generation != generation ||
                        !Generation(*c).consistent) {
                        failure = "two keyed selects saw two transactions";
                    }
                } else {
                    failure = "a keyed select lost " + a;
                }
            }
            if (generation < 0) {
                failure = "a reader saw a transaction that was rolled back";
            }
            if (generation < previous) {
                failure = "a reader saw an older state after a newer one";
            }
            previous = generation;
            states.insert(generation);
            rtdb().precommit(); // end the read transaction: the writer may go on
            std::this_thread::yield();
        }
        // How many committed states the reader met: shown, not asserted (the interleaving
        // is the scheduler's).
        std::printf("the reader met %zu committed states\n", states.size());
        return failure;
    });
    // A deadlock would keep a thread waiting for ever: the test ends it by itself.
    for (auto* f : {&writer, &reader}) {
        if (f->wait_for(std::chrono::minutes(5)) != std::future_status::ready) {
            std::fprintf(stderr, "rtdb threads: a thread still waits after five minutes\n");
            std::abort();
        }
    }
    EXPECT_EQ(writer.get(), "");
    EXPECT_EQ(reader.get(), "");

    // The table holds the last committed transaction, whole.
    dbCursor<ln> c(dbCursorViewOnly);
    ASSERT_EQ(c.select(), kRecords);
    do {
        EXPECT_TRUE(Generation(*c).consistent);
        EXPECT_EQ(Generation(*c).generation, lastCommitted.load());
    } while (c.next());
    EXPECT_EQ(lastCommitted.load(), kTransactions % 4 == 0 ? kTransactions - 1 : kTransactions);
    EXPECT_TRUE(errors().empty());
}
