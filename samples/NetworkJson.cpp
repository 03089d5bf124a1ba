#include "SampleNetwork.h"

#include "common/GbkWidth.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <algorithm>

namespace samples {

namespace {

// The name `key` of the element `what` of a file, checked against its column (CHAR(20) of
// the base tables, as the design counted it) and, with `seen`, against the names before.
bool readName(const QJsonObject& o, const char* key, const QString& what, QSet<QString>* seen,
              QString& name, QString& error)
{
    name = o.value(QLatin1String(key)).toString();
    if (GbkWidth(name) > kNameBytes) {
        error = QStringLiteral("%1: the %2 '%3' is %4 bytes wide as the base tables count it (a "
                               "Chinese character 2), more than the %5 its column holds")
                    .arg(what, QLatin1String(key), name)
                    .arg(GbkWidth(name))
                    .arg(kNameBytes);
        return false;
    }
    if (seen && !name.isEmpty() && seen->contains(name)) {
        error = QStringLiteral("%1: the %2 '%3' is given twice").arg(what, QLatin1String(key), name);
        return false;
    }
    if (seen) {
        seen->insert(name);
    }
    return true;
}

} // namespace

bool ReadNetworkJson(const QString& path, Network& net, QString& error)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        error = "cannot open " + path + ": " + f.errorString();
        return false;
    }
    QJsonParseError pe;
    const QJsonDocument doc = QJsonDocument::fromJson(f.readAll(), &pe);
    if (doc.isNull() || !doc.isObject()) {
        error = path + " is not a network file: " + pe.errorString();
        return false;
    }
    const QJsonObject o = doc.object();
    if (!o.contains("buses") || !o.contains("branches")) {
        error = path + " has no buses or no branches";
        return false;
    }
    net = Network();
    net.name = QFileInfo(path).baseName();
    net.baseMVA = o.value("baseMVA").toDouble(100);
    QSet<QString> busNames, genNames, branchNames;
    for (const QJsonValue& v : o.value("buses").toArray()) {
        const QJsonObject b = v.toObject();
        Bus bus;
        bus.num = b.value("num").toInt();
        bus.type = b.value("type").toInt(1);
        bus.pdMW = b.value("Pd_MW").toDouble();
        bus.qdMVAr = b.value("Qd_MVAr").toDouble();
        bus.gsMW = b.value("Gs_MW").toDouble();
        bus.bsMVAr = b.value("Bs_MVAr").toDouble();
        bus.baseKV = b.value("baseKV").toDouble();
        bus.vm = b.value("Vm_pu").toDouble(1.0);
        bus.vaDeg = b.value("Va_deg").toDouble();
        bus.zone = b.value("zone").toInt(1);
        bus.area = b.value("area").toInt(1);
        bus.vmax = b.value("Vmax_pu").toDouble(1.1);
        bus.vmin = b.value("Vmin_pu").toDouble(0.9);
        const QString what = QStringLiteral("%1, bus %2").arg(path).arg(bus.num);
        if (!readName(b, "name", what, &busNames, bus.name, error) ||
            !readName(b, "station", what, nullptr, bus.station, error)) {
            return false;
        }
        net.buses.push_back(bus);
    }
    for (const QJsonValue& v : o.value("gens").toArray()) {
        const QJsonObject g = v.toObject();
        Gen gen;
        gen.bus = g.value("bus").toInt();
        gen.pgMW = g.value("Pg_MW").toDouble();
        gen.qgMVAr = g.value("Qg_MVAr").toDouble();
        gen.qmax = g.value("Qmax").toDouble();
        gen.qmin = g.value("Qmin").toDouble();
        gen.vg = g.value("Vg_pu").toDouble(1.0);
        gen.pmax = g.value("Pmax").toDouble();
        gen.pmin = g.value("Pmin").toDouble();
        gen.status = g.value("status").toInt(1);
        const QString what = QStringLiteral("%1, generator %2").arg(path).arg(net.gens.size() + 1);
        if (!readName(g, "name", what, &genNames, gen.name, error)) {
            return false;
        }
        net.gens.push_back(gen);
    }
    for (const QJsonValue& v : o.value("branches").toArray()) {
        const QJsonObject b = v.toObject();
        Branch br;
        br.from = b.value("from").toInt();
        br.to = b.value("to").toInt();
        br.r = b.value("r_pu").toDouble();
        br.x = b.value("x_pu").toDouble();
        br.b = b.value("b_pu").toDouble();
        br.ratio = b.value("ratio").toDouble();
        br.angleDeg = b.value("angle_deg").toDouble();
        br.rateMVA = b.value("rateA").toDouble();
        br.status = b.value("status").toInt(1);
        br.transformer = b.value("is_transformer").toBool() || br.ratio != 0;
        const QString what =
            QStringLiteral("%1, branch %2").arg(path).arg(net.branches.size() + 1);
        if (!readName(b, "name", what, &branchNames, br.name, error)) {
            return false;
        }
        net.branches.push_back(br);
    }
    return true;
}

Network MakeSyntheticNetwork(int nodes, unsigned seed)
{
    Network net;
    net.name = QString("synthetic%1").arg(nodes);
    net.baseMVA = 100;
    if (nodes < 3) {
        nodes = 3;
    }
    unsigned state = seed * 2654435761u + 1;
    auto rnd = [&]() { // a small deterministic generator, in [0, 1)
        state = state * 1664525u + 1013904223u;
        return (state >> 8) / double(1u << 24);
    };
    auto hasGen = [](int k) { return k % 10 == 1 || k % 10 == 4 || k % 10 == 7; };
    for (int k = 1; k <= nodes; ++k) {
        Bus b;
        b.num = k;
        b.baseKV = 220;
        b.zone = 1 + (k - 1) / 1000;
        b.vmax = 1.1;
        b.vmin = 0.9;
        if (k % 2 == 0) {
            b.pdMW = 10 + 20 * rnd();
            b.qdMVAr = 2 + 6 * rnd();
        }
        if (k % 50 == 0) {
            b.bsMVAr = 5; // a capacitor bank
        }
        net.buses.push_back(b);
    }
    double load = 0;
    for (const Bus& b : net.buses) {
        load += b.pdMW;
    }
    int gens = 0;
    for (int k = 1; k <= nodes; ++k) {
        gens += hasGen(k) ? 1 : 0;
    }
    // Each block of ten buses generates its own load, so no power travels far: in a grid as
    // long as a ring of 100,000 buses the angles stay within a few degrees.
    for (int k = 1; k <= nodes; ++k) {
        if (!hasGen(k)) {
            continue;
        }
        const int first = (k - 1) / 10 * 10 + 1, last = std::min(first + 9, nodes);
        double blockLoad = 0;
        int blockGens = 0;
        for (int j = first; j <= last; ++j) {
            blockLoad += net.buses[j - 1].pdMW;
            blockGens += hasGen(j) ? 1 : 0;
        }
        Gen gen;
        gen.bus = k;
        gen.pgMW = blockLoad / blockGens;
        gen.vg = 1.02;
        gen.qmax = 300;
        gen.qmin = -100;
        gen.pmax = 2 * load / gens;
        net.buses[k - 1].type = net.gens.empty() ? 3 : 2;
        net.gens.push_back(gen);
    }
    // A ring (every fifth link a transformer), cross ties every other bus, and long ties from
    // every s-th bus that join the ring's stretches in a binary tree rooted at the slack bus,
    // so that no bus is electrically far from it.
    for (int k = 1; k <= nodes; ++k) {
        Branch br;
        br.from = k;
        br.to = k % nodes + 1;
        br.r = 0.002 + 0.002 * rnd();
        br.x = 0.01 + 0.01 * rnd();
        br.b = 0.02;
        if (k % 5 == 0) {
            br.transformer = true;
            br.ratio = 1.0;
            br.b = 0;
        }
        net.branches.push_back(br);
    }
    for (int k = 1; k + 7 <= nodes; k += 2) {
        Branch br;
        br.from = k;
        br.to = k + 7;
        br.r = 0.004;
        br.x = 0.02;
        br.b = 0.03;
        net.branches.push_back(br);
    }
    const int s = std::max(10, std::min(500, nodes / 20));
    for (int j = 1; 1 + s * j <= nodes; ++j) {
        Branch br;
        br.from = 1 + s * ((j - 1) / 2);
        br.to = 1 + s * j;
        br.r = 0.003;
        br.x = 0.015;
        br.b = 0.02;
        net.branches.push_back(br);
    }
    return net;
}

} // namespace samples
