// The element map: which keys the table accepts, lookups by all four fields, ownership of
// the nodes and the shallow copies.

#include "labels/EleDataMap.h"

#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <tuple>
#include <utility>

namespace {

using Key = CRtdbEleDataNode;
CMysqlEleDataNode* Node(const char* name)
{
    return new CMysqlEleDataNode(name, 1, "t0", "t1", 0);
}
// A node the table did not store: the caller deletes it.
using Owned = std::unique_ptr<CMysqlEleDataNode>;

} // namespace

TEST(LabelsEleDataMap, KeysCompareByThreeFieldsAsMembersAndByFourOutside)
{
    Key a(4, 1, 2, 3), b(5, 1, 2, 3);
    EXPECT_TRUE(a == b && !(a != b) && !(a < b) && !(a > b)) << "members ignore Id[0]";
    EXPECT_TRUE(!(std::as_const(a) == b) && std::as_const(a) != b && std::as_const(a) < b &&
                !(std::as_const(a) > b) && std::as_const(b) > a)
        << "namespace-level operators use all four fields";
    // Signed, lexicographic: (1, 5, 0) against (2, 1, 0) and a negative tag.
    Key c(1, 5, 0, 0), d(2, 1, 0, 0), e(0, 1, 2, -1), f(0, 1, 2, 0);
    EXPECT_TRUE(d < c && c > d && std::as_const(c) < d && e < f);

    Key def; // a default key's fields: the plain table's lookup of Key(-1, -1, -1, 0) below
    def = Key(7, 8, 9, 10);
    EXPECT_TRUE(std::as_const(def) == Key(7, 8, 9, 10)) << "assignment copies all four fields";
}

TEST(LabelsEleDataMap, NodesCompareByOrderThenNameAndCarryTheRest)
{
    CMysqlEleDataNode a("A", 2, "x", "y", 1), b("B", 1, "p", "q", 2), c("C", 2, "", "", 0);
    CMysqlEleDataNode a2("A", 2, "other", "texts", 99), zh("母线", 2, "", "", 0);
    EXPECT_TRUE(b < a && a > b) << "Order first";
    EXPECT_TRUE(a == a2 && !(a != a2)) << "Text and Tag are carried, never compared";
    EXPECT_TRUE(a < c && c > a);
    EXPECT_TRUE(std::as_const(a) < c && std::as_const(c) > a && std::as_const(a) != c);
    EXPECT_TRUE(c < zh) << "byte-wise names: a multi-byte name sorts after ASCII";

    CMysqlEleDataNode def, copy(b);
    EXPECT_EQ(std::make_tuple(def.Order, def.Name, copy.Text[1], copy.Tag),
              std::make_tuple(-1, std::string(), std::string("q"), 2));
    // != goes through the virtual ==.
    struct AllEqual : CMysqlEleDataNode
    {
        bool operator==(const CMysqlEleDataNode&) override { return true; }
    } odd;
    CMysqlEleDataNode& asBase = odd;
    EXPECT_FALSE(asBase != a);
}

// The table accepts a key by the walk it was first written on: the key just below it by
// four fields must be member-less than it (a key that goes first is always taken); a key
// present already keeps its first node; lookups match all four fields.
TEST(LabelsEleDataMap, TheTableAcceptsKeysByTheWalkItWasWrittenOn)
{
    CMysqlRtdbEleDataMap map;
    EXPECT_EQ(map.GetMysqlEleDataNode(Key(4, 1, 2, 3)), nullptr) << "empty table";
    CMysqlEleDataNode *first = Node("first"), *c = Node("c");
    Owned refused(Node("refused")), again(Node("again")), b(Node("b"));
    EXPECT_TRUE(map.AddMapNode(Key(4, 1, 2, 3), first));
    EXPECT_TRUE(map.AddMapNode(Key(5, 1, 2, 3), refused.get())); // not member-greater
    EXPECT_TRUE(map.AddMapNode(Key(4, 1, 2, 3), again.get()));
    map.AddMapNode(Key(1, 5, 0, 0), c); // goes first
    map.AddMapNode(Key(2, 1, 0, 0), b.get()); // after (1,5,0,0), but (1,0,0) is not above (5,0,0)
    EXPECT_EQ(map.GetMysqlEleDataNode(Key(4, 1, 2, 3)), first);
    EXPECT_EQ(map.GetMysqlEleDataNode(Key(5, 1, 2, 3)), nullptr);
    EXPECT_EQ(map.GetMysqlEleDataNode(Key(2, 1, 0, 0)), nullptr);
    EXPECT_EQ(map.GetMysqlEleDataNode(Key(1, 5, 0, 0)), c);
    EXPECT_EQ(map.GetMysqlEleDataNode(Key(3, 5, 0, 0)), nullptr) << "Id[0] counts in a lookup";

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
    const std::pair<Key, CMysqlEleDataNode*> found[] = {{Key(0, 9, 9, 9), low},
                                                        {Key(3, 1, 1, 1), high},
                                                        {Key(2, 5, 5, 5), nullptr},
                                                        {Key(4, 0, 0, 0), nullptr},
                                                        {Key(4, 2, 0, 0), top2}};
    for (const auto& [key, node] : found) {
        EXPECT_EQ(middle.GetMysqlEleDataNode(key), node) << key.Id[0];
    }

    // A default key is an ordinary key; a null node is stored, looks absent, stays, and is
    // skipped by the destructor.
    CMysqlRtdbEleDataMap plain;
    CMysqlEleDataNode* d = Node("default");
    Owned late(Node("late"));
    plain.AddMapNode(Key(), d);
    plain.AddMapNode(Key(0, 0, 0, 0), nullptr);
    plain.AddMapNode(Key(0, 0, 0, 0), late.get());
    EXPECT_EQ(plain.GetMysqlEleDataNode(Key(-1, -1, -1, 0)), d);
    EXPECT_EQ(plain.GetMysqlEleDataNode(Key(0, 0, 0, 0)), nullptr);
}

TEST(LabelsEleDataMap, CopiesShareOneTable)
{
    CMysqlRtdbEleDataMap owner, other;
    CMysqlEleDataNode *x = Node("x"), *y = Node("y"), *z = Node("z");
    owner.AddMapNode(Key(1, 1, 1, 1), x);
    // The copies are never destroyed: the owners delete the tables, once each.
    alignas(CMysqlRtdbEleDataMap) unsigned char place[sizeof(CMysqlRtdbEleDataMap)];
    auto* copy = new (place) CMysqlRtdbEleDataMap(owner);
    EXPECT_EQ(copy->GetMysqlEleDataNode(Key(1, 1, 1, 1)), x);
    copy->AddMapNode(Key(1, 2, 2, 2), y);
    EXPECT_EQ(owner.GetMysqlEleDataNode(Key(1, 2, 2, 2)), y) << "added through the copy";
    // Assignment takes the other table and leaves the one held before as it was.
    *copy = other;
    EXPECT_EQ(copy->GetMysqlEleDataNode(Key(1, 1, 1, 1)), nullptr);
    copy->AddMapNode(Key(9, 9, 9, 9), z);
    EXPECT_EQ(other.GetMysqlEleDataNode(Key(9, 9, 9, 9)), z);
    EXPECT_EQ(owner.GetMysqlEleDataNode(Key(1, 1, 1, 1)), x) << "the former table stands";
}
