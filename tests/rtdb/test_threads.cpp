// The real-time database under two threads: a writer and a reader on the same table, each
// for a fixed number of operations; the reader must only ever see committed states, whole.

#include "RtdbTest.h"

#include <atomic>
#include <chrono>
#include <climits>
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

// The transaction that wrote a record: R1 its number, X1 the negative, Type the number as
// text. A record torn between two writes gives INT_MIN; a transaction that was rolled back
// wrote negative numbers.
int Generation(const ln& r)
{
    const int g = int(r.R1);
    return int(r.X1) == -g && r.Type && std::to_string(g) == r.Type ? g : INT_MIN;
}

void Write(ln& r, int g, const std::string& text)
{
    r.R1 = float(g);
    r.X1 = float(-g);
    r.Type = text.c_str();
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
            // Every record through its key (the thread's remembered query shape), written
            // and written again unchanged.
            for (int k = 0; k < kRecords; ++k) {
                dbCursor<ln> c(dbCursorForUpdate);
                dbQuery q;
                const std::string id = Id(k);
                q = "id=", id.c_str();
                if (c.select(q) != 1) {
                    failure = "keyed select lost " + id;
                    break;
                }
                Write(*c, g, text);
                c.update();
                c.update();
            }
            if (abandon) {
                ln extra;
                extra.id = "EXTRA";
                extra.lntype = 1;
                Write(extra, g, text);
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
            // One read transaction: two records by their keys, then a scan of all.
            dbCursor<ln> c(dbCursorViewOnly);
            dbQuery q;
            const std::string a = Id(r % kRecords), b = Id((r * 7 + 3) % kRecords);
            q = "id=", a.c_str();
            const int generation = c.select(q) == 1 ? Generation(*c) : INT_MIN;
            q = "id=", b.c_str();
            bool same = c.select(q) == 1 && Generation(*c) == generation;
            int count = 0;
            if (c.select() > 0) {
                do {
                    ++count;
                    same = same && Generation(*c) == generation;
                } while (c.next());
            }
            if (!same || count != kRecords || generation == INT_MIN) {
                failure = "a read saw two transactions, a torn record or " + std::to_string(count) +
                          " records";
            } else if (generation < 0) {
                failure = "a reader saw a transaction that was rolled back";
            } else if (generation < previous) {
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
        EXPECT_EQ(Generation(*c), lastCommitted.load());
    } while (c.next());
    EXPECT_EQ(lastCommitted.load(), kTransactions % 4 == 0 ? kTransactions - 1 : kTransactions);
    EXPECT_TRUE(errors().empty());
}
