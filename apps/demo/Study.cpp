#include "Study.h"

#include "Progress.h"
#include "ResultFiles.h"
#include "SampleNetwork.h"
#include "SolvedCase.h"
#include "ServerConnection.h"
#include "loadflow/jobdata/LFCalDataTransfer.h"
#include "loadflow/realtime/LFCalDataToRTDB.h"
#include "loadflow/results/LFResultDataTransfer.h"
#include "platform/CDatabase.h"
#include "records/NetworkRecords.h"
#include "records/RecordFlags.h"
#include "rtdb/rtdb.h"

#include <QElapsedTimer>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>
#include <ctime>

namespace demo {

namespace {

double ProgramCpuMs()
{
    timespec ts{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
    return ts.tv_sec * 1e3 + ts.tv_nsec / 1e6;
}

} // namespace

bool Study::timed(const char* step, const std::function<bool()>& work)
{
    if (m_progress) {
        m_progress->begin(QString::fromUtf8(step));
    }
    const double server0 = m_serverClock ? m_serverClock->seconds() : -1;
    const double cpu0 = ProgramCpuMs();
    QElapsedTimer t;
    t.start();
    const bool ok = work();
    StepTime time{step, t.nsecsElapsed() / 1e6, ProgramCpuMs() - cpu0, -1};
    const double server1 = server0 >= 0 ? m_serverClock->seconds() : -1;
    if (server1 >= 0) {
        time.serverCpuMs = (server1 - server0) * 1e3;
    }
    m_times.push_back(time);
    if (m_progress) {
        m_progress->end();
    }
    return ok;
}

std::function<void(long long, long long)> Study::counter(const char* unit) const
{
    Progress* progress = m_progress;
    return [progress, unit](long long done, long long total) {
        if (progress) {
            progress->advance(done, total, unit);
        }
    };
}

bool Study::LoadNetwork(const samples::Network& net)
{
    return timed("load the network into the base database", [&] {
        return samples::WriteNetworkToBaseDb(m_db, net, kGroup, m_scheme.constData(), m_error,
                                             counter("elements"));
    });
}

bool Study::Extract()
{
    return timed("ImportLDataFromBaseDB", [&] {
        QByteArray scheme = m_scheme;
        CLFCalDataTransfer transfer(m_job, scheme.data(), m_db, nullptr);
        transfer.SetRunGuard(m_guardWait);
        m_baseMva = transfer.BasePower();
        if (transfer.ImportLDataFromBaseDB() != 0) {
            m_guardRefusal = transfer.RunGuardRefusal();
            m_error = m_guardRefusal.isEmpty() ? "the extraction failed (see its messages)"
                                               : m_guardRefusal;
            return false;
        }
        return true;
    });
}

bool Study::BuildAndImport()
{
    if (!timed("network records from the job tables", [&] {
            return BuildNetworkRecords(m_db, m_job, m_rtdb, m_counts, m_error, counter("job rows"));
        })) {
        return false;
    }
    return timed("ImportLDataToRTDB and commit", [&] {
        CLFCalDataToRTDB toRtdb(m_job, m_db);
        const int rc = toRtdb.ImportLDataToRTDB();
        m_rtdb->commit();
        if (rc != 0) {
            m_error = "the import into the real-time database failed (see its messages)";
            return false;
        }
        return true;
    });
}

bool Study::Solve()
{
    return timed("load flow on the real-time records", [&] {
        m_solution = SolveOnRecords(m_rtdb, [&](int iteration, double mismatch) {
            if (m_progress) {
                m_progress->note(QStringLiteral("iteration %1, largest mismatch %2 pu")
                                     .arg(iteration)
                                     .arg(mismatch, 0, 'g', 3));
            }
        });
        if (!m_solution.converged) {
            m_error = QString("the load flow did not converge: mismatch %1 after %2 iterations")
                          .arg(m_solution.maxMismatch)
                          .arg(m_solution.iterations);
            return false;
        }
        return true;
    });
}

bool Study::StoreResults()
{
    return timed("ImportRTDBDataToLFResultDB", [&] {
        // The engine's "tested" mark on switches, which the result step looks for.
        dbCursor<dtsdb::cb> switches(dbCursorForUpdate);
        if (switches.select() > 0) {
            do {
                switches->q |= dtsdb::CB_TESTED;
                switches.update();
            } while (switches.next());
        }
        CLFResultDataTransfer results(m_job, m_db, m_rtdb, false, 0);
        results.SetWriteMode(m_writeMode);
        const int rc = results.ImportRTDBDataToLFResultDB();
        m_rtdb->commit();
        if (rc != 0) {
            m_error = "the results could not be stored (see the messages)";
            return false;
        }
        return true;
    });
}

bool Study::WriteResultFiles(const QString& dir)
{
    return timed("results into CSV files", [&] {
        return WriteResultCsv(m_db, m_job, m_baseMva, dir, m_error, counter("rows"));
    });
}

bool Study::WriteSolvedCase(const samples::Network& net, const QString& path)
{
    return timed("the solved network into a MATPOWER case", [&] {
        samples::Network solved = net;
        return PutSolution(m_db, m_job, solved, m_error) &&
               samples::WriteMatpowerCase(path, solved, m_error);
    });
}

bool Study::ChangeAndSaveBack(const QString& group, SaveStatementMode mode, bool allOrNothing)
{
    bool ok = timed("a change in the records, UpdateLDataFromRTDB", [&] {
        // The second generator gives 10 % more; the last AC line in service goes out.
        dbCursor<dtsdb::un> gens(dbCursorForUpdate);
        if (gens.select() > 1) {
            gens.next();
            gens->Pg *= 1.1f;
            m_changedGen = QString::fromLocal8Bit(gens->id);
            gens.update();
        }
        dbCursor<dtsdb::ln> lines(dbCursorForUpdate);
        dbQuery q;
        q = "lntype=", 1, "order by id desc";
        if (lines.select(q) > 0) {
            while (lines->q & dtsdb::LN_OUTSERVICE && lines.next()) {
            }
            if (!(lines->q & dtsdb::LN_OUTSERVICE)) {
                lines->q |= dtsdb::LN_OUTSERVICE;
                m_lineOut = QString::fromLocal8Bit(lines->id);
                lines.update();
            }
        }
        m_rtdb->commit();
        CLFCalDataToRTDB toJob(m_job, m_db);
        toJob.SetWriteMode(m_writeMode);
        if (toJob.UpdateLDataFromRTDB() != 0) {
            m_error = "the job tables could not be updated from the records";
            return false;
        }
        return true;
    });
    if (!ok) {
        return false;
    }
    return timed("SaveLDataToBaseDB", [&] {
        CDatabase base;
        QByteArray scheme = m_scheme;
        CLFCalDataTransfer transfer(m_job, scheme.data(), m_db, &base);
        transfer.SetStatementMode(mode);
        transfer.SetAllOrNothing(allOrNothing);
        transfer.SetRunGuard(m_guardWait);
        m_saveBack = transfer.SaveLDataToBaseDB(group, true);
        m_guardRefusal = transfer.RunGuardRefusal();
        m_error = m_guardRefusal;
        // A faithful stop at the transformers is the design's, not a failure.
        return m_guardRefusal.isEmpty();
    });
}

std::vector<GroupRows> Study::GroupContents(const QString& group) const
{
    std::vector<GroupRows> out;
    QSqlQuery q(*m_db);
    for (const char* table : {"CDB_ACLINEBAK", "CDB_PCAPREABAK", "CDB_SCAPREABAK",
                              "CDB_TRANS_2WBAK", "CDB_SHIFTBAK", "CDB_TRANS_3WBAK",
                              "CDB_DCLINEBAK", "CDB_GENERATBAK", "CDB_LOADBAK", "CDB_BREAKERBAK",
                              "CDB_ISOSWITCHBAK", "CDB_DATAGROUPBAK"}) {
        const QString column = QString(table) == "CDB_DATAGROUPBAK" ? "GrpName" : "ID_Name";
        q.prepare(QString("SELECT %1 FROM %2 WHERE GrpName=? ORDER BY id").arg(column, table));
        q.addBindValue(group);
        GroupRows rows{table, 0, {}};
        if (q.exec()) {
            while (q.next()) {
                if (++rows.rows <= 10) {
                    rows.firstNames << q.value(0).toString();
                }
            }
        }
        if (rows.rows > 0) {
            out.push_back(rows);
        }
    }
    return out;
}

} // namespace demo
