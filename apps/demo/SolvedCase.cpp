#include "SolvedCase.h"

#include "SampleNetwork.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <cmath>
#include <map>
#include <numeric>
#include <vector>

namespace demo {

bool PutSolution(QSqlDatabase* db, int job, samples::Network& net, QString& error)
{
    QSqlQuery q(*db);
    q.setForwardOnly(true);
    const double sb = net.baseMVA;
    std::map<QString, std::pair<double, double>> voltage; // calculation bus name -> V, angle
    if (!q.exec(QStringLiteral("SELECT Bus_Name, V, Angle FROM LFR_BS_R WHERE Case_No=%1")
                    .arg(job))) {
        error = "cannot read LFR_BS_R: " + q.lastError().text();
        return false;
    }
    while (q.next()) {
        voltage[q.value(0).toString()] = {q.value(1).toDouble(), q.value(2).toDouble()};
    }
    std::map<QString, std::pair<double, double>> output; // generator -> Pg, Qg in per unit
    if (!q.exec(QStringLiteral("SELECT ID_Name, Pg, Qg FROM LFR_GEN_R WHERE Case_No=%1").arg(job))) {
        error = "cannot read LFR_GEN_R: " + q.lastError().text();
        return false;
    }
    while (q.next()) {
        output[q.value(0).toString()] = {q.value(1).toDouble(), q.value(2).toDouble()};
    }

    // Buses tied by zero impedance, as the base database's closed breakers join them: the
    // calculation bus carries the name of one of them.
    std::map<int, std::size_t> index;
    for (std::size_t i = 0; i < net.buses.size(); ++i) {
        index[net.buses[i].num] = i;
    }
    std::vector<std::size_t> group(net.buses.size());
    std::iota(group.begin(), group.end(), std::size_t(0));
    auto find = [&](std::size_t i) {
        while (group[i] != i) {
            i = group[i] = group[group[i]];
        }
        return i;
    };
    for (const samples::Branch& br : net.branches) {
        const std::size_t f = index.at(br.from), t = index.at(br.to);
        if (br.r == 0 && br.x == 0 && br.status != 0 && net.buses[f].type != 4 &&
            net.buses[t].type != 4) {
            group[find(f)] = find(t);
        }
    }
    std::map<std::size_t, std::pair<double, double>> groupVoltage;
    for (std::size_t i = 0; i < net.buses.size(); ++i) {
        const auto it = voltage.find(samples::BusName(net.buses[i]));
        if (it != voltage.end()) {
            groupVoltage[find(i)] = it->second;
        }
    }
    for (std::size_t i = 0; i < net.buses.size(); ++i) {
        samples::Bus& b = net.buses[i];
        const auto it = groupVoltage.find(find(i));
        if (it == groupVoltage.end()) {
            if (b.type == 4) {
                continue;
            }
            error = QStringLiteral("bus %1 has no solution in LFR_BS_R").arg(samples::BusName(b));
            return false;
        }
        if (it->second.first > 0) { // a bus without voltage keeps what it had
            b.vm = it->second.first;
            b.vaDeg = it->second.second;
        }
    }
    for (std::size_t g = 0; g < net.gens.size(); ++g) {
        samples::Gen& gen = net.gens[g];
        const auto it =
            output.find(gen.name.isEmpty() ? QStringLiteral("G%1").arg(g + 1) : gen.name);
        if (it != output.end() && gen.status != 0 && net.buses[index.at(gen.bus)].type != 4) {
            // The tables keep nine decimals of a per-unit value: seven of a megawatt here.
            gen.pgMW = std::round(it->second.first * sb * 1e7) / 1e7;
            gen.qgMVAr = std::round(it->second.second * sb * 1e7) / 1e7;
        }
    }
    return true;
}

} // namespace demo
