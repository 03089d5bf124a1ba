#include "platform/NetModel.h"

#include "records/NetworkRecords.h"
#include "records/RecordFlags.h"

#include <functional>

namespace dtsdb {

cbFlow::cbFlow(dbDatabase* db) : m_db(db) {}

cbFlow::~cbFlow() {}

int cbFlow::node(const std::string& name)
{
    auto it = m_nodes.find(name);
    if (it != m_nodes.end()) {
        return it->second;
    }
    const int k = static_cast<int>(m_nodes.size());
    m_nodes.emplace(name, k);
    m_outP.push_back(0);
    m_outQ.push_back(0);
    return k;
}

void cbFlow::loadData()
{
    m_nodes.clear();
    m_outP.clear();
    m_outQ.clear();
    m_switches.clear();
    auto draw = [&](const char* n, double p, double q) {
        const int k = node(n ? n : "");
        m_outP[k] += p;
        m_outQ[k] += q;
    };
    // Switch ends are numbered first, so that each group's spanning tree starts where its
    // first switch starts; a balanced group's flows do not depend on it.
    {
        dbCursor<cb> c;
        if (c.select() > 0) {
            do {
                Switch s;
                s.id = c->id;
                s.from = node(c->I_Name);
                s.to = node(c->J_Name);
                s.closed = !(c->q & (CB_OPEN | CB_OUTSERVICE)) && !(c->topflags & CB_TOP_DEAD);
                m_switches.push_back(s);
            } while (c.next());
        }
    }
    // Only what really flows into a node counts: no element out of service (its bit in q)
    // or dead (its bit in topflags), whose powers are stale, and no open line end.
    {
        dbCursor<ln> c;
        if (c.select() > 0) {
            do {
                if ((c->q & LN_OUTSERVICE) || (c->topflags & LN_TOP_INVALID)) {
                    continue;
                }
                if (!(c->q & LN_IOPEN)) {
                    draw(c->I_Name, c->Pi, c->Qi);
                }
                if (!(c->q & LN_JOPEN)) {
                    draw(c->J_Name, c->Pj, c->Qj);
                }
            } while (c.next());
        }
    }
    // A winding of a three-winding transformer meets the network at its J end only: its I
    // end is the star point inside the transformer, and a stored result brings back the
    // winding's Pj, Qj alone.
    {
        dbCursor<xf> c;
        if (c.select() > 0) {
            do {
                if ((c->q & XF_OUTSERVICE) || (c->topflags & XF_TOP_INVALID)) {
                    continue;
                }
                if (c->type != 3) {
                    draw(c->I_Name, c->Pi, c->Qi);
                }
                draw(c->J_Name, c->Pj, c->Qj);
            } while (c.next());
        }
    }
    // A DC line draws the sums of its two converter sets at each end (Pd1i + Pd2i leave the
    // I node, Pd1j + Pd2j the J node), not its Pi and Pj, which the stored result's end sums
    // leave holding the J end's power and a stale value.
    {
        dbCursor<dln> c;
        if (c.select() > 0) {
            do {
                if ((c->q & DLN_OUTSERVICE) || (c->topflags & DLN_TOP_INVALID)) {
                    continue;
                }
                draw(c->I_Name, c->Pd1i + c->Pd2i, c->Qd1i + c->Qd2i);
                draw(c->J_Name, c->Pd1j + c->Pd2j, c->Qd1j + c->Qd2j);
            } while (c.next());
        }
    }
    {
        dbCursor<cp> c;
        if (c.select() > 0) {
            do {
                if (!(c->q & CP_OUTSERVICE) && !(c->topflags & CP_TOP_INVALID)) {
                    draw(c->Bus_Name, c->Pi, c->Qi);
                }
            } while (c.next());
        }
    }
    {
        dbCursor<ld> c;
        if (c.select() > 0) {
            do {
                if (!(c->q & LD_OUTSERVICE) && !(c->topflags & LD_TOP_INVALID)) {
                    draw(c->Bus_Name, c->Pl, c->Ql);
                }
            } while (c.next());
        }
    }
    {
        dbCursor<un> c;
        if (c.select() > 0) {
            do {
                if (!(c->q & UN_OUTSERVICE) && !(c->topflags & UN_TOP_INVALID)) {
                    draw(c->Bus_Name, -c->Pg, -c->Qg);
                }
            } while (c.next());
        }
    }
}

void cbFlow::calculate()
{
    const int n = static_cast<int>(m_outP.size());
    // Adjacency of the closed switches.
    std::vector<std::vector<int>> adj(n);
    for (int k = 0; k < static_cast<int>(m_switches.size()); ++k) {
        Switch& s = m_switches[k];
        s.p = s.q = 0;
        if (s.closed && s.from != s.to) {
            adj[s.from].push_back(k);
            adj[s.to].push_back(k);
        }
    }
    // A spanning forest by depth-first search; each tree switch then carries the power
    // that the subtree beyond it draws.
    std::vector<int> parentSwitch(n, -1), order;
    std::vector<bool> seen(n, false);
    for (int root = 0; root < n; ++root) {
        if (seen[root] || adj[root].empty()) {
            continue;
        }
        std::vector<int> stack{root};
        seen[root] = true;
        while (!stack.empty()) {
            const int u = stack.back();
            stack.pop_back();
            order.push_back(u);
            for (int k : adj[u]) {
                const Switch& s = m_switches[k];
                const int v = s.from == u ? s.to : s.from;
                if (!seen[v]) {
                    seen[v] = true;
                    parentSwitch[v] = k;
                    stack.push_back(v);
                }
            }
        }
    }
    std::vector<double> subP(m_outP), subQ(m_outQ);
    for (auto it = order.rbegin(); it != order.rend(); ++it) {
        const int v = *it;
        const int k = parentSwitch[v];
        if (k < 0) {
            continue;
        }
        Switch& s = m_switches[k];
        const int u = s.from == v ? s.to : s.from;
        // Flow from u into v is what v's subtree draws.
        const double sign = s.from == u ? 1.0 : -1.0;
        s.p = sign * subP[v];
        s.q = sign * subQ[v];
        subP[u] += subP[v];
        subQ[u] += subQ[v];
    }
}

void cbFlow::storeData()
{
    dbCursor<cb> c(dbCursorForUpdate);
    if (c.select() < 1) {
        return;
    }
    std::size_t k = 0;
    do {
        if (k < m_switches.size() && m_switches[k].id == c->id) {
            c->P = static_cast<float>(m_switches[k].p);
            c->Q = static_cast<float>(m_switches[k].q);
            c.update();
        }
        ++k;
    } while (c.next());
    (void)m_db;
}

} // namespace dtsdb
