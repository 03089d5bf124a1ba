#include "CaseSetTest.h"

#include "RecordAccess.h"
#include "SampleNetwork.h"
#include "Study.h"

namespace casetest {

void CaseSetTest::SetUp()
{
    DbTest::SetUp();
    if (HasFatalFailure() || IsSkipped()) {
        return;
    }
    ASSERT_TRUE(m_rtdb.open("caseset"));
    demo::Study study(db(), &m_rtdb);
    if (Count("L1_0") == 0) { // once for the suite's database
        samples::Network net;
        QString error;
        ASSERT_TRUE(samples::ReadNetworkJson(CALCDATA_SAMPLES_DIR "/ieee14.json", net, error));
        ASSERT_TRUE(study.LoadNetwork(net)) << study.error().toStdString();
        ASSERT_TRUE(study.Extract()) << study.error().toStdString();
        for (const char* t : {"L3", "L5", "L6"}) {
            Exec(QString("DELETE FROM %1_%2").arg(t).arg(kCaseLF));
            Exec(QString("INSERT INTO %1_%2 SELECT * FROM %1_0").arg(t).arg(kCaseLF));
        }
    }
    ASSERT_TRUE(study.BuildAndImport()) << study.error().toStdString();
    dbCursor<dtsdb::bs> buses;
    dbQuery last;
    last = "order by id desc";
    ASSERT_GT(buses.select(last), 0);
    m_lastBus = buses->id;
    m_rtdb.commit();
    Truncate({"ST_CASE",     "ST_CRIT",    "ST_FAULT",   "ST_UDCAL",   "ST_UPCAL",
              "ST_DIST_INF", "ST_DIST_T1", "ST_DIST_T2", "ST_DIST_T3", "ST_DIST_T4",
              "ST_DIST_T5",  "ST_DIST_T6", "ST_DIST_T7", "ST_DIST_T8", "ST_DIST_T9",
              "ST_DIST_T10", "ST_OUT",     "ST_VAR_INF", "ST_ANACAL",  "ST_ANA_GRP"});
    feedback().clear();
}

void CaseSetTest::TearDown()
{
    m_rtdb.rollback();
    m_rtdb.close();
}

void CaseSetTest::CaseRow(const QString& assignments)
{
    Exec(QString("INSERT INTO ST_CASE SET Case_No=%1,CASE_LF=%2%3")
             .arg(kCase)
             .arg(kCaseLF)
             .arg(assignments.isEmpty() ? QString() : "," + assignments));
}

int CaseSetTest::BusOf(const char* node)
{
    return testsupport::Fetch<dtsdb::nd>(node).ibs;
}

std::vector<std::string> CaseSetTest::BusesFrom(int firstId)
{
    std::vector<std::string> out;
    dbCursor<dtsdb::bs> c;
    dbQuery q;
    q = "id>=", firstId, "order by id";
    if (c.select(q) > 0) {
        do {
            out.push_back(std::to_string(c->id) + ":" + c->name);
        } while (c.next());
    }
    return out;
}

} // namespace casetest
