// The element map: which keys the table accepts, lookups by all four fields, ownership of
// the nodes and the shallow copies.

#include "labels/EleDataMap.h"

#include <gtest/gtest.h>
#include <memory>
#include <new>

namespace {

CRtdbEleDataNode Key(int a, int b, int c, int tag)
{
    return CRtdbEleDataNode(a, b, c, tag);
}

CMysqlEleDataNode* Node(const char* name, int order = 1)
{
    return new CMysqlEleDataNode(name, order, "t0", "t1", 0);
}

// A node the table did not store: the caller deletes it.
using Owned = std::unique_ptr<CMysqlEleDataNode>;

} // namespace

TEST(LabelsEleDataMap, KeysCompareByThreeFieldsAsMembersAndByFourOutside)
{
    CRtdbEleDataNode a = Key(4, 1, 2, 3), b = Key(5, 1, 2, 3);
    const CRtdbEleDataNode& ca = a;
    const CRtdbEleDataNode& cb = b;
    EXPECT_TRUE(a == b) << "members ignore Id[0]";
    EXPECT_FALSE(a != b);
    EXPECT_FALSE(a < b);
    EXPECT_FALSE(a > b);
    EXPECT_FALSE(ca == cb) << "namespace-level operators use all four fields";
    EXPECT_TRUE(ca != cb);
    EXPECT_TRUE(ca < cb);
    EXPECT_FALSE(ca > cb);
    EXPECT_TRUE(cb > ca);

    // Signed, lexicographic: (1, 5, 0) against (2, 1, 0) and a negative tag.
    CRtdbEleDataNode c = Key(1, 5, 0, 0), d = Key(2, 1, 0, 0);
    EXPECT_TRUE(d < c);
    EXPECT_TRUE(c > d);
    EXPECT_TRUE(static_cast<const CRtdbEleDataNode&>(c) < d);
    CRtdbEleDataNode e = Key(0, 1, 2, -1), f = Key(0, 1, 2, 0);
    EXPECT_TRUE(e < f);

    CRtdbEleDataNode def;
    EXPECT_EQ(def.Id[0], -1);
    EXPECT_EQ(def.Id[2], -1);
    EXPECT_EQ(def.Tag, 0);
    def = Key(7, 8, 9, 10);
    def = def;
    EXPECT_TRUE(static_cast<const CRtdbEleDataNode&>(def) == Key(7, 8, 9, 10));
}

TEST(LabelsEleDataMap, NodesCompareByOrderThenNameAndCarryTheRest)
{
    CMysqlEleDataNode a("A", 2, "x", "y", 1), b("B", 1, "p", "q", 2);
    EXPECT_TRUE(b < a) << "Order first";
    EXPECT_TRUE(a > b);
    CMysqlEleDataNode a2("A", 2, "other", "texts", 99);
    EXPECT_TRUE(a == a2) << "Text and Tag are carried, never compared";
    EXPECT_FALSE(a != a2);
    CMysqlEleDataNode c("C", 2, "", "", 0);
    EXPECT_TRUE(a < c);
    EXPECT_TRUE(c > a);
    const CMysqlEleDataNode &ka = a, &kc = c;
    EXPECT_TRUE(ka < kc);
    EXPECT_TRUE(kc > ka);
    EXPECT_TRUE(ka != kc);
    // Byte-wise names: a multi-byte name sorts after ASCII.
    CMysqlEleDataNode zh("母线", 2, "", "", 0);
    EXPECT_TRUE(c < zh);

    CMysqlEleDataNode def;
    EXPECT_EQ(def.Order, -1);
    EXPECT_TRUE(def.Name.empty());
    CMysqlEleDataNode copy(b);
    EXPECT_EQ(copy.Text[1], "q");
    EXPECT_EQ(copy.Tag, 2);

    // != goes through the virtual ==.
    struct AllEqual : CMysqlEleDataNode
    {
        bool operator==(const CMysqlEleDataNode&) override { return true; }
    } odd;
    CMysqlEleDataNode& asBase = odd;
    EXPECT_FALSE(asBase != a);
}

TEST(LabelsEleDataMap, TheTableAcceptsKeysByTheWalkItWasWrittenOn)
{
    CMysqlRtdbEleDataMap map;
    EXPECT_EQ(map.GetMysqlEleDataNode(Key(4, 1, 2, 3)), nullptr) << "empty table";

    // (4,1,2,3) then (5,1,2,3): the second sorts after the first, which is not member-less.
    CMysqlEleDataNode* first = Node("first");
    Owned refused(Node("refused")); // not stored: still the caller's
    EXPECT_TRUE(map.AddMapNode(Key(4, 1, 2, 3), first));
    EXPECT_TRUE(map.AddMapNode(Key(5, 1, 2, 3), refused.get()));
    EXPECT_EQ(map.GetMysqlEleDataNode(Key(4, 1, 2, 3)), first);
    EXPECT_EQ(map.GetMysqlEleDataNode(Key(5, 1, 2, 3)), nullptr);

    // The same key twice: the first pointer stays.
    Owned again(Node("again"));
    EXPECT_TRUE(map.AddMapNode(Key(4, 1, 2, 3), again.get()));
    EXPECT_EQ(map.GetMysqlEleDataNode(Key(4, 1, 2, 3)), first);

    // The reverse order stores both: the smaller key goes first with no comparison.
    CMysqlRtdbEleDataMap reverse;
    CMysqlEleDataNode *five = Node("five"), *four = Node("four");
    reverse.AddMapNode(Key(5, 1, 2, 3), five);
    reverse.AddMapNode(Key(4, 1, 2, 3), four);
    EXPECT_EQ(reverse.GetMysqlEleDataNode(Key(5, 1, 2, 3)), five);
    EXPECT_EQ(reverse.GetMysqlEleDataNode(Key(4, 1, 2, 3)), four);

    // (1,5,0,0) then (2,1,0,0): after it by Id[0], but (1,0,0) is not above (5,0,0).
    CMysqlRtdbEleDataMap ties;
    CMysqlEleDataNode* a = Node("a");
    Owned b(Node("b"));
    ties.AddMapNode(Key(1, 5, 0, 0), a);
    ties.AddMapNode(Key(2, 1, 0, 0), b.get());
    EXPECT_EQ(ties.GetMysqlEleDataNode(Key(2, 1, 0, 0)), nullptr);
    // A key that comes after by Id[0] and is member-greater is accepted, and lookups match
    // all four fields: (1,5,0,0)'s look-alike with another Id[0] finds nothing.
    CMysqlEleDataNode* c = Node("c");
    ties.AddMapNode(Key(2, 6, 0, 0), c);
    EXPECT_EQ(ties.GetMysqlEleDataNode(Key(2, 6, 0, 0)), c);
    EXPECT_EQ(ties.GetMysqlEleDataNode(Key(3, 5, 0, 0)), nullptr);
    EXPECT_EQ(ties.GetMysqlEleDataNode(Key(1, 5, 0, 0)), a);

    // The candidate is the key just below by four fields, not the last one added: with
    // (0,9,9,9) and (3,1,1,1) stored, (2,5,5,5) is judged against (0,9,9,9) and refused,
    // (4,0,0,0) against (3,1,1,1) and refused, (4,2,0,0) accepted.
    CMysqlRtdbEleDataMap middle;
    CMysqlEleDataNode *low = Node("low"), *high = Node("high"), *top2 = Node("top2");
    Owned mid(Node("mid")), top(Node("top"));
    middle.AddMapNode(Key(3, 1, 1, 1), high);
    middle.AddMapNode(Key(0, 9, 9, 9), low);
    middle.AddMapNode(Key(2, 5, 5, 5), mid.get());
    middle.AddMapNode(Key(4, 0, 0, 0), top.get());
    middle.AddMapNode(Key(4, 2, 0, 0), top2);
    EXPECT_EQ(middle.GetMysqlEleDataNode(Key(0, 9, 9, 9)), low);
    EXPECT_EQ(middle.GetMysqlEleDataNode(Key(3, 1, 1, 1)), high);
    EXPECT_EQ(middle.GetMysqlEleDataNode(Key(2, 5, 5, 5)), nullptr);
    EXPECT_EQ(middle.GetMysqlEleDataNode(Key(4, 0, 0, 0)), nullptr);
    EXPECT_EQ(middle.GetMysqlEleDataNode(Key(4, 2, 0, 0)), top2);

    // A default key is an ordinary key; a null node is stored, looks absent, and is
    // skipped by the destructor.
    CMysqlRtdbEleDataMap plain;
    CMysqlEleDataNode* d = Node("default");
    plain.AddMapNode(CRtdbEleDataNode(), d);
    EXPECT_EQ(plain.GetMysqlEleDataNode(Key(-1, -1, -1, 0)), d);
    plain.AddMapNode(Key(0, 0, 0, 0), nullptr);
    Owned late(Node("late"));
    plain.AddMapNode(Key(0, 0, 0, 0), late.get());
    EXPECT_EQ(plain.GetMysqlEleDataNode(Key(0, 0, 0, 0)), nullptr)
        << "the null pointer stored first stays";
}

TEST(LabelsEleDataMap, CopiesShareOneTable)
{
    CMysqlRtdbEleDataMap owner, other;
    CMysqlEleDataNode* x = Node("x");
    owner.AddMapNode(Key(1, 1, 1, 1), x);

    // The copies are never destroyed: the owners delete the tables, once each.
    alignas(CMysqlRtdbEleDataMap) unsigned char place[sizeof(CMysqlRtdbEleDataMap)];
    auto* copy = new (place) CMysqlRtdbEleDataMap(owner);
    EXPECT_EQ(copy->GetMysqlEleDataNode(Key(1, 1, 1, 1)), x);
    CMysqlEleDataNode* y = Node("y");
    copy->AddMapNode(Key(1, 2, 2, 2), y);
    EXPECT_EQ(owner.GetMysqlEleDataNode(Key(1, 2, 2, 2)), y) << "added through the copy";

    // Assignment takes the other table and leaves the one held before as it was.
    *copy = other;
    EXPECT_EQ(copy->GetMysqlEleDataNode(Key(1, 1, 1, 1)), nullptr);
    CMysqlEleDataNode* z = Node("z");
    copy->AddMapNode(Key(9, 9, 9, 9), z);
    EXPECT_EQ(other.GetMysqlEleDataNode(Key(9, 9, 9, 9)), z);
    EXPECT_EQ(owner.GetMysqlEleDataNode(Key(1, 1, 1, 1)), x) << "the former table stands";
}
