// The element map: key comparisons, nodes, and the table with the walk it was written on.

#include "labels/EleDataMap.h"

#include <cstring>
#include <iterator>
#include <tuple>
#include <utility>

namespace {

// (Id[1], Id[2], Tag): what the member operators compare.
std::tuple<int, int, int> threeFields(const CRtdbEleDataNode& k)
{
    return std::make_tuple(k.Id[1], k.Id[2], k.Tag);
}

std::tuple<int, int, int, int> fourFields(const CRtdbEleDataNode& k)
{
    return std::make_tuple(k.Id[0], k.Id[1], k.Id[2], k.Tag);
}

int compareNames(const CMysqlEleDataNode& a, const CMysqlEleDataNode& b)
{
    return std::strcmp(a.Name.c_str(), b.Name.c_str());
}

} // namespace

// ---- CRtdbEleDataNode ----

CRtdbEleDataNode::CRtdbEleDataNode() : Id{-1, -1, -1}, Tag(0) {}

CRtdbEleDataNode::CRtdbEleDataNode(int id0, int id1, int id2, int tag) : Id{id0, id1, id2}, Tag(tag)
{}

CRtdbEleDataNode& CRtdbEleDataNode::operator=(const CRtdbEleDataNode& other)
{
    if (this != &other) {
        Id[0] = other.Id[0];
        Id[1] = other.Id[1];
        Id[2] = other.Id[2];
        Tag = other.Tag;
    }
    return *this;
}

bool CRtdbEleDataNode::operator==(const CRtdbEleDataNode& other)
{
    return threeFields(*this) == threeFields(other);
}

bool CRtdbEleDataNode::operator!=(const CRtdbEleDataNode& other)
{
    return !(*this == other);
}

bool CRtdbEleDataNode::operator<(const CRtdbEleDataNode& other)
{
    return threeFields(*this) < threeFields(other);
}

bool CRtdbEleDataNode::operator>(const CRtdbEleDataNode& other)
{
    return threeFields(*this) > threeFields(other);
}

bool operator==(const CRtdbEleDataNode& a, const CRtdbEleDataNode& b)
{
    return fourFields(a) == fourFields(b);
}

bool operator!=(const CRtdbEleDataNode& a, const CRtdbEleDataNode& b)
{
    return !(a == b);
}

bool operator<(const CRtdbEleDataNode& a, const CRtdbEleDataNode& b)
{
    return fourFields(a) < fourFields(b);
}

bool operator>(const CRtdbEleDataNode& a, const CRtdbEleDataNode& b)
{
    return !(a < b) && !(a == b);
}

// ---- CMysqlEleDataNode ----

CMysqlEleDataNode::CMysqlEleDataNode() : Order(-1), Tag(0) {}

CMysqlEleDataNode::CMysqlEleDataNode(std::string name, int order, std::string text0,
                                     std::string text1, int tag)
    : Name(std::move(name)), Order(order), Text{std::move(text0), std::move(text1)}, Tag(tag)
{}

CMysqlEleDataNode::CMysqlEleDataNode(const CMysqlEleDataNode& other)
    : Name(other.Name), Order(other.Order), Text{other.Text[0], other.Text[1]}, Tag(other.Tag)
{}

bool CMysqlEleDataNode::operator==(const CMysqlEleDataNode& other)
{
    return compareNames(*this, other) == 0 && Order == other.Order;
}

bool CMysqlEleDataNode::operator<(const CMysqlEleDataNode& other)
{
    return Order < other.Order || (Order == other.Order && compareNames(*this, other) < 0);
}

bool CMysqlEleDataNode::operator!=(const CMysqlEleDataNode& other)
{
    return !(*this == other); // the virtual ==: an override decides
}

bool CMysqlEleDataNode::operator>(const CMysqlEleDataNode& other)
{
    return Order > other.Order || (Order == other.Order && compareNames(*this, other) > 0);
}

bool operator==(const CMysqlEleDataNode& a, const CMysqlEleDataNode& b)
{
    return compareNames(a, b) == 0 && a.Order == b.Order;
}

bool operator!=(const CMysqlEleDataNode& a, const CMysqlEleDataNode& b)
{
    return !(a == b);
}

bool operator<(const CMysqlEleDataNode& a, const CMysqlEleDataNode& b)
{
    return a.Order < b.Order || (a.Order == b.Order && compareNames(a, b) < 0);
}

bool operator>(const CMysqlEleDataNode& a, const CMysqlEleDataNode& b)
{
    return a.Order > b.Order || (a.Order == b.Order && compareNames(a, b) > 0);
}

// ---- CMysqlRtdbEleDataMap ----

CMysqlRtdbEleDataMap::CMysqlRtdbEleDataMap()
    : m_pMap(new QMap<CRtdbEleDataNode, CMysqlEleDataNode*>)
{}

CMysqlRtdbEleDataMap::CMysqlRtdbEleDataMap(const CMysqlRtdbEleDataMap& other) : m_pMap(other.m_pMap)
{}

CMysqlRtdbEleDataMap& CMysqlRtdbEleDataMap::operator=(const CMysqlRtdbEleDataMap& other)
{
    m_pMap = other.m_pMap; // shallow, and the table held before is not released
    return *this;
}

// The node destructor is not virtual by design (see the header), hence no warning here.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdelete-non-virtual-dtor"
CMysqlRtdbEleDataMap::~CMysqlRtdbEleDataMap()
{
    for (auto it = m_pMap->begin(); it != m_pMap->end(); ++it) {
        delete it.value();
    }
    delete m_pMap;
}
#pragma GCC diagnostic pop

// The table was first written on a red-black tree that inserts a unique key by walking
// down with the four-field `<`, then compares the in-order predecessor of the place found
// with the new key by the member `<`, which ignores Id[0]; a key that would go first is
// inserted with no comparison. The result depends only on the four-field order of the
// keys, so the same walk on this map is: the first key above `key` by four fields; at the
// front insert, else insert only when the key before it is member-less than `key`. An
// accepted key is never present already, so an accepted insert always adds an entry.
bool CMysqlRtdbEleDataMap::AddMapNode(const CRtdbEleDataNode& key, CMysqlEleDataNode* node)
{
    m_pMap->detach();
    const auto above = m_pMap->upperBound(key);
    bool accept = above == m_pMap->begin();
    if (!accept) {
        CRtdbEleDataNode before = std::prev(above).key(); // not const: the member `<` applies
        accept = before < key;
    }
    if (accept) {
        m_pMap->insert(above, key, node);
    }
    return true;
}

CMysqlEleDataNode* CMysqlRtdbEleDataMap::GetMysqlEleDataNode(const CRtdbEleDataNode& key) const
{
    m_pMap->detach();
    // The first key not below `key` by four fields, and a match only when `key` is not
    // below it either.
    const auto it = m_pMap->lowerBound(key);
    if (it != m_pMap->end() && !(key < it.key())) {
        return it.value();
    }
    return nullptr;
}
