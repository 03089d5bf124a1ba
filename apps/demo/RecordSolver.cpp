#include "RecordSolver.h"

#include "PowerFlow.h"
#include "records/NetworkRecords.h"
#include "records/RecordFlags.h"

#include <cmath>
#include <map>
#include <vector>

using namespace dtsdb;

namespace demo {

SolveSummary SolveOnRecords(dbDatabase* rtdb, const PfIterationHook& onIteration)
{
    SolveSummary out;
    std::map<int, int> busIndex; // bs id -> solver bus
    {
        dbCursor<bs> c;
        if (c.select() > 0) {
            do {
                const int k = static_cast<int>(busIndex.size());
                busIndex[c->id] = k;
            } while (c.next());
        }
    }
    std::vector<PfBus> buses(busIndex.size());
    auto at = [&](int ibs) -> PfBus* {
        auto it = busIndex.find(ibs);
        return it == busIndex.end() ? nullptr : &buses[it->second];
    };

    // Generators: scheduled outputs and bus types. Of several generators that hold a bus's
    // voltage, the first in service sets it, as MATPOWER has it; a slack generator's set
    // point goes before a PV one's.
    {
        std::vector<int> holder(buses.size(), 0); // 0 none, 1 PV, 2 slack
        dbCursor<un> c;
        if (c.select() > 0) {
            do {
                PfBus* b = at(c->ibs);
                if (!b || (c->q & UN_OUTSERVICE)) {
                    continue;
                }
                b->pGen += c->Pg;
                b->qGen += c->Qg;
                int& held = holder[std::size_t(b - buses.data())];
                if (c->Mode_Ctrl == 2 && held < 2) {
                    b->type = BusType::Slack;
                    b->vSet = c->V0;
                    b->angleSetDeg = c->Angle;
                    held = 2;
                } else if (c->Mode_Ctrl == 1 && held == 0) {
                    b->type = BusType::PV;
                    b->vSet = c->V0;
                    held = 1;
                }
            } while (c.next());
        }
    }
    {
        dbCursor<ld> c;
        if (c.select() > 0) {
            do {
                PfBus* b = at(c->ibs);
                if (b && !(c->q & LD_OUTSERVICE)) {
                    b->pLoad += c->Pl;
                    b->qLoad += c->Ql;
                }
            } while (c.next());
        }
    }
    // Shunts: G + jB = 1 / (R1 + jX1).
    {
        dbCursor<cp> c;
        if (c.select() > 0) {
            do {
                PfBus* b = at(c->ibs);
                const double d = double(c->R1) * c->R1 + double(c->X1) * c->X1;
                if (b && !(c->q & CP_OUTSERVICE) && d > 0) {
                    b->gShunt += c->R1 / d;
                    b->bShunt += -c->X1 / d;
                }
            } while (c.next());
        }
    }
    // Branches: lines with both ends closed, and transformers.
    std::vector<PfBranch> branches;
    {
        dbCursor<ln> c;
        if (c.select() > 0) {
            do {
                PfBranch br;
                br.from = busIndex.count(c->ibs) ? busIndex[c->ibs] : -1;
                br.to = busIndex.count(c->zbs) ? busIndex[c->zbs] : -1;
                br.r = c->R1;
                br.x = c->X1;
                br.bTotal = 2.0 * c->B1_Half;
                br.inService = !(c->q & (LN_OUTSERVICE | LN_IOPEN | LN_JOPEN)) && br.from >= 0 &&
                               br.to >= 0 && br.from != br.to;
                if (!br.inService) {
                    br.from = br.to = 0;
                }
                branches.push_back(br);
            } while (c.next());
        }
    }
    const std::size_t firstTransformer = branches.size();
    {
        dbCursor<xf> c;
        if (c.select() > 0) {
            do {
                PfBranch br;
                br.from = busIndex.count(c->ibs) ? busIndex[c->ibs] : -1;
                br.to = busIndex.count(c->zbs) ? busIndex[c->zbs] : -1;
                br.r = c->R1;
                br.x = c->X1;
                br.tap = c->Tk;
                br.shiftDeg = c->Ang_Shift;
                // The magnetising branch as the import leaves it, Rm + jXm from Gm and Bm:
                // its admittance 1 / (Rm + jXm) is Gm - jBm, split half to each end.
                const double dm = double(c->Rm) * c->Rm + double(c->Xm) * c->Xm;
                if (dm > 0) {
                    br.gTotal = c->Rm / dm;
                    br.bTotal = -c->Xm / dm;
                }
                br.inService =
                    !(c->q & XF_OUTSERVICE) && br.from >= 0 && br.to >= 0 && br.from != br.to;
                if (!br.inService) {
                    br.from = br.to = 0;
                }
                branches.push_back(br);
            } while (c.next());
        }
    }

    const PfResult res = SolvePowerFlow(buses, branches, 1e-9, 30, onIteration);
    out.converged = res.converged;
    out.iterations = res.iterations;
    out.maxMismatch = res.maxMismatch;
    out.buses = static_cast<int>(buses.size());
    out.branches = static_cast<int>(branches.size());
    for (bool e : res.energised) {
        out.deadBuses += e ? 0 : 1;
    }
    auto vOf = [&](int ibs) {
        auto it = busIndex.find(ibs);
        return it == busIndex.end() ? 0.0 : res.v[it->second];
    };

    // The answer, into the records.
    {
        dbCursor<bs> c(dbCursorForUpdate);
        if (c.select() > 0) {
            do {
                const int k = busIndex[c->id];
                c->V = res.v[k];
                c->Angle = res.angleDeg[k];
                c.update();
            } while (c.next());
        }
    }
    {
        dbCursor<bus> c(dbCursorForUpdate);
        if (c.select() > 0) {
            do {
                auto it = busIndex.find(c->ibs);
                if (it != busIndex.end()) {
                    c->V = res.v[it->second];
                    c->Angle = res.angleDeg[it->second];
                    c.update();
                }
            } while (c.next());
        }
    }
    std::size_t n = 0;
    {
        dbCursor<ln> c(dbCursorForUpdate);
        if (c.select() > 0) {
            do {
                const PfFlow& f = res.flows[n++];
                c->Pi = static_cast<float>(f.pFrom);
                c->Qi = static_cast<float>(f.qFrom);
                c->Pj = static_cast<float>(f.pTo);
                c->Qj = static_cast<float>(f.qTo);
                const double vi = vOf(c->ibs), vj = vOf(c->zbs);
                c->Qci = static_cast<float>(c->B1_Half * vi * vi);
                c->Qcj = static_cast<float>(c->B1_Half * vj * vj);
                c.update();
            } while (c.next());
        }
    }
    n = firstTransformer;
    {
        dbCursor<xf> c(dbCursorForUpdate);
        if (c.select() > 0) {
            do {
                const PfBranch& b = branches[n];
                const PfFlow& f = res.flows[n++];
                c->Pi = static_cast<float>(f.pFrom);
                c->Qi = static_cast<float>(f.qFrom);
                c->Pj = static_cast<float>(f.pTo);
                c->Qj = static_cast<float>(f.qTo);
                // What the magnetising halves take: at the I end behind the tap, at the J end.
                const double tap = b.tap == 0 ? 1.0 : b.tap;
                const double vi = vOf(c->ibs) / tap, vj = vOf(c->zbs);
                const double v2 = b.inService ? (vi * vi + vj * vj) / 2 : 0.0;
                c->Pm = static_cast<float>(b.gTotal * v2);
                c->Qm = static_cast<float>(-b.bTotal * v2);
                c.update();
            } while (c.next());
        }
    }
    {
        dbCursor<cp> c(dbCursorForUpdate);
        if (c.select() > 0) {
            do {
                const double v = vOf(c->ibs);
                const double d = double(c->R1) * c->R1 + double(c->X1) * c->X1;
                const bool live = !(c->q & CP_OUTSERVICE) && d > 0;
                c->Pi = live ? static_cast<float>(c->R1 / d * v * v) : 0.0f;
                c->Qi = live ? static_cast<float>(c->X1 / d * v * v) : 0.0f;
                c.update();
            } while (c.next());
        }
    }
    // Generators: the solved generation of a bus goes to its first generator, less what
    // the others at the bus were scheduled to give.
    {
        std::map<int, std::pair<double, double>> others;
        std::map<int, bool> seen;
        dbCursor<un> c(dbCursorForUpdate);
        if (c.select() > 0) {
            do {
                if (!(c->q & UN_OUTSERVICE) && seen[c->ibs]) {
                    others[c->ibs].first += c->Pg;
                    others[c->ibs].second += c->Qg;
                }
                seen[c->ibs] = true;
            } while (c.next());
            seen.clear();
            c.gotoFirst();
            c.fetch();
            do {
                auto it = busIndex.find(c->ibs);
                if (it == busIndex.end() || (c->q & UN_OUTSERVICE) || seen[c->ibs]) {
                    continue;
                }
                seen[c->ibs] = true;
                const PfBus& b = buses[it->second];
                const double pg = res.pInj[it->second] + b.pLoad - others[c->ibs].first;
                const double qg = res.qInj[it->second] + b.qLoad - others[c->ibs].second;
                c->Pg = static_cast<float>(pg);
                c->Qg = static_cast<float>(qg);
                c.update();
            } while (c.next());
        }
    }
    rtdb->commit();
    return out;
}

} // namespace demo
