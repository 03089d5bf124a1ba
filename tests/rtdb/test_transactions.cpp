// Commit, rollback and the database lock of the real-time database.

#include "RtdbTest.h"

#include <atomic>
#include <chrono>
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

} // namespace

class Transactions : public RtdbTest
{};

TEST_F(Transactions, RollbackUndoesEachKindOfChangeBackToTheLastCommit)
{
    Insert(Bus(0, "B0", 1.0));
    Insert(Bus(1, "B1", 1.0));
    rtdb().commit();
    const auto committed = State();

    // Insert, then roll back: the record and its index entries go.
    Insert(Bus(2, "B2", 1.0));
    EXPECT_EQ(State().size(), 3u) << "the writer sees its change at once";
    rtdb().rollback();
    EXPECT_EQ(State(), committed);
    EXPECT_EQ(CountByName("B2"), 0);

    // Update of a plain field and of a key, twice over in one transaction.
    {
        dbCursor<bs> c(dbCursorForUpdate);
        dbQuery q;
        q = "id=", 1;
        ASSERT_EQ(c.select(q), 1);
        c->V = 0.95;
        c->name = "renamed";
        ASSERT_TRUE(c.update());
        c->V = 0.90;
        ASSERT_TRUE(c.update());
    }
    EXPECT_EQ(CountByName("renamed"), 1);
    rtdb().rollback();
    EXPECT_EQ(State(), committed);
    EXPECT_EQ(CountByName("renamed"), 0);
    EXPECT_EQ(CountByName("B1"), 1) << "the old key is indexed again";

    // removeAll, then new records under the same keys, then roll back.
    {
        dbCursor<bs> c(dbCursorForUpdate);
        c.removeAll();
    }
    EXPECT_TRUE(State().empty());
    Insert(Bus(0, "B0", 0.5));
    EXPECT_EQ(CountByName("B0"), 1);
    rtdb().rollback();
    EXPECT_EQ(State(), committed);
    EXPECT_EQ(CountByName("B0"), 1);

    // A committed change survives a later rollback; precommit keeps it undoable.
    {
        dbCursor<bs> c(dbCursorForUpdate);
        dbQuery q;
        q = "id=", 0;
        ASSERT_EQ(c.select(q), 1);
        c->V = 1.05;
        ASSERT_TRUE(c.update());
    }
    rtdb().commit();
    rtdb().rollback();
    EXPECT_EQ(State(), (std::vector<std::string>{"B0=1.05", "B1=1.00"}));
    Insert(Bus(2, "B2", 1.0));
    rtdb().precommit();
    EXPECT_EQ(State().size(), 3u);
    rtdb().rollback();
    EXPECT_EQ(State().size(), 2u);
    EXPECT_TRUE(errors().empty());
}

TEST_F(Transactions, RollbackIsExactAfterUpdatesThatChangeSomeFieldsOrNone)
{
    for (int i = 0; i < 4; ++i) {
        Insert(Bus(i, ("B" + std::to_string(i)).c_str(), 1.0));
    }
    rtdb().commit();
    const auto committed = State();
    {
        dbCursor<bs> c(dbCursorForUpdate);
        dbQuery q;
        // B0: written back unchanged, then changed, then written back unchanged again.
        q = "id=", 0;
        ASSERT_EQ(c.select(q), 1);
        ASSERT_TRUE(c.update());
        c->V = 0.5;
        ASSERT_TRUE(c.update());
        ASSERT_TRUE(c.update());
        // B1: only its key changes; B2: unchanged only; B3: a value and back again.
        q = "id=", 1;
        ASSERT_EQ(c.select(q), 1);
        c->name = "moved";
        ASSERT_TRUE(c.update());
        q = "id=", 2;
        ASSERT_EQ(c.select(q), 1);
        ASSERT_TRUE(c.update());
        q = "id=", 3;
        ASSERT_EQ(c.select(q), 1);
        c->V = 0.7;
        ASSERT_TRUE(c.update());
        c->V = 1.0;
        ASSERT_TRUE(c.update());
    }
    EXPECT_EQ(State(), (std::vector<std::string>{"B0=0.50", "moved=1.00", "B2=1.00", "B3=1.00"}));
    EXPECT_EQ(CountByName("B1"), 0);
    rtdb().rollback();
    EXPECT_EQ(State(), committed);
    EXPECT_EQ(CountByName("moved"), 0);
    EXPECT_EQ(CountByName("B1"), 1);
    EXPECT_TRUE(errors().empty());
}

TEST_F(Transactions, AnUpdateThatChangesNothingStillTakesTheLockAsAWrite)
{
    Insert(Bus(0, "B0", 1.0));
    rtdb().commit();
    {
        dbCursor<bs> c(dbCursorForUpdate);
        ASSERT_EQ(c.select(), 1);
        ASSERT_TRUE(c.update()); // nothing changed, yet a write as far as the lock goes
    }
    std::atomic<bool> selected{false};
    std::thread reader([&] {
        dbCursor<bs> c;
        c.select();
        selected = true;
        bs::dbDescriptor.getDatabase()->precommit();
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_FALSE(selected.load()) << "a reader ran past an open write transaction";
    rtdb().commit();
    reader.join();
    EXPECT_TRUE(selected.load());
}

TEST_F(Transactions, AnEmptiedTableIsRebuiltFromScratchAfterItsCommit)
{
    // The way stored results rebuild bs: removeAll, commit, insert through the
    // descriptor's database.
    for (int i = 0; i < 5; ++i) {
        Insert(Bus(i, ("old" + std::to_string(i)).c_str(), 1.0));
    }
    rtdb().commit();
    {
        dbCursor<bs> c(dbCursorForUpdate);
        c.removeAll();
    }
    rtdb().commit();
    dbDatabase* db = bs::dbDescriptor.getDatabase();
    ASSERT_EQ(db, &rtdb());
    for (int i = 0; i < 3; ++i) {
        const std::string name = "new" + std::to_string(i);
        bs b = Bus(i, name.c_str(), 0.98);
        dbAnyReference ref;
        ASSERT_TRUE(db->insertRecord(&bs::dbDescriptor, &ref, &b));
        EXPECT_EQ(ref.getOid(), static_cast<std::uint32_t>(i)) << "rows renumbered from 0";
    }
    rtdb().rollback(); // the inserts were not committed, the emptying was
    EXPECT_TRUE(State().empty());
    EXPECT_EQ(CountByName("old1"), 0);
}

TEST_F(Transactions, AReaderWaitsForTheWritersCommitAndThenSeesItsChanges)
{
    Insert(Bus(0, "B0", 1.0));
    rtdb().commit();

    // The writer (this thread) changes a record and holds the lock.
    {
        dbCursor<bs> c(dbCursorForUpdate);
        dbQuery q;
        q = "id=", 0;
        ASSERT_EQ(c.select(q), 1);
        c->V = 0.9;
        ASSERT_TRUE(c.update());
    }
    std::atomic<bool> selected{false};
    double seen = -1;
    std::thread reader([&] {
        dbCursor<bs> c;
        dbQuery q;
        q = "id=", 0;
        if (c.select(q) == 1) {
            seen = c->V;
        }
        selected = true;
        bs::dbDescriptor.getDatabase()->precommit();
    });
    // The reader must still be waiting: it may not see the uncommitted 0.9, nor 1.0.
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_FALSE(selected.load()) << "the reader ran past an uncommitted write";
    rtdb().commit();
    reader.join();
    EXPECT_TRUE(selected.load());
    EXPECT_DOUBLE_EQ(seen, 0.9);
}

TEST_F(Transactions, AWriterWaitsForReadersToEndTheirTransactions)
{
    Insert(Bus(0, "B0", 1.0));
    rtdb().commit();
    dbCursor<bs> mine;
    ASSERT_EQ(mine.select(), 1); // this thread now holds the lock shared

    std::atomic<bool> written{false};
    std::thread writer([&] {
        dbCursor<bs> c(dbCursorForUpdate);
        c.select();
        c->V = 0.8;
        c.update();
        written = true;
        bs::dbDescriptor.getDatabase()->commit();
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_FALSE(written.load()) << "a write overtook an open read transaction";
    ASSERT_EQ(mine.select(), 1);
    EXPECT_DOUBLE_EQ(mine->V, 1.0);
    rtdb().precommit();
    writer.join();
    ASSERT_EQ(mine.select(), 1);
    EXPECT_DOUBLE_EQ(mine->V, 0.8);
}
