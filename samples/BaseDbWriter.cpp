#include "SampleNetwork.h"

#include "common/BulkLoad.h"
#include "common/Feedback.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <complex>
#include <map>
#include <set>

namespace samples {
namespace {

// A number with the twelve significant digits of printf's "%.12g".
QByteArray num(double v)
{
    char buffer[32];
    const std::to_chars_result r =
        std::to_chars(buffer, buffer + sizeof buffer, v, std::chars_format::general, 12);
    return QByteArray(buffer, r.ptr - buffer);
}

// A generator limit as the tables hold it: an unbounded one (infinite) as the stand-in.
double limit(double v)
{
    return std::isfinite(v) ? v : std::copysign(kUnboundedLimit, v);
}

// A name as a literal: escaped as the session reads literals, since names from files may
// hold anything.
QByteArray literal(QSqlDatabase* db, const QString& s)
{
    return "'" + SqlText(db, s.toLocal8Bit()) + "'";
}

// The network's own name, or the writer's: `prefix` and the number.
QString nameOr(const QString& given, const char* prefix, int k)
{
    return given.isEmpty() ? QString("%1%2").arg(QLatin1String(prefix)).arg(k) : given;
}

// One table's rows, in one bulk load of the library: the values as a statement would hold
// them (names as literal() gives them, numbers bare), each one field of the load.
class Rows
{
public:
    Rows(QSqlDatabase* db, const char* table, const char* fields)
        : m_load(db, table, fields), m_backslash(SqlText(db, "\\").size() == 2)
    {}
    void add(const QList<QByteArray>& values)
    {
        QByteArray row;
        for (const QByteArray& v : values) {
            row += m_fields("%s", v.startsWith('\'') ? unquoted(v) : v);
        }
        m_load.AddRow(row);
    }
    bool flush() { return m_fields.ok() && m_load.Load(); }

private:
    // A literal back as the name it holds: its doubled quotes, and its doubled backslashes
    // where the session escapes them, single again.
    QByteArray unquoted(const QByteArray& v) const
    {
        QByteArray out;
        for (qsizetype i = 1; i + 1 < v.size(); ++i) {
            if ((v[i] == '\'' || (v[i] == '\\' && m_backslash)) && v[i + 1] == v[i]) {
                ++i;
            }
            out += v[i];
        }
        return out;
    }
    BulkFields m_fields;
    CBulkLoad m_load;
    bool m_backslash; // the session reads a backslash as an escape
};

} // namespace

QString BranchName(const Branch& br, int k)
{
    const char* kind = br.r == 0 && br.x == 0 ? "Z"
                       : !br.transformer     ? "L"
                       : br.angleDeg == 0    ? "T"
                                             : "P";
    return nameOr(br.name, kind, k);
}

QString GeneratorName(const Gen& gen, int k)
{
    return nameOr(gen.name, "G", k);
}

bool WriteNetworkToBaseDb(QSqlDatabase* db, const Network& net, const QString& group,
                          const QString& scheme, QString& error,
                          const std::function<void(int done, int total)>& progress)
{
    const int elements = int(net.buses.size() + net.gens.size() + net.branches.size());
    int done = 0;
    auto tell = [&]() {
        if (progress && ++done % 1000 == 0) {
            progress(done, elements);
        }
    };
    QSqlQuery q(*db);
    auto exec = [&](const QString& sql) {
        if (!q.exec(sql)) {
            error = sql + ": " + q.lastError().text();
            return false;
        }
        return true;
    };
    const double sb = net.baseMVA;
    std::map<int, const Bus*> busOf;
    for (const Bus& b : net.buses) {
        busOf[b.num] = &b;
    }
    auto zb = [&](int bus) {
        const Bus* b = busOf.count(bus) ? busOf[bus] : nullptr;
        return b && b->baseKV > 0 ? b->baseKV * b->baseKV / sb : 0.0;
    };
    auto text = [db](const QString& s) { return literal(db, s); };
    const QByteArray grp = text(group);
    const QByteArray oldGrp = text(group + "_OLD");
    const QByteArray altGrp = text(group + "_ALT");
    // A named bus gives its name to its node too; its station is its own or S<k>.
    auto node = [&](int k) {
        return text(busOf.count(k) ? nameOr(busOf[k]->name, "N", k) : QString("N%1").arg(k));
    };
    auto station = [&](int k) {
        return text(busOf.count(k) ? nameOr(busOf[k]->station, "S", k) : QString("S%1").arg(k));
    };

    if (!exec("DELETE FROM CDB_SBBAK") ||
        !exec(QString("INSERT INTO CDB_SBBAK(Base_Mva) VALUES (%1)").arg(sb, 0, 'g', 12))) {
        return false;
    }
    std::map<int, int> zones; // one area per zone: the first bus of the zone tells it
    std::set<QByteArray> stationsMade; // a station once, in the zone of its first bus
    Rows buses(db, "CDB_BUSBAK", "Bus_Name,PS_Name,Zone_No,Base_kV,Vmax_kV,Vmin_kV,HasNode");
    Rows nodes(db, "CDB_NODEBAK", "Node_Name,Bus_Name,ISPhyBus,Base_kV,PS_Name");
    Rows stations(db, "CDB_PSTATIONBAK", "PS_Name,Zone_No");
    Rows loads(db, "CDB_LOADBAK",
               "GrpName,ID_Name,Valid,Node_Name,No_Load,Mode_Ctrl,Unit,Pl,Ql,V0,Angle,Qmax,Qmin,"
               "Pmax,Pmin");
    Rows shunts(db, "CDB_PCAPREABAK", "GrpName,ID_Name,Valid,Node_Name,ID_No,Unit,R1,X1");
    for (const Bus& b : net.buses) {
        tell();
        const QByteArray kv = num(b.baseKV);
        const bool named = b.baseKV > 0;
        const QByteArray valid = b.type == 4 ? "0" : "1"; // an isolated bus: all on it is out
        zones.emplace(b.zone, b.area);
        buses.add({text(BusName(b)), station(b.num), QByteArray::number(b.zone), kv,
                   num(b.vmax * b.baseKV), num(b.vmin * b.baseKV), "1"});
        nodes.add({node(b.num), text(BusName(b)), "1", kv, station(b.num)});
        if (stationsMade.insert(station(b.num)).second) {
            stations.add({station(b.num), QByteArray::number(b.zone)});
        }
        if (b.pdMW != 0 || b.qdMVAr != 0) {
            const double f = named ? 1.0 : 1.0 / sb; // MW, or per unit
            loads.add({grp, text(QString("D%1").arg(b.num)), valid, node(b.num), "1", "0",
                       named ? "0" : "1", num(b.pdMW * f), num(b.qdMVAr * f),
                       num(named ? b.baseKV : 1.0), "0", "0", "0", "0", "0"});
        }
        if (b.gsMW != 0 || b.bsMVAr != 0) {
            // The bank's admittance at 1.0 pu voltage, stored as its impedance.
            const std::complex<double> z = 1.0 / std::complex<double>(b.gsMW / sb, b.bsMVAr / sb);
            const double f = named ? zb(b.num) : 1.0;
            shunts.add({grp, text(QString("C%1").arg(b.num)), valid, node(b.num), "1",
                        named ? "0" : "1", num(z.real() * f), num(z.imag() * f)});
        }
    }
    Rows zoneRows(db, "CDB_ZONEBAK", "Area_No,Zone_No");
    for (const auto& [zone, area] : zones) {
        zoneRows.add({QByteArray::number(area), QByteArray::number(zone)});
    }
    Rows gens(db, "CDB_GENERATBAK",
              "GrpName,ID_Name,Valid,Node_Name,Mode_Ctrl,Unit,Pg,Qg,V0,Angle,Qmax,Qmin,Pmax,Pmin,"
              "Rate_MVA");
    Rows breakers(db, "CDB_BREAKERBAK", "GrpName,ID_Name,Valid,Lbreak,I_Name,J_Name,ID_No");
    Rows isolators(db, "CDB_ISOSWITCHBAK", "GrpName,ID_Name,Valid,Lbreak,I_Name,J_Name,ID_No");
    int g = 0;
    for (const Gen& gen : net.gens) {
        tell();
        const Bus* b = busOf.count(gen.bus) ? busOf[gen.bus] : nullptr;
        const bool named = b && b->baseKV > 0;
        const double f = named ? 1.0 : 1.0 / sb;
        const int mode = !b ? 0 : b->type == 3 ? 2 : b->type == 2 ? 1 : 0;
        ++g;
        // The generator's own node, on its bus, behind a breaker and a switch in parallel.
        const QByteArray own = text(QString("N%1G").arg(g));
        nodes.add({own, text(b ? BusName(*b) : QString("B%1").arg(gen.bus)), "0",
                   num(b ? b->baseKV : 0), station(gen.bus)});
        breakers.add({grp, text(QString("K%1").arg(g)), "1", "1", node(gen.bus), own, "1"});
        isolators.add({grp, text(QString("Q%1").arg(g)), "1", "1", node(gen.bus), own, "1"});
        const bool live = gen.status != 0 && !(b && b->type == 4);
        gens.add({grp, text(GeneratorName(gen, g)), live ? "1" : "0", own,
                  QByteArray::number(mode), named ? "0" : "1", num(gen.pgMW * f),
                  num(gen.qgMVAr * f), num(named ? gen.vg * b->baseKV : gen.vg),
                  num(b && b->type == 3 ? b->vaDeg : 0.0), num(limit(gen.qmax) * f),
                  num(limit(gen.qmin) * f), num(limit(gen.pmax) * f), num(limit(gen.pmin) * f),
                  num(gen.mBase)});
    }
    Rows lines(db, "CDB_ACLINEBAK",
               "GrpName,ID_Name,Valid,I_Name,J_Name,ID_No,I_Break,J_Break,Unit,R1,X1,B1_Half,"
               "Owner,Rate_Ka");
    Rows t2w(db, "CDB_TRANS_2WBAK",
             "GrpName,ID_Name,Valid,I_Name,J_Name,ID_No,Unit,R1,X1,Gm,Bm,Tk,Rate_MVA");
    Rows shift(db, "CDB_SHIFTBAK",
               "GrpName,ID_Name,Valid,I_Name,J_Name,ID_No,Unit,R1,X1,Gm,Bm,Tk,Ang_Shift,Rate_MVA");
    std::map<std::pair<int, int>, int> circuits; // parallel branches between two buses
    int k = 0;
    for (const Branch& br : net.branches) {
        tell();
        ++k;
        const double z = zb(br.from);
        const bool named = z > 0;
        const double f = named ? z : 1.0;
        const QByteArray circuit = QByteArray::number(
            ++circuits[{std::min(br.from, br.to), std::max(br.from, br.to)}]);
        const bool isolated = (busOf.count(br.from) && busOf[br.from]->type == 4) ||
                              (busOf.count(br.to) && busOf[br.to]->type == 4);
        const QByteArray status = br.status != 0 && !isolated ? "1" : "0";
        if (br.r == 0 && br.x == 0) {
            // A branch of zero impedance, a bus tie as real files have them, has no admittance
            // to put in a matrix. It stands as what it is in a base database, a closed breaker
            // between the two nodes, so that the topology joins both buses into one calculation
            // bus, exactly and without an invented impedance (its charging, ratio and shift,
            // if any, are left out; the reader says so).
            breakers.add({grp, text(BranchName(br, k)), status, "1", node(br.from),
                          node(br.to), circuit});
            continue;
        }
        if (!br.transformer) {
            // Even lines in named units where there is a base voltage, odd ones per unit.
            const bool inOhms = named && k % 2 == 0;
            const double g = inOhms ? z : 1.0;
            // A rating in kA needs the base voltage; without one the line stays unrated.
            const double kV = named ? busOf[br.from]->baseKV : 0.0;
            const double rateKA = named ? br.rateMVA / (std::sqrt(3.0) * kV) : 0.0;
            auto line = [&](const QByteArray& group, double rFactor) {
                lines.add({group, text(BranchName(br, k)), status,
                           node(br.from), node(br.to), circuit, "1", "1", inOhms ? "0" : "1",
                           num(br.r * g * rFactor), num(br.x * g),
                           num(inOhms ? br.b / 2 / z * 1e6 : br.b / 2), "1", num(rateKA)});
            };
            line(grp, 1.0);
            if (k % 10 == 0) {
                line(oldGrp, 2.0); // a lower level: overridden by the group's row
            }
            if (k % 5 == 0) {
                line(altGrp, 3.0); // a group outside the scheme
            }
            continue;
        }
        // A transformer's charging: the transformer tables keep one shunt admittance, Gm and
        // Bm on the base of the I end (microsiemens in named units), which the engine splits
        // half to each end; so the whole charging goes there, as a negative Bm (a positive
        // Bm draws reactive power, as a magnetising branch does). The three-winding table
        // has this place on its first winding only; the JSON form has no such transformers.
        const double bm = br.b == 0 ? 0.0 : named ? -br.b / z * 1e6 : -br.b;
        const QByteArray ratio = num(br.ratio == 0 ? 1.0 : br.ratio);
        if (br.angleDeg == 0) {
            t2w.add({grp, text(BranchName(br, k)), status, node(br.from),
                     node(br.to), circuit, named ? "0" : "1", num(br.r * f), num(br.x * f), "0",
                     num(bm), ratio, num(br.rateMVA)});
        } else {
            shift.add({grp, text(BranchName(br, k)), status,
                       node(br.from), node(br.to), circuit, named ? "0" : "1", num(br.r * f),
                       num(br.x * f), "0", num(bm), ratio, num(br.angleDeg), num(br.rateMVA)});
        }
    }
    for (Rows* r : {&buses, &nodes, &stations, &zoneRows, &loads, &shunts, &gens, &breakers,
                    &isolators, &lines, &t2w, &shift}) {
        if (!r->flush()) {
            error = "a batch of rows was refused";
            return false;
        }
    }
    // The group at level 2 overrides its older copies at level 1; the third group is not
    // part of the scheme.
    if (!exec("INSERT INTO CDB_DATAGROUPBAK(GrpName) VALUES (" + QString::fromLocal8Bit(grp) +
              "), (" + QString::fromLocal8Bit(oldGrp) + "), (" + QString::fromLocal8Bit(altGrp) +
              ")") ||
        !exec("INSERT INTO CDB_SCHEMEINFBAK(SchName) VALUES (" +
              QString::fromLocal8Bit(text(scheme)) + ")") ||
        !exec("INSERT INTO CDB_SCHEMECONTBAK(IDSch, GrpName, Nlever) VALUES (LAST_INSERT_ID(), " +
              QString::fromLocal8Bit(grp) + ", 2), (LAST_INSERT_ID(), " +
              QString::fromLocal8Bit(oldGrp) + ", 1)")) {
        return false;
    }
    return true;
}

} // namespace samples
