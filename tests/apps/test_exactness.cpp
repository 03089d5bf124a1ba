// The study's answer against a reference of the test's own: the bus admittance matrix
// built straight from a network file's per-unit data (read here with Qt's JSON classes,
// not through the sample reader, the base database or the records), solved with a plain
// dense Newton-Raphson. Every bus of the result tables must agree within 1e-6 pu and
// 1e-4 degrees, on the IEEE samples and on a small network with transformer charging, taps
// on either side, a phase shifter, parallel circuits, out-of-service branches and shunts.

#include "DbTest.h"
#include "SampleNetwork.h"
#include "Study.h"
#include "rtdb/rtdb.h"

#include <Eigen/Dense>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSqlQuery>
#include <array>
#include <cmath>
#include <complex>
#include <cstdio>
#include <map>

namespace {

using cd = std::complex<double>;
constexpr double kDeg = 3.14159265358979323846 / 180.0;

struct Reference
{
    std::map<int, double> vm, vaDeg;            // by bus number
    std::vector<std::array<double, 4>> flows;   // per branch: Pf, Qf, Pt, Qt in per unit
    std::vector<QString> branchNames;           // as the sample writer names them
    std::vector<double> transformerCharging;    // b of each transformer branch, in order
    std::vector<QString> transformerNames;
};

// MATPOWER's branch model: an ideal transformer tap·e^{j·shift} : 1 at the from end, then
// the series impedance with half the charging at each end.
Reference Solve(const QString& path)
{
    Reference ref;
    QFile f(path);
    EXPECT_TRUE(f.open(QIODevice::ReadOnly)) << path.toStdString();
    const QJsonObject o = QJsonDocument::fromJson(f.readAll()).object();
    const double base = o.value("baseMVA").toDouble(100);
    const QJsonArray buses = o.value("buses").toArray();
    const int n = buses.size();
    std::map<int, int> index;
    for (int i = 0; i < n; ++i) {
        index[buses[i].toObject().value("num").toInt()] = i;
    }
    Eigen::MatrixXcd Y = Eigen::MatrixXcd::Zero(n, n);
    Eigen::VectorXcd sSpec = Eigen::VectorXcd::Zero(n);
    Eigen::VectorXd vm = Eigen::VectorXd::Ones(n), va = Eigen::VectorXd::Zero(n);
    std::vector<int> type(n);
    for (int i = 0; i < n; ++i) {
        const QJsonObject b = buses[i].toObject();
        type[i] = b.value("type").toInt(1);
        Y(i, i) += cd(b.value("Gs_MW").toDouble(), b.value("Bs_MVAr").toDouble()) / base;
        sSpec[i] -= cd(b.value("Pd_MW").toDouble(), b.value("Qd_MVAr").toDouble()) / base;
        if (type[i] == 3) {
            va[i] = b.value("Va_deg").toDouble() * kDeg;
        }
    }
    for (const QJsonValue& v : o.value("gens").toArray()) {
        const QJsonObject g = v.toObject();
        if (g.value("status").toInt(1) == 0) {
            continue;
        }
        const int i = index.at(g.value("bus").toInt());
        sSpec[i] += cd(g.value("Pg_MW").toDouble(), g.value("Qg_MVAr").toDouble()) / base;
        if (type[i] != 1) {
            vm[i] = g.value("Vg_pu").toDouble(1.0);
        }
    }
    struct Port
    {
        int f, t;
        cd yff, yft, ytf, ytt;
        bool live;
    };
    std::vector<Port> ports;
    int k = 0;
    for (const QJsonValue& v : o.value("branches").toArray()) {
        const QJsonObject b = v.toObject();
        ++k;
        const double ratio = b.value("ratio").toDouble();
        const double shift = b.value("angle_deg").toDouble();
        const bool transformer = b.value("is_transformer").toBool() || ratio != 0;
        ref.branchNames.push_back(
            QString("%1%2").arg(!transformer ? "L" : shift == 0 ? "T" : "P").arg(k));
        if (transformer) {
            ref.transformerNames.push_back(ref.branchNames.back());
            ref.transformerCharging.push_back(b.value("b_pu").toDouble());
        }
        const cd ys = 1.0 / cd(b.value("r_pu").toDouble(), b.value("x_pu").toDouble());
        const cd ych(0, b.value("b_pu").toDouble() / 2);
        const double tap = ratio == 0 ? 1.0 : ratio;
        const cd t = std::polar(tap, shift * kDeg);
        Port p{index.at(b.value("from").toInt()), index.at(b.value("to").toInt()),
               (ys + ych) / (tap * tap), -ys / std::conj(t), -ys / t, ys + ych,
               b.value("status").toInt(1) != 0};
        if (p.live) {
            Y(p.f, p.f) += p.yff;
            Y(p.f, p.t) += p.yft;
            Y(p.t, p.f) += p.ytf;
            Y(p.t, p.t) += p.ytt;
        }
        ports.push_back(p);
    }

    // Unknowns: angles of PV and PQ buses, magnitudes of PQ buses.
    std::vector<int> pvpq, pq;
    for (int i = 0; i < n; ++i) {
        if (type[i] != 3) {
            pvpq.push_back(i);
        }
        if (type[i] == 1) {
            pq.push_back(i);
        }
    }
    const int na = int(pvpq.size()), nm = int(pq.size());
    Eigen::VectorXcd V(n);
    for (int it = 0; it < 20; ++it) {
        for (int i = 0; i < n; ++i) {
            V[i] = std::polar(vm[i], va[i]);
        }
        const Eigen::VectorXcd I = Y * V;
        const Eigen::VectorXcd mis = V.cwiseProduct(I.conjugate()) - sSpec;
        Eigen::VectorXd F(na + nm);
        for (int a = 0; a < na; ++a) {
            F[a] = mis[pvpq[a]].real();
        }
        for (int m = 0; m < nm; ++m) {
            F[na + m] = mis[pq[m]].imag();
        }
        if (F.cwiseAbs().maxCoeff() < 1e-12) {
            break;
        }
        // dS/dVa = j diag(V) conj(diag(I) - Y diag(V)); dS/dVm = diag(V) conj(Y diag(V/|V|))
        // + conj(diag(I)) diag(V/|V|).
        const Eigen::VectorXcd Vn = V.cwiseQuotient(V.cwiseAbs().cast<cd>());
        const Eigen::MatrixXcd dVa = cd(0, 1) * V.asDiagonal() *
                                     (Eigen::MatrixXcd(I.asDiagonal()) - Y * V.asDiagonal()).conjugate();
        const Eigen::MatrixXcd dVm = V.asDiagonal() * (Y * Vn.asDiagonal()).conjugate() +
                                     Eigen::MatrixXcd(I.conjugate().asDiagonal()) * Vn.asDiagonal();
        Eigen::MatrixXd J(na + nm, na + nm);
        for (int r = 0; r < na; ++r) {
            for (int c = 0; c < na; ++c) J(r, c) = dVa(pvpq[r], pvpq[c]).real();
            for (int c = 0; c < nm; ++c) J(r, na + c) = dVm(pvpq[r], pq[c]).real();
        }
        for (int r = 0; r < nm; ++r) {
            for (int c = 0; c < na; ++c) J(na + r, c) = dVa(pq[r], pvpq[c]).imag();
            for (int c = 0; c < nm; ++c) J(na + r, na + c) = dVm(pq[r], pq[c]).imag();
        }
        const Eigen::VectorXd dx = J.partialPivLu().solve(-F);
        for (int a = 0; a < na; ++a) {
            va[pvpq[a]] += dx[a];
        }
        for (int m = 0; m < nm; ++m) {
            vm[pq[m]] += dx[na + m];
        }
    }
    for (int i = 0; i < n; ++i) {
        V[i] = std::polar(vm[i], va[i]);
        const int num = buses[i].toObject().value("num").toInt();
        ref.vm[num] = vm[i];
        ref.vaDeg[num] = va[i] / kDeg;
    }
    for (const Port& p : ports) {
        const cd sf = p.live ? V[p.f] * std::conj(p.yff * V[p.f] + p.yft * V[p.t]) : 0.0;
        const cd st = p.live ? V[p.t] * std::conj(p.ytf * V[p.f] + p.ytt * V[p.t]) : 0.0;
        ref.flows.push_back({sf.real(), sf.imag(), st.real(), st.imag()});
    }
    return ref;
}

} // namespace

class Exactness : public testsupport::DbTest
{
protected:
    // Runs the study on the network file in a database of its own and compares.
    void Check(const QString& file)
    {
        SCOPED_TRACE(file.toStdString());
        const QString path = QStringLiteral(CALCDATA_SAMPLES_DIR "/") + file;
        const Reference ref = Solve(path);
        samples::Network net;
        QString error;
        ASSERT_TRUE(samples::ReadNetworkJson(path, net, error)) << error.toStdString();
        dbserver::ScratchDatabase scratch(QStringLiteral("t_exact"));
        ASSERT_TRUE(scratch.ok()) << scratch.error().toStdString();
        dbDatabase rtdb;
        ASSERT_TRUE(rtdb.open("exactness"));
        demo::Study study(scratch.db(), &rtdb);
        ASSERT_TRUE(study.LoadNetwork(net) && study.Extract() && study.BuildAndImport() &&
                    study.Solve() && study.StoreResults())
            << study.error().toStdString();
        rtdb.close();

        // Each transformer's charging reached the job table whole, as -Bm in per unit.
        for (std::size_t t = 0; t < ref.transformerNames.size(); ++t) {
            QSqlQuery q(*scratch.db());
            ASSERT_TRUE(q.exec(QString("SELECT Gm, Bm FROM L3_0 WHERE ID_Name='%1'")
                                   .arg(ref.transformerNames[t])) &&
                        q.next())
                << ref.transformerNames[t].toStdString();
            EXPECT_NEAR(q.value(0).toDouble(), 0.0, 1e-12);
            EXPECT_NEAR(q.value(1).toDouble(), -ref.transformerCharging[t], 1e-9)
                << ref.transformerNames[t].toStdString();
        }

        QSqlQuery q(*scratch.db());
        ASSERT_TRUE(q.exec("SELECT Bus_Name, V, Angle FROM LFR_BS_R WHERE Case_No=0"));
        double worstV = 0, worstA = 0;
        std::size_t buses = 0;
        while (q.next()) {
            const int num = q.value(0).toString().mid(1).toInt();
            ASSERT_EQ(ref.vm.count(num), 1u) << q.value(0).toString().toStdString();
            worstV = std::max(worstV, std::abs(q.value(1).toDouble() - ref.vm.at(num)));
            worstA = std::max(worstA, std::abs(q.value(2).toDouble() - ref.vaDeg.at(num)));
            ++buses;
        }
        EXPECT_EQ(buses, ref.vm.size());
        EXPECT_LT(worstV, 1e-6);
        EXPECT_LT(worstA, 1e-4);

        // The end flows of every branch, out-of-service ones at zero.
        double worstFlow = 0;
        std::size_t branches = 0;
        ASSERT_TRUE(q.exec("SELECT ID_Name, Pi, Qi, Pj, Qj FROM LFR_ACLINE_R WHERE Case_No=0 "
                           "UNION ALL SELECT ID_Name, Pi, Qi, Pj, Qj FROM LFR_T2W_R WHERE "
                           "Case_No=0 UNION ALL SELECT ID_Name, Pi, Qi, Pj, Qj FROM "
                           "LFR_SHIFT_R WHERE Case_No=0"));
        while (q.next()) {
            const QString name = q.value(0).toString();
            const std::size_t k = name.mid(1).toUInt() - 1;
            ASSERT_LT(k, ref.branchNames.size());
            EXPECT_EQ(ref.branchNames[k], name);
            for (int c = 0; c < 4; ++c) {
                worstFlow = std::max(worstFlow, std::abs(q.value(1 + c).toDouble() - ref.flows[k][c]));
            }
            ++branches;
        }
        EXPECT_EQ(branches, ref.flows.size());
        EXPECT_LT(worstFlow, 1e-5);
        std::printf("[ exactness ] %s: %zu buses, largest |dV| %.2e pu, |dAngle| %.2e deg; "
                    "%zu branches, largest flow difference %.2e pu\n",
                    qPrintable(file), buses, worstV, worstA, branches, worstFlow);
    }
};

TEST_F(Exactness, EveryBusAgreesWithAPlainNewtonRaphsonOnTheFileData)
{
    Check("ieee14.json");
    Check("ieee30.json");
    Check("features.json");
}
