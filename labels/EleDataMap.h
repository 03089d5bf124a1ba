#pragma once
// A table from the key of an element in the real-time database (CRtdbEleDataNode) to the
// same element in the base database (CMysqlEleDataNode), for the calculation modules that
// build and query it; the library itself neither fills nor reads one. What the fields hold
// is the calling modules' business.
//
// Keys compare two ways on purpose. The member operators use Id[1], Id[2] and Tag; the
// namespace-level ones all four fields. The table orders its keys by all four fields but
// accepts a new key only when it comes first or when the key before it in that order is
// member-less than it; so a key that differs from the key before it in Id[0] alone, or
// that follows it by Id[0] while its own (Id[1], Id[2], Tag) is smaller, is refused.
//
// Ownership: a node that AddMapNode stored belongs to the table, which deletes it; one it
// did not store stays the caller's. Nodes come from new. Copies of a table share it (see
// CMysqlRtdbEleDataMap).

#include <QMap>
#include <string>

class CRtdbEleDataNode
{
public:
    CRtdbEleDataNode();
    CRtdbEleDataNode(int id0, int id1, int id2, int tag);
    CRtdbEleDataNode(const CRtdbEleDataNode&) = default;
    CRtdbEleDataNode& operator=(const CRtdbEleDataNode& other);

    // Id[1], Id[2], Tag in signed lexicographic order; Id[0] takes no part.
    bool operator==(const CRtdbEleDataNode& other);
    bool operator!=(const CRtdbEleDataNode& other);
    bool operator<(const CRtdbEleDataNode& other);
    bool operator>(const CRtdbEleDataNode& other);

    int Id[3]; // element identifiers; -1 by default
    int Tag;   // fourth key component; 0 by default
};

// Id[0], Id[1], Id[2], Tag in signed lexicographic order. `>` is "neither < nor ==".
bool operator==(const CRtdbEleDataNode& a, const CRtdbEleDataNode& b);
bool operator!=(const CRtdbEleDataNode& a, const CRtdbEleDataNode& b);
bool operator<(const CRtdbEleDataNode& a, const CRtdbEleDataNode& b);
bool operator>(const CRtdbEleDataNode& a, const CRtdbEleDataNode& b);

// An element of the base database. Comparisons look at Order (signed) and Name (bytes, as
// strcmp) only; Text and Tag are carried. The destructor is not virtual: the table deletes
// its nodes as CMysqlEleDataNode, so a node handed to it must be one and not a subclass.
class CMysqlEleDataNode
{
public:
    CMysqlEleDataNode();
    CMysqlEleDataNode(std::string name, int order, std::string text0, std::string text1, int tag);
    CMysqlEleDataNode(const CMysqlEleDataNode& other);
    CMysqlEleDataNode& operator=(const CMysqlEleDataNode& other) = default;
    ~CMysqlEleDataNode() = default;

    // Name equal and Order equal, the name tested first.
    virtual bool operator==(const CMysqlEleDataNode& other);
    // Order less; on equal Order, the name below.
    virtual bool operator<(const CMysqlEleDataNode& other);
    // The negation of the virtual ==, through the object's own override.
    bool operator!=(const CMysqlEleDataNode& other);
    // Order greater; on equal Order, the name above.
    bool operator>(const CMysqlEleDataNode& other);

    std::string Name;
    int Order;
    std::string Text[2];
    int Tag;
};

// The same four rules on const nodes, without virtual dispatch.
bool operator==(const CMysqlEleDataNode& a, const CMysqlEleDataNode& b);
bool operator!=(const CMysqlEleDataNode& a, const CMysqlEleDataNode& b);
bool operator<(const CMysqlEleDataNode& a, const CMysqlEleDataNode& b);
bool operator>(const CMysqlEleDataNode& a, const CMysqlEleDataNode& b);

// The table. It only grows. Copy construction and assignment copy the pointer to the
// table and nothing else: both objects then share one table, and assignment does not
// release the table the target held. The destructor deletes the table and its nodes with
// no reference count, so only one of the objects sharing a table may be destroyed: pass
// the object by reference. One thread at a time, lookups included.
class CMysqlRtdbEleDataMap
{
public:
    CMysqlRtdbEleDataMap();
    CMysqlRtdbEleDataMap(const CMysqlRtdbEleDataMap& other);
    CMysqlRtdbEleDataMap& operator=(const CMysqlRtdbEleDataMap& other);
    virtual ~CMysqlRtdbEleDataMap();

    // Stores `node` under `key` when the key is accepted and new (a null node too). True
    // in every case: whether the node was stored shows only in a later lookup.
    bool AddMapNode(const CRtdbEleDataNode& key, CMysqlEleDataNode* node);
    // The node stored under a key equal in all four fields, or null. It stays the table's.
    CMysqlEleDataNode* GetMysqlEleDataNode(const CRtdbEleDataNode& key) const;

private:
    QMap<CRtdbEleDataNode, CMysqlEleDataNode*>* m_pMap;
};
