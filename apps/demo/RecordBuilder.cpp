#include "RecordBuilder.h"

#include "records/NetworkRecords.h"

#include <QMap>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

using namespace dtsdb;

namespace demo {
namespace {

template <class T> void clearTable()
{
    dbCursor<T> c(dbCursorForUpdate);
    c.removeAll();
}

template <class T> void put(dbDatabase* rtdb, const T& r)
{
    rtdb->insertRecord(&T::dbDescriptor, nullptr, &r);
}

struct UnionFind
{
    std::vector<int> parent;
    int add()
    {
        parent.push_back(static_cast<int>(parent.size()));
        return parent.back();
    }
    int find(int a)
    {
        while (parent[a] != a) {
            a = parent[a] = parent[parent[a]];
        }
        return a;
    }
    void join(int a, int b) { parent[find(a)] = find(b); }
};

// Rows of a job-table query, every column as bytes.
bool rows(QSqlDatabase* db, const QString& sql, std::vector<std::vector<std::string>>& out,
          QString& error)
{
    QSqlQuery q(*db);
    q.setForwardOnly(true);
    if (!q.exec(sql)) {
        error = sql + ": " + q.lastError().text();
        return false;
    }
    const int columns = q.record().count(); // a record per call: ask once
    while (q.next()) {
        std::vector<std::string> row;
        row.reserve(columns);
        for (int i = 0; i < columns; ++i) {
            row.push_back(q.value(i).toString().toLocal8Bit().toStdString());
        }
        out.push_back(std::move(row));
    }
    return true;
}

// The server's digits as the C locale reads them, whatever the host's locale (strtod would
// stop at the '.' under a locale with a decimal comma).
float number(const std::string& s)
{
    return static_cast<float>(QByteArray::fromStdString(s).toDouble());
}

} // namespace

bool BuildNetworkRecords(QSqlDatabase* db, int job, dbDatabase* rtdb, RecordCounts& counts,
                         QString& error,
                         const std::function<void(long long done, long long total)>& progress)
{
    using Rows = std::vector<std::vector<std::string>>;
    Rows nodes, acs, xfs, dcs, gens, loads, sws;
    const QString j = QString::number(job);
    long long read = 0;
    auto table = [&](const QString& sql, Rows& out) {
        if (!rows(db, sql, out, error)) {
            return false;
        }
        read += static_cast<long long>(out.size());
        if (progress) {
            progress(read, 0);
        }
        return true;
    };
    if (!table("SELECT Node_Name, Bus_Name, Base_kV, Vmax_kV, Vmin_kV, Zone_No FROM L1_" + j,
               nodes) ||
        !table("SELECT ID_Name, I_Name, J_Name, Ntype FROM L2_" + j, acs) ||
        !table("SELECT ID_Name, I_Name, J_Name, Ntype FROM L3_" + j, xfs) ||
        !table("SELECT ID_Name, I_Name, J_Name FROM L4_" + j, dcs) ||
        !table("SELECT ID_Name, Node_Name FROM L5_" + j, gens) ||
        !table("SELECT ID_Name, Node_Name, No_Load FROM L6_" + j, loads) ||
        !table("SELECT ID_Name, I_Name, J_Name, Ntype, Lbreak, Valid FROM LK_" + j, sws)) {
        return false;
    }

    // Nodes, including any that a branch names but the node table lacks.
    std::map<std::string, int> nodeIndex;
    std::vector<std::string> nodeNames, nodeBus;
    UnionFind groups;
    auto node = [&](const std::string& name, const std::string& busName) {
        auto it = nodeIndex.find(name);
        if (it != nodeIndex.end()) {
            return it->second;
        }
        const int k = groups.add();
        nodeIndex[name] = k;
        nodeNames.push_back(name);
        nodeBus.push_back(busName.empty() ? name : busName);
        return k;
    };
    struct Level
    {
        float baseKV, vmax, vmin;
        std::string zone;
        int ibs = -1;
    };
    std::map<std::string, Level> levels; // ordered by id, as "order by id" lists them
    for (const auto& r : nodes) {
        node(r[0], r[1]);
        Level& l = levels[r[1].empty() ? r[0] : r[1]];
        l.baseKV = number(r[2]);
        l.vmax = number(r[3]);
        l.vmin = number(r[4]);
        l.zone = r[5];
    }
    for (const auto* table : {&acs, &xfs, &dcs, &sws}) {
        for (const auto& r : *table) {
            node(r[1], "");
            node(r[2], "");
        }
    }
    for (const auto& r : sws) { // a closed switch in service merges its two nodes
        if (r[4] != "0" && r[5] != "0") {
            groups.join(nodeIndex[r[1]], nodeIndex[r[2]]);
        }
    }
    std::map<int, int> bsOfGroup;
    std::vector<int> ibs(nodeNames.size());
    std::vector<int> bsFirstNode;
    for (std::size_t k = 0; k < nodeNames.size(); ++k) {
        const int g = groups.find(static_cast<int>(k));
        auto it = bsOfGroup.find(g);
        if (it == bsOfGroup.end()) {
            it = bsOfGroup.emplace(g, static_cast<int>(bsFirstNode.size())).first;
            bsFirstNode.push_back(static_cast<int>(k));
        }
        ibs[k] = it->second;
    }
    auto bsOf = [&](const std::string& n) { return ibs[nodeIndex.at(n)]; };

    for (auto clear : {clearTable<nd>, clearTable<bs>, clearTable<bus>, clearTable<kv>,
                       clearTable<r_kv_nd>, clearTable<ln>, clearTable<cp>, clearTable<xf>,
                       clearTable<dln>, clearTable<un>, clearTable<ld>, clearTable<cb>}) {
        clear();
    }
    rtdb->commit();

    std::map<std::string, int> levelPos;
    for (auto& [name, level] : levels) {
        const int pos = static_cast<int>(levelPos.size());
        levelPos[name] = pos;
    }
    for (std::size_t b = 0; b < bsFirstNode.size(); ++b) {
        const int k = bsFirstNode[b];
        bs r;
        r.id = static_cast<int>(b);
        r.name = nodeBus[k].c_str();
        auto lp = levelPos.find(nodeBus[k]);
        r.ikv = lp == levelPos.end() ? 0 : lp->second;
        r.iisland = 0;
        r.V = 1.0;
        put(rtdb, r);
        if (lp != levelPos.end() && levels[nodeBus[k]].ibs < 0) {
            levels[nodeBus[k]].ibs = static_cast<int>(b);
        }
    }
    for (auto& [name, level] : levels) {
        kv r;
        r.id = name.c_str();
        r.Zone = level.zone.c_str();
        r.ibs = level.ibs;
        r.Base_kV = level.baseKV;
        r.Vmax_kV = level.vmax;
        r.Vmin_kV = level.vmin;
        put(rtdb, r);
    }
    for (std::size_t k = 0; k < nodeNames.size(); ++k) {
        nd n;
        n.id = nodeNames[k].c_str();
        n.ibs = ibs[k];
        put(rtdb, n);
        bus p;
        p.id = nodeNames[k].c_str();
        p.KV = nodeBus[k].c_str();
        p.nd = nodeNames[k].c_str();
        p.ibs = ibs[k];
        p.V = 1.0;
        put(rtdb, p);
        r_kv_nd rel;
        rel.kv_id = nodeBus[k].c_str();
        rel.nd_id = nodeNames[k].c_str();
        put(rtdb, rel);
    }
    counts.nodes = static_cast<int>(nodeNames.size());
    counts.buses = static_cast<int>(bsFirstNode.size());
    counts.levels = static_cast<int>(levels.size());

    std::string id;
    for (const auto& r : acs) {
        const int ntype = static_cast<int>(number(r[3]));
        if (ntype == 1 || ntype == 2) {
            id = r[0] + (ntype == 1 ? "_ac" : "_sc");
            ln l;
            l.id = id.c_str();
            l.I_Name = r[1].c_str();
            l.J_Name = r[2].c_str();
            l.ibs = bsOf(r[1]);
            l.zbs = bsOf(r[2]);
            l.lntype = ntype;
            l.Zone = "1";
            put(rtdb, l);
            ++counts.lines;
        } else {
            cp c;
            c.id = r[0].c_str();
            c.Bus_Name = r[1].c_str();
            c.ibs = bsOf(r[1]);
            put(rtdb, c);
            ++counts.shunts;
        }
    }
    for (const auto& r : xfs) {
        const int ntype = static_cast<int>(number(r[3]));
        const char* suffix = ntype == 1    ? "_2w"
                             : ntype == 2  ? "_sf"
                             : ntype == 31 ? "_3w1"
                             : ntype == 32 ? "_3w2"
                                           : "_3w3";
        id = r[0] + suffix;
        xf t;
        t.id = id.c_str();
        t.type = ntype >= 31 ? 3 : ntype;
        t.I_Name = r[1].c_str();
        t.J_Name = r[2].c_str();
        t.ibs = bsOf(r[1]);
        t.zbs = bsOf(r[2]);
        put(rtdb, t);
        ++counts.transformers;
    }
    for (const auto& r : dcs) {
        dln d;
        d.id = r[0].c_str();
        d.I_Name = r[1].c_str();
        d.J_Name = r[2].c_str();
        d.ibs = bsOf(r[1]);
        d.zbs = bsOf(r[2]);
        put(rtdb, d);
        ++counts.dcLines;
    }
    for (const auto& r : gens) {
        un g;
        g.id = r[0].c_str();
        g.Bus_Name = r[1].c_str();
        g.ibs = nodeIndex.count(r[1]) ? bsOf(r[1]) : -1;
        put(rtdb, g);
        ++counts.generators;
    }
    for (const auto& r : loads) {
        ld l;
        l.id = r[0].c_str();
        l.Bus_Name = r[1].c_str();
        l.ibs = nodeIndex.count(r[1]) ? bsOf(r[1]) : -1;
        put(rtdb, l);
        ++counts.loads;
    }
    for (const auto& r : sws) {
        id = r[0] + (r[3] == "1" ? "_brk" : "_sw");
        cb c;
        c.id = id.c_str();
        c.I_Name = r[1].c_str();
        c.J_Name = r[2].c_str();
        put(rtdb, c);
        ++counts.switches;
    }
    rtdb->commit();
    return true;
}

} // namespace demo
