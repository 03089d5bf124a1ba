#pragma once
// Sample networks for the demo, the tests and the benchmarks: read from the JSON files of
// the public IEEE cases or generated, and written into the working copies of a base
// database as one data group chosen by one calculation scheme.
//
// Names: node "N<k>", bus "B<k>", station "S<k>", line "L<k>", transformer "T<k>",
// phase shifter "P<k>", generator "G<k>", load "D<k>", shunt "C<k>", k the bus or branch
// number; a branch of zero impedance is a closed breaker "Z<k>". Where the network names
// them, a bus's name is that of its bus and of its node, its station that of its station
// (which several buses may share), and a branch's or generator's name its own; a
// generator's own node, breaker and switch keep "N<k>G", "K<k>" and "Q<k>". Names are
// checked when read: at most 20 bytes as the base tables count them (common/GbkWidth.h),
// none twice among its kind. A generator's Mode_Ctrl gives its bus type: 2 slack, 1 PV, 0 PQ. A
// shunt is stored by its impedance: G + jB = 1 / (R1 + jX1). A transformer's Tk is the
// off-nominal ratio at its I end, its charging is its Bm (negated: Gm - jBm is the shunt
// admittance, half at each end). A line's B1_Half is half the total charging. Parallel
// branches between two buses are circuits 1, 2, ... (ID_No). A rating (rateA) becomes a
// transformer's Rate_MVA, and a line's Rate_Ka where its bus has a base voltage.

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

class QSqlDatabase;

namespace samples {

struct Bus
{
    int num = 0;
    int type = 1; // 1 PQ, 2 PV, 3 slack, 4 isolated (everything on it out of service)
    QString name;    // empty: "B<num>", its node "N<num>"
    QString station; // empty: "S<num>"
    double pdMW = 0, qdMVAr = 0, gsMW = 0, bsMVAr = 0;
    double baseKV = 0;
    double vm = 1.0, vaDeg = 0; // published solution or start values
    int zone = 1, area = 1;
    double vmax = 1.1, vmin = 0.9;
};

struct Gen
{
    int bus = 0;
    QString name; // empty: "G<k>", k its place among the generators
    // The limits may be infinite: a case file's way of leaving one unbounded (Inf).
    double pgMW = 0, qgMVAr = 0, qmax = 0, qmin = 0, vg = 1.0, pmax = 0, pmin = 0;
    double mBase = 0; // the machine's own base power, MVA (0: not given)
    int status = 1;
};

// What the base tables hold for a generator limit left unbounded, with its sign, in MW or
// MVAr: the tables hold numbers, and this one is beyond any generator's reach.
constexpr double kUnboundedLimit = 1e10;

struct Branch
{
    int from = 0, to = 0;
    double r = 0, x = 0, b = 0; // per unit, b the total charging
    double ratio = 0, angleDeg = 0;
    double rateMVA = 0; // 0: unrated
    int status = 1;
    bool transformer = false;
    QString name; // empty: the writer's own
};

struct Network
{
    QString name;
    double baseMVA = 100;
    std::vector<Bus> buses;
    std::vector<Gen> gens;
    std::vector<Branch> branches;
};

// Reads a network file in the JSON form of the IEEE samples, with the optional names
// "name" (buses, branches, generators) and "station" (buses). False with `error` set,
// also for a name wider than its column holds and for a name given twice.
bool ReadNetworkJson(const QString& path, Network& net, QString& error);

// Reads a MATPOWER case file (version 2: mpc.baseMVA, mpc.bus, mpc.gen, mpc.branch and
// the optional mpc.bus_name). False with `error` set to "FILE:LINE: reason". What the file
// carries that the base tables cannot hold is told in `notHeld`, one line per kind.
bool ReadMatpowerCase(const QString& path, Network& net, QStringList& notHeld, QString& error);

// Writes the network as a MATPOWER case file (version 2), the buses' Vm and Va and the
// generators' Pg and Qg as `net` holds them, every number as it reads back exactly.
bool WriteMatpowerCase(const QString& path, const Network& net, QString& error);

// The name of a bus in the base database: its own, else "B<num>".
QString BusName(const Bus& bus);
// The name of the network's k-th branch (from 1) in the base database: its own, else
// "L<k>", "T<k>", "P<k>" or "Z<k>" by its kind; of its k-th generator: its own, else "G<k>".
QString BranchName(const Branch& br, int k);
QString GeneratorName(const Gen& gen, int k);

// A connected meshed network of `nodes` buses (at least 3), the same for the same seed,
// in the proportions of a real grid per bus: about 1.5 branches (a ring, cross ties and
// long ties; every fifth ring branch a transformer, so 0.2), 0.3 generators (the first
// the slack), 0.5 loads, a shunt every 50 buses; each generator brings two switches.
Network MakeSyntheticNetwork(int nodes, unsigned seed = 1);

// Writes the network into the working copies (the BAK tables) as data group `group`,
// selected by scheme `scheme` at level 2, with the base power, so that extracting the
// scheme gives back exactly this network. To exercise what a real base database holds,
// the rows are spread as follows:
//  - every tenth line also stands, with its resistance doubled, in a group "<group>_OLD"
//    of level 1 of the scheme under a lower id, and its right values win by the tie of
//    ids; and every fifth line also stands, spoiled, in "<group>_ALT", which the scheme
//    does not name;
//  - every generator stands on a node of its own ("N<k>G"), joined to its bus's node by
//    a closed breaker "K<k>" and a closed isolating switch "Q<k>" in parallel;
//  - rows are stored per unit (Unit 1) when a bus has no base voltage, else in named units
//    (Unit 0) for even-numbered lines and per unit for odd ones.
// False with `error` set when a statement fails. `progress`, when given, hears how many of
// the network's elements (buses, generators, branches) have been written so far.
bool WriteNetworkToBaseDb(QSqlDatabase* db, const Network& net, const QString& group,
                          const QString& scheme, QString& error,
                          const std::function<void(int done, int total)>& progress = {});

// Adds to group `group` of a written synthetic network the families the generator does not
// make, from its own rows: a series capacitor beside every 20th line, a phase shifter beside
// every 4th transformer, a three-winding transformer on every 50th node (its windings to the
// next two nodes) and a DC line from every 200th node; every other one of each in named
// units. False with `error` set when a statement fails.
bool AddOtherFamilies(QSqlDatabase* db, const QString& group, QString& error);

// Gives every element of group `group` its stability data: zero-sequence impedances (lines
// three times their positive sequence), zero-sequence connections (every fourth transformer
// "NO", every third three-winding transformer's second winding), DC control data, dynamic
// models of generators and loads, and adds a static var compensator on every 100th node.
// False with `error` set when a statement fails.
bool AddStabilityData(QSqlDatabase* db, const QString& group, QString& error);

// Appends to `sql` the rows of every working copy that the writer above fills, as SQL
// that first empties each of those tables and then inserts its rows, so that loading the
// text gives back the same base database. False with `error` set when a read fails.
bool DumpBaseTablesAsSql(QSqlDatabase* db, QByteArray& sql, QString& error);

} // namespace samples
