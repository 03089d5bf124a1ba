// Commit, rollback and the database lock of the real-time database.

#include "RtdbTest.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

using namespace dtsdb;
using testsupport::RtdbTest;

namespace {

bs Bus(int id, const char* name, double v)
{
    bs b;
    b.id = id;
    b.name = name;
    b.V = v;
    return b;
}

// "name=V" of every bs record, in the order "order by id".
std::vector<std::string> State()
{
    std::vector<std::string> out;
    dbCursor<bs> c;
    dbQuery q;
    q = "order by id";
    if (c.select(q) > 0) {
        do {
            out.push_back(std::string(c->name) + "=" + std::to_string(c->V).substr(0, 4));
        } while (c.next());
    }
    return out;
}

int CountByName(const char* name)
{
    dbCursor<bs> c;
    dbQuery q;
    q = "name=", name;
    return c.select(q);
}

// Sets fields of the bus with this id through an updating cursor; `change` may set none.
void Change(int id, const std::function<void(bs&)>& change)
{
    dbCursor<bs> c(dbCursorForUpdate);
    dbQuery q;
    q = "id=", id;
    ASSERT_EQ(c.select(q), 1);
    change(*c);
    ASSERT_TRUE(c.update());
}

// Runs `other` on a thread of its own, which ends its transaction after it; whether it had
// not got through 200 ms later, before `release` ended this thread's transaction.
bool Waits(const std::function<void()>& other, const std::function<void()>& release)
{
    std::atomic<bool> through{false};
    std::thread t([&] {
        other();
        through = true;
        bs::dbDescriptor.getDatabase()->commit();
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    const bool waited = !through;
    release();
    t.join();
    return waited;
}

} // namespace

TEST_F(RtdbTest, RollbackUndoesEachChangeAnEmptiedTableRenumbersReadersAndWritersWaitForEachOther)
{
    for (int i = 0; i < 4; ++i) {
        Insert(Bus(i, ("B" + std::to_string(i)).c_str(), 1.0));
    }
    rtdb().commit();
    const auto committed = State();

    // Insert: the record and its index entries go.
    Insert(Bus(4, "B4", 1.0));
    rtdb().rollback();
    EXPECT_EQ(State(), committed);
    EXPECT_EQ(CountByName("B4"), 0);

    // Updates: B0 written back unchanged, changed, unchanged again; B1 only its key, twice;
    // B2 unchanged only; B3 a value and back again.
    Change(0, [](bs&) {});
    Change(0, [](bs& b) { b.V = 0.5; });
    Change(0, [](bs&) {});
    Change(1, [](bs& b) { b.name = "moved"; });
    Change(1, [](bs& b) { b.name = "moved again"; });
    Change(2, [](bs&) {});
    Change(3, [](bs& b) { b.V = 0.7; });
    Change(3, [](bs& b) { b.V = 1.0; });
    EXPECT_EQ(State(), (std::vector<std::string>{"B0=0.50", "moved again=1.00", "B2=1.00",
                                                 "B3=1.00"}));
    rtdb().rollback();
    EXPECT_EQ(State(), committed);
    EXPECT_EQ(CountByName("moved again"), 0);
    EXPECT_EQ(CountByName("B1"), 1) << "the old key is indexed again";

    // removeAll, then new records under the same keys.
    {
        dbCursor<bs> c(dbCursorForUpdate);
        c.removeAll();
    }
    EXPECT_TRUE(State().empty());
    Insert(Bus(0, "B0", 0.5));
    rtdb().rollback();
    EXPECT_EQ(State(), committed);
    EXPECT_EQ(CountByName("B0"), 1);

    // A committed change survives a later rollback; precommit keeps a change undoable.
    Change(0, [](bs& b) { b.V = 1.05; });
    rtdb().commit();
    rtdb().rollback();
    EXPECT_EQ(State()[0], "B0=1.05");
    Insert(Bus(4, "B4", 1.0));
    rtdb().precommit();
    EXPECT_EQ(State().size(), 5u) << "the writer sees its change before the commit";
    rtdb().rollback();
    EXPECT_EQ(State().size(), 4u);

    // The way stored results rebuild bs: removeAll, commit, insert through the
    // descriptor's database.
    {
        dbCursor<bs> c(dbCursorForUpdate);
        c.removeAll();
    }
    rtdb().commit();
    for (int i = 0; i < 3; ++i) {
        const std::string name = "new" + std::to_string(i);
        bs b = Bus(i, name.c_str(), 0.98);
        dbAnyReference ref;
        ASSERT_TRUE(bs::dbDescriptor.getDatabase()->insertRecord(&bs::dbDescriptor, &ref, &b));
        EXPECT_EQ(ref.getOid(), static_cast<std::uint32_t>(i)) << "rows renumbered from 0";
    }
    rtdb().rollback(); // the inserts were not committed, the emptying was
    EXPECT_TRUE(State().empty());
    EXPECT_EQ(CountByName("B1"), 0);
    EXPECT_TRUE(errors().empty());

    Insert(Bus(0, "B0", 1.0));
    rtdb().commit();
    // An update that changes nothing still takes the lock as a write: the reader waits for
    // the commit.
    Change(0, [](bs&) {});
    double seen = 0;
    EXPECT_TRUE(Waits(
        [&] {
            dbCursor<bs> c;
            seen = c.select() == 1 ? c->V : -1;
        },
        [&] { rtdb().commit(); }))
        << "a reader ran past an open write transaction";
    EXPECT_DOUBLE_EQ(seen, 1.0);

    // A writer waits for a reader to end its transaction, which sees no change until then.
    dbCursor<bs> mine;
    ASSERT_EQ(mine.select(), 1);
    EXPECT_TRUE(Waits([] { Change(0, [](bs& b) { b.V = 0.8; }); },
                      [&] {
                          ASSERT_EQ(mine.select(), 1);
                          EXPECT_DOUBLE_EQ(mine->V, 1.0);
                          rtdb().precommit();
                      }))
        << "a write overtook an open read transaction";
    ASSERT_EQ(mine.select(), 1);
    EXPECT_DOUBLE_EQ(mine->V, 0.8);
}
