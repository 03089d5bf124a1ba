#include "ResultFiles.h"

#include <QDir>
#include <QSaveFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <algorithm>
#include <cmath>

namespace demo {
namespace {

// A text field, quoted when it holds a separator, a quote or a line break.
QByteArray field(const QVariant& v)
{
    QByteArray s = v.toString().toUtf8();
    if (s.contains(',') || s.contains('"') || s.contains('\n') || s.contains('\r')) {
        s.replace("\"", "\"\"");
        s = "\"" + s + "\"";
    }
    return s;
}

QByteArray number(double v, int decimals)
{
    return QByteArray::number(v, 'f', decimals);
}

// One file: the header, then a line per row of `sql` made by `line`, written whole or not
// at all.
class CsvFile
{
public:
    CsvFile(QSqlDatabase* db, const QString& dir, QString& error,
            const std::function<void()>& onRow)
        : m_db(db), m_dir(dir), m_error(error), m_onRow(onRow)
    {}

    template <class Line>
    bool write(const char* name, const char* header, const QString& sql, Line line)
    {
        QSqlQuery q(*m_db);
        q.setForwardOnly(true);
        if (!q.exec(sql)) {
            m_error = QStringLiteral("cannot read the results for %1: %2")
                          .arg(QLatin1String(name), q.lastError().text());
            return false;
        }
        const QString path = QDir(m_dir).filePath(QLatin1String(name));
        QSaveFile file(path);
        if (!file.open(QIODevice::WriteOnly)) {
            m_error = QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
            return false;
        }
        QByteArray text = QByteArray(header) + "\n";
        while (q.next()) {
            text += line(q) + "\n";
            m_onRow();
        }
        if (file.write(text) != text.size() || !file.commit()) {
            m_error = QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
            return false;
        }
        return true;
    }

private:
    QSqlDatabase* m_db;
    QString m_dir;
    QString& m_error;
    std::function<void()> m_onRow;
};

} // namespace

QString BranchFlowStatement(int job, double baseMva)
{
    const QString c = QString::number(job), sb = QString::number(baseMva, 'g', 17);
    // A line's current at an end is |S| / (sqrt(3) V), with V in kV from the base voltage of
    // its node in the job's node table, looked up only for a rated line (the look-ups are
    // most of the statement's time on a large network).
    const QString lineFamily = QStringLiteral(
        "SELECT a.ID_Name AS name, '%1' AS kind, a.I_Name AS from_node, a.J_Name AS to_node, "
        "a.ID_No AS circuit, a.Pi*%6 AS P_from, a.Qi*%6 AS Q_from, a.Pj*%6 AS P_to, a.Qj*%6 AS "
        "Q_to, GREATEST(SQRT(a.Pi*a.Pi+a.Qi*a.Qi), SQRT(a.Pj*a.Pj+a.Qj*a.Qj))*%6 AS mva, CASE "
        "WHEN %2>0 AND a.Vi*bi.Base_kV>0 AND a.Vj*bj.Base_kV>0 THEN 100*%6*GREATEST("
        "SQRT(a.Pi*a.Pi+a.Qi*a.Qi)/(a.Vi*bi.Base_kV), SQRT(a.Pj*a.Pj+a.Qj*a.Qj)/(a.Vj*bj.Base_kV))"
        "/SQRT(3)/%2 END AS loading, %3 AS family FROM %4 a LEFT JOIN L1_%5 bi ON %2>0 AND "
        "bi.Node_Name=a.I_Name LEFT JOIN L1_%5 bj ON %2>0 AND bj.Node_Name=a.J_Name WHERE "
        "a.Case_No=%5");
    const QString transformerFamily = QStringLiteral(
        "SELECT ID_Name, '%1', I_Name, J_Name, ID_No, Pi*%5, Qi*%5, Pj*%5, Qj*%5, "
        "GREATEST(SQRT(Pi*Pi+Qi*Qi), SQRT(Pj*Pj+Qj*Qj))*%5, CASE WHEN Rate_MVA>0 THEN "
        "100*%5*GREATEST(SQRT(Pi*Pi+Qi*Qi), SQRT(Pj*Pj+Qj*Qj))/Rate_MVA END, %2 FROM %3 WHERE "
        "Case_No=%4");
    return lineFamily.arg(QStringLiteral("line"), QStringLiteral("a.Rate_kA"),
                          QStringLiteral("1"), QStringLiteral("LFR_ACLINE_R"), c, sb) +
           QStringLiteral(" UNION ALL ") +
           lineFamily.arg(QStringLiteral("series"), QStringLiteral("0"), QStringLiteral("2"),
                          QStringLiteral("LFR_SCR_R"), c, sb) +
           QStringLiteral(" UNION ALL ") +
           transformerFamily.arg(QStringLiteral("transformer"), QStringLiteral("3"),
                                 QStringLiteral("LFR_T2W_R"), c, sb) +
           QStringLiteral(" UNION ALL ") +
           transformerFamily.arg(QStringLiteral("phase shifter"), QStringLiteral("4"),
                                 QStringLiteral("LFR_SHIFT_R"), c, sb);
}

bool WriteResultCsv(QSqlDatabase* db, int job, double baseMva, const QString& dir,
                    QString& error, const std::function<void(long long, long long)>& progress)
{
    const QString c = QString::number(job);
    const double sb = baseMva;
    long long total = 0, done = 0;
    if (progress) {
        QSqlQuery q(*db);
        if (q.exec(QStringLiteral("SELECT (SELECT COUNT(*) FROM LFR_BS_R WHERE Case_No=%1) + "
                                  "(SELECT COUNT(*) FROM LFR_ACLINE_R WHERE Case_No=%1) + "
                                  "(SELECT COUNT(*) FROM LFR_SCR_R WHERE Case_No=%1) + "
                                  "(SELECT COUNT(*) FROM LFR_T2W_R WHERE Case_No=%1) + "
                                  "(SELECT COUNT(*) FROM LFR_SHIFT_R WHERE Case_No=%1) + "
                                  "(SELECT COUNT(*) FROM LFR_GEN_R WHERE Case_No=%1) + "
                                  "(SELECT COUNT(*) FROM LFR_BREAKER_R WHERE Case_No=%1)")
                       .arg(c)) &&
            q.next()) {
            total = q.value(0).toLongLong();
        }
    }
    CsvFile csv(db, dir, error, [&] {
        if (progress && ++done % 10000 == 0) {
            progress(done, total);
        }
    });

    const bool buses = csv.write(
        "buses.csv", "bus,V_pu,V_kV,angle_deg",
        QStringLiteral("SELECT Bus_Name, V, Base_kV, Angle FROM LFR_BS_R WHERE Case_No=%1 "
                       "ORDER BY ibs")
            .arg(c),
        [](const QSqlQuery& q) {
            const double v = q.value(1).toDouble(), kV = q.value(2).toDouble();
            return field(q.value(0)) + "," + number(v, 6) + "," +
                   (kV > 0 ? number(v * kV, 4) : QByteArray()) + "," +
                   number(q.value(3).toDouble(), 4);
        });

    // Names sort as numbers do (L2 before L10) by their length first.
    const bool branches = buses && csv.write(
        "branches.csv",
        "branch,kind,from_node,to_node,circuit,P_from_MW,Q_from_Mvar,P_to_MW,Q_to_Mvar,"
        "loading_pct",
        BranchFlowStatement(job, baseMva) + QStringLiteral(" ORDER BY family, LENGTH(name), name"),
        [](const QSqlQuery& q) {
            QByteArray line;
            for (int k = 0; k < 5; ++k) {
                line += field(q.value(k)) + ",";
            }
            for (int k = 5; k < 9; ++k) {
                line += number(q.value(k).toDouble(), 4) + ",";
            }
            return line + (q.isNull(10) ? QByteArray() : number(q.value(10).toDouble(), 2));
        });

    const bool generators = branches && csv.write(
        "generators.csv", "generator,node,P_MW,Q_Mvar,V_pu,angle_deg",
        QStringLiteral("SELECT ID_Name, Bus_Name, Pg, Qg, V, Angle FROM LFR_GEN_R WHERE "
                       "Case_No=%1 ORDER BY LENGTH(ID_Name), ID_Name")
            .arg(c),
        [sb](const QSqlQuery& q) {
            return field(q.value(0)) + "," + field(q.value(1)) + "," +
                   number(q.value(2).toDouble() * sb, 4) + "," +
                   number(q.value(3).toDouble() * sb, 4) + "," +
                   number(q.value(4).toDouble(), 6) + "," + number(q.value(5).toDouble(), 4);
        });

    return generators && csv.write(
        "switches.csv", "switch,from_node,to_node,P_MW,Q_Mvar",
        QStringLiteral("SELECT ID_Name, I_Name, J_Name, P, Q FROM LFR_BREAKER_R WHERE "
                       "Case_No=%1 ORDER BY LENGTH(ID_Name), ID_Name, I_Name")
            .arg(c),
        [sb](const QSqlQuery& q) {
            return field(q.value(0)) + "," + field(q.value(1)) + "," + field(q.value(2)) + "," +
                   number(q.value(3).toDouble() * sb, 4) + "," +
                   number(q.value(4).toDouble() * sb, 4);
        });
}

} // namespace demo
