#include "CaseSetTest.h"

#include "RecordAccess.h"
#include "SampleNetwork.h"
#include "Study.h"
#include "TableSnapshots.h"

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
    const QStringList caseTables = testsupport::TablesLike(checker(), "ST\\_%");
    Truncate({caseTables.begin(), caseTables.end()});
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

std::string CaseSetTest::Records()
{
    using namespace dtsdb;
    const auto crit = All<stcrit>();
    const auto out = All<st_out>();
    const auto cases = All<case_st>();
    auto n = [](auto v) { return std::to_string(v.size()); };
    return "crit " + (crit.size() == 1 ? std::string(crit[0].ID_Name1) : n(crit)) + "|fault " +
           n(All<stfault>()) + "|dist " + n(All<stdist>()) + "|out " +
           (out.size() == 1 ? std::to_string(out[0].AnaFunc) : n(out)) + "|var " +
           n(All<stvar_inf>()) + "|gi " + n(All<stana_gi>()) + "|grp " + n(All<stana_grp>()) +
           "|case " +
           (cases.size() == 1
                ? std::to_string(cases[0].Nfault) + "/" + std::to_string(cases[0].Ndist)
                : "-");
}

std::vector<std::string> CaseSetTest::BusesFrom(int firstId)
{
    std::vector<std::string> out;
    for (const dtsdb::bs& b : All<dtsdb::bs>()) {
        if (b.id >= firstId) {
            out.push_back(std::to_string(b.id) + ":" + b.name);
        }
    }
    return out;
}

} // namespace casetest
