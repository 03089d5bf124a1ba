// Selects, queries, updates and the errors of the real-time database engine, on the
// network records.

#include "RtdbTest.h"
#include "rtdb/HashIndex.h"

#include <cstring>
#include <functional>
#include <vector>

using namespace dtsdb;
using testsupport::RtdbTest;

namespace {

ln Line(const char* id, int lntype, float r1)
{
    ln l;
    l.id = id;
    l.lntype = lntype;
    l.R1 = r1;
    return l;
}

// The ids a query selects, in the order the cursor walks them.
std::vector<std::string> Ids(dbQuery& q)
{
    std::vector<std::string> out;
    dbCursor<ln> c;
    if (c.select(q) > 0) {
        do {
            out.push_back(c->id);
        } while (c.next());
    }
    return out;
}

} // namespace

TEST_F(RtdbTest, KeyedSelectsMatchTextAsPlainBytes)
{
    // Quotes, percent signs, non-ASCII bytes, a name that only differs in case, and a null
    // text, stored and compared as the empty string.
    const char* names[] = {"L1_ac", "l1_ac", "O'Brien", "50%_sc", "线路一_ac", "a\\b", ""};
    Insert(Line(nullptr, 2, 1.0f));
    for (const char* n : names) {
        if (*n) {
            Insert(Line(n, 1, 0.5f));
        }
        dbCursor<ln> c;
        dbQuery q;
        q = "id=", n;
        ASSERT_EQ(c.select(q), 1) << n;
        EXPECT_STREQ(c->id, n);
        EXPECT_TRUE(!*n || c->id != n) << "the text is the database's copy";
    }
    dbCursor<ln> c;
    dbQuery q;
    q = "id=", "L1_%";
    EXPECT_EQ(c.select(q), 0) << "a percent sign is no wildcard";
    q = "id=", "O''Brien";
    EXPECT_EQ(c.select(q), 0) << "quotes in a parameter are not unescaped";
    q = "id=", static_cast<const char*>(nullptr);
    EXPECT_EQ(c.select(q), 1);
    EXPECT_TRUE(errors().empty());
}

TEST_F(RtdbTest, QueriesCompareJoinAndOrderAsWrittenWithTheirOwnValues)
{
    Insert(Line("B", 1, 3.0f));
    Insert(Line("A", 2, 1.0f));
    Insert(Line("D", 1, 2.0f));
    Insert(Line("C", 2, 4.0f));
    using Ids_ = std::vector<std::string>;
    const std::pair<std::function<void(dbQuery&)>, Ids_> cases[] = {
        {[](dbQuery& q) { q = "lntype=", 1; }, {"B", "D"}}, // insertion order without order by
        {[](dbQuery& q) { q = "order by id desc"; }, {"D", "C", "B", "A"}},
        {[](dbQuery& q) { q = "lntype=", 2, " and id=", "C"; }, {"C"}},
        {[](dbQuery& q) { q = "R1 >=", 2, "order by id asc "; }, {"B", "C", "D"}},
        {[](dbQuery& q) { q = "R1 >", 2.5, "and R1 <", 4.0; }, {"B"}},
        {[](dbQuery& q) { q = "R1 <=", 2.0f, "order by R1"; }, {"A", "D"}},
        {[](dbQuery& q) { q = "id !=", "A", "and lntype = 2"; }, {"C"}},
        {[](dbQuery& q) { q = "lntype=1 and id='D'"; }, {"D"}},
        {[](dbQuery& q) { q = "order by lntype desc, R1"; }, {"A", "C", "D", "B"}}};
    dbQuery q;
    for (std::size_t k = 0; k < std::size(cases); ++k) {
        cases[k].first(q);
        EXPECT_EQ(Ids(q), cases[k].second) << "query " << k;
    }

    // A parameter given by reference is read when the query runs; one given by value is
    // copied, so its buffer may change or go.
    int type = 1;
    q = "lntype=", &type;
    EXPECT_EQ(Ids(q).size(), 2u);
    type = 3;
    EXPECT_TRUE(Ids(q).empty());
    const char* name = "A";
    q = "id=", &name;
    name = "B";
    EXPECT_EQ(Ids(q), (Ids_{"B"}));
    char buf[8] = "C";
    q = "id=", buf;
    std::strcpy(buf, "Z");
    EXPECT_EQ(Ids(q), (Ids_{"C"}));

    // A transfer builds the same query text for every row with new values (names longer
    // than a value kept inline too), and the engine parses that text once: the values must
    // still be each query's own.
    const std::string longer = "L_with_a_name_longer_than_inline";
    Insert(Line(longer.c_str(), 2, 9.0f));
    const std::string id[] = {"A", "B", "C", "D", longer};
    for (int i = 0; i < 5; ++i) {
        q = "id=", id[i].c_str(), "and lntype=", 2 - i % 2;
        EXPECT_EQ(Ids(q), (Ids_{id[i]}));
        q = "id=", id[i].c_str(), "and lntype=", 1 + i % 2;
        EXPECT_TRUE(Ids(q).empty()) << "the second value is read anew too";
    }
    // More shapes than the engine remembers, then the first ones again.
    for (int round = 0; round < 2; ++round) {
        for (int k = 0; k < 40; ++k) {
            q = ("R1 >= " + std::to_string(k) + " and R1 <").c_str(), k + 1.0;
            EXPECT_EQ(Ids(q).size(), (k >= 1 && k <= 4) || k == 9 ? 1u : 0u) << k;
        }
    }
    EXPECT_TRUE(errors().empty());
}

TEST_F(RtdbTest, BadQueriesAndMisuseAreErrorsAndNeverMatchOrWrite)
{
    Insert(Line("A", 1, 1.0f));
    const std::pair<const char*, std::function<void(dbQuery&)>> cases[] = {
        {"unknown field", [](dbQuery& q) { q = "nosuch=", 1; }},
        {"wrong case of a field", [](dbQuery& q) { q = "ID=", "A"; }},
        {"text for a number", [](dbQuery& q) { q = "lntype=", "1"; }},
        {"number for a text", [](dbQuery& q) { q = "id=", 7; }},
        {"syntax", [](dbQuery& q) { q = "id", "A"; }},
        {"dangling and", [](dbQuery& q) { q = "id=", "A", "and"; }},
        {"order without by", [](dbQuery& q) { q = "order id"; }},
    };
    for (const auto& [what, build] : cases) {
        clearErrors();
        dbQuery q;
        build(q);
        dbCursor<ln> cur;
        EXPECT_EQ(cur.select(q), 0) << what;
        ASSERT_EQ(errors().size(), 1u) << what;
        EXPECT_EQ(errors()[0].code, dbQueryError) << what;
        EXPECT_NE(errors()[0].message.find("on table ln"), std::string::npos)
            << errors()[0].message;
    }

    // Misuse of a cursor or of a closed database is reported the same way.
    clearErrors();
    rtdb().commit();
    dbCursor<ln> view; // view-only: no update, no removal
    dbQuery q;
    q = "id=", "A";
    ASSERT_EQ(view.select(q), 1);
    view->R1 = 99.0f;
    EXPECT_FALSE(view.update());
    view.removeAll();
    dbCursor<ln> none(dbCursorForUpdate); // none found: no current record
    q = "id=", "missing";
    EXPECT_EQ(none.select(q), 0);
    EXPECT_FALSE(none.update());
    ASSERT_EQ(view.select(), 1);
    EXPECT_FLOAT_EQ(view->R1, 1.0f) << "nothing was written";

    // A closed database: selects find nothing and say why; inserts are refused.
    rtdb().close();
    EXPECT_EQ(view.select(), 0);
    ln l = Line("B", 1, 1.0f);
    EXPECT_FALSE(rtdb().insertRecord(&ln::dbDescriptor, nullptr, &l));
    std::vector<int> codes;
    for (const auto& e : errors()) {
        codes.push_back(e.code);
    }
    EXPECT_EQ(codes, (std::vector<int>{dbReadOnlyCursor, dbReadOnlyCursor, dbNullReferenceError,
                                       dbDatabaseOpenError, dbDatabaseOpenError}));
    ASSERT_TRUE(rtdb().open("again"));
    EXPECT_EQ(view.select(), 0) << "a reopened database starts empty";
}

TEST_F(RtdbTest, UpdatesKeepIndexesAndTextsCurrentAndOneThatChangesNothingLeavesNoTrace)
{
    for (int i = 0; i < 300; ++i) {
        Insert(Line(("L" + std::to_string(i)).c_str(), 1 + i % 2, float(i)));
    }
    rtdb().commit();
    const std::size_t before = rtdb().storageBytes(ln::dbDescriptor);
    {
        dbCursor<ln> c(dbCursorForUpdate);
        ASSERT_EQ(c.select(), 300);
        do {
            char sameText[8]; // equal bytes in another buffer are no change either
            std::strcpy(sameText, c->id);
            c->id = sameText;
            EXPECT_TRUE(c.update());
        } while (c.next());
    }
    EXPECT_EQ(rtdb().storageBytes(ln::dbDescriptor), before) << "no text stored again";
    {
        dbCursor<ln> c(dbCursorForUpdate);
        dbQuery q;
        q = "id=", "L6";
        ASSERT_EQ(c.select(q), 1);
        c->id = "L6_renamed";
        c->lntype = 2;
        char type[] = "LGJ-400";
        c->Type = type; // copied by the update; the buffer may change after it
        c->Pi = 12.5f;
        ASSERT_TRUE(c.update());
        std::strcpy(type, "changed");
    }
    dbCursor<ln> c;
    dbQuery q;
    q = "id=", "L6";
    EXPECT_EQ(c.select(q), 0) << "the old key is gone from the index";
    q = "id=", "L6_renamed";
    ASSERT_EQ(c.select(q), 1);
    EXPECT_EQ(std::make_tuple(c->lntype, std::string(c->Type), c->Pi, c->R1),
              std::make_tuple(2, std::string("LGJ-400"), 12.5f, 6.0f)) << "R1 was not changed";
    q = "lntype=", 2;
    EXPECT_EQ(c.select(q), 151);
    // A fetched text stays good while its record stands, across later selects.
    q = "id=", "L8";
    ASSERT_EQ(c.select(q), 1);
    const char* kept = c->id;
    q = "order by id";
    EXPECT_EQ(c.select(q), 300);
    EXPECT_STREQ(kept, "L8");
    EXPECT_TRUE(errors().empty());
}

// A record and its descriptor expand from one field list (offsetof in declaration order);
// what the transfers rely on besides: the DC line's fifty-two results stand together as
// doubles from Id10 to Qcjp, and a fresh record's texts are empty, never null.
TEST(RecordModel, TheDcLinesResultsAreFiftyTwoDoublesAndAFreshRecordsTextsAreEmpty)
{
    const auto& f = dln::dbDescriptor.fields();
    const dbFieldDescriptor* id10 = dln::dbDescriptor.findField("Id10", 4);
    ASSERT_TRUE(id10 && id10 + 51 < f.data() + f.size());
    EXPECT_STREQ(id10[51].name, "Qcjp");
    for (const dbFieldDescriptor* d = id10; d <= id10 + 51; ++d) {
        EXPECT_EQ(d->type, dbFieldDouble) << d->name;
    }
    xf x;
    EXPECT_EQ(std::string(x.id) + "|" + x.Bus_Ctrl + "|" + std::to_string(x.q), "||0");
}

// A row linked into its key's chain a second time (a key that changed while the row stayed
// in the old chain) closes the chain on itself: a lookup stops and says so, where it would
// walk the circle until memory ran out.
TEST(KeyIndex, AChainThatRunsInACircleIsReportedInsteadOfWalkedForEver)
{
    HashIndex index;
    const auto anyKey = [](std::uint64_t) { return true; };
    std::vector<std::uint32_t> seen;
    const auto find = [&] {
        seen.clear();
        return index.find(
            7, anyKey, [&](std::uint32_t r) { seen.push_back(r); }, [](std::uint32_t) {});
    };
    index.insert(7, 0, 1, anyKey);
    index.insert(7, 1, 1, anyKey);
    ASSERT_TRUE(find());
    EXPECT_EQ(seen, (std::vector<std::uint32_t>{1, 0})) << "the newest row heads its chain";
    index.insert(7, 0, 1, anyKey); // never taken out: 0 -> 1 -> 0 -> ...
    EXPECT_FALSE(find());
    EXPECT_EQ(seen, (std::vector<std::uint32_t>{0, 1})) << "each row met once, then the stop";
}
