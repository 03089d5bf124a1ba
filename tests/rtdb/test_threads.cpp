// The real-time database under two threads: a writer and a reader on the same table, each
// for a fixed number of operations; the reader must only ever see committed states, whole.

#include "RtdbTest.h"

#include <atomic>
#include <climits>
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

TEST_F(RtdbTest, AReaderSeesOnlyCommittedStatesWhileAWriterCommitsAndRollsBack)
{
    for (int k = 0; k < kRecords; ++k) {
        ln r;
        const std::string id = Id(k);
        r.id = id.c_str();
        r.Type = "0";
        Insert(r);
    }
    rtdb().commit();

    // Each thread stops at its first failure (gtest's own, thread-safe here), ending its
    // transaction. A deadlock is ended by the test's time limit.
    std::atomic<int> lastCommitted{0};
    std::thread writer([&] {
        bool lost = false;
        for (int t = 1; t <= kTransactions && !lost; ++t) {
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
                if ((lost = c.select(q) != 1)) {
                    ADD_FAILURE() << "keyed select lost " << id;
                    break;
                }
                Write(*c, g, text);
                c.update();
                c.update();
            }
            if (abandon) {
                ln extra;
                extra.id = "EXTRA";
                Write(extra, g, text);
                rtdb().insertRecord(&ln::dbDescriptor, nullptr, &extra);
                rtdb().rollback();
            } else {
                rtdb().commit();
                lastCommitted = g;
            }
            std::this_thread::yield();
        }
    });
    std::thread reader([&] {
        int previous = 0;
        for (int r = 0; r < kReads; ++r) {
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
            rtdb().precommit(); // end the read transaction: the writer may go on
            // A torn record, or one rolled back, is below every committed state (>= 0).
            if (!same || count != kRecords || generation < previous) {
                ADD_FAILURE() << "read " << r << ": transaction " << generation << " after "
                              << previous << ", " << count << " records, all of one: " << same;
                break;
            }
            previous = generation;
            std::this_thread::yield();
        }
    });
    writer.join();
    reader.join();

    dbCursor<ln> c(dbCursorViewOnly);
    ASSERT_EQ(c.select(), kRecords);
    do {
        EXPECT_EQ(Generation(*c), lastCommitted.load());
    } while (c.next());
    EXPECT_TRUE(errors().empty());
}
