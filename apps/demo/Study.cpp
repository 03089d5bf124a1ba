#include "Study.h"

#include "SampleNetwork.h"
#include "loadflow/jobdata/LFCalDataTransfer.h"
#include "loadflow/realtime/LFCalDataToRTDB.h"
#include "rtdb/rtdb.h"

#include <QElapsedTimer>
#include <QSqlDatabase>

namespace demo {

bool Study::timed(const char* step, const std::function<bool()>& work)
{
    QElapsedTimer t;
    t.start();
    const bool ok = work();
    m_times.push_back(StepTime{step, t.nsecsElapsed() / 1e6});
    return ok;
}

bool Study::LoadNetwork(const samples::Network& net)
{
    return timed("load the network into the base database", [&] {
        return samples::WriteNetworkToBaseDb(m_db, net, kGroup, kScheme, m_error);
    });
}

bool Study::Extract()
{
    return timed("ImportLDataFromBaseDB", [&] {
        QByteArray scheme(kScheme);
        CLFCalDataTransfer transfer(kJob, scheme.data(), m_db, nullptr);
        m_baseMva = transfer.BasePower();
        if (transfer.ImportLDataFromBaseDB() != 0) {
            m_error = "the extraction failed (see its messages)";
            return false;
        }
        return true;
    });
}

bool Study::BuildAndImport()
{
    if (!timed("network records from the job tables",
               [&] { return BuildNetworkRecords(m_db, kJob, m_rtdb, m_counts, m_error); })) {
        return false;
    }
    return timed("ImportLDataToRTDB and commit", [&] {
        CLFCalDataToRTDB toRtdb(kJob, m_db);
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
        m_solution = SolveOnRecords(m_rtdb);
        if (!m_solution.converged) {
            m_error = QString("the load flow did not converge: mismatch %1 after %2 iterations")
                          .arg(m_solution.maxMismatch)
                          .arg(m_solution.iterations);
            return false;
        }
        return true;
    });
}

} // namespace demo
