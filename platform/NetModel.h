#pragma once
// Stand-in for the suite's network-model library: the flow through closed breakers and
// switches, which a load-flow engine does not compute (it merges their nodes).
//
// Closed, in-service, live switches join nodes into groups. At each node, the branches
// (ln, xf, dln at either end), shunts (cp), loads (ld) and generators (un) of the records
// draw or give power; Kirchhoff's current law then fixes the flow through the switches
// of a spanning tree of each group, and a switch that closes a loop carries none. An
// open, out-of-service or dead switch carries none. Powers are those of the records: Pi,
// Qi of a branch end leave the node, Pi, Qi of a shunt and Pl, Ql of a load leave it, Pg,
// Qg of a generator enter it. Only what really flows counts: an element out of service
// or dead adds nothing, nor does an open line end; a winding of a three-winding
// transformer adds its J end only (its I end is the star point); a DC line adds the sums
// of its converter sets, Pd1i + Pd2i at I and Pd1j + Pd2j at J, which leave the node.

#include <map>
#include <string>
#include <vector>

class dbDatabase;

namespace dtsdb {

class DTSDB
{
public:
    DTSDB() {}
    ~DTSDB() {}
};

class cbFlow
{
public:
    explicit cbFlow(dbDatabase* db);
    ~cbFlow();

    // Reads the switches and the node powers from the records.
    void loadData();
    // Finds the flow through each closed switch.
    void calculate();
    // Writes P and Q into the cb records, in the caller's transaction.
    void storeData();

private:
    struct Switch
    {
        std::string id;
        int from, to; // node indexes
        bool closed;
        double p = 0, q = 0; // flow from the I end to the J end
    };
    int node(const std::string& name);

    dbDatabase* m_db;
    std::map<std::string, int> m_nodes;
    std::vector<double> m_outP, m_outQ; // power leaving each node into its elements
    std::vector<Switch> m_switches;
};

} // namespace dtsdb
