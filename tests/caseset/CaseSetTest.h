#pragma once
// Fixture of the stability case tests: the IEEE 14-bus network extracted into load-flow
// job 0 once per suite (its generator, transformer and load tables copied to job 5, the
// load-flow case the stability case rests on), and per test a fresh real-time database
// with the network records built from job 0 and filled by ImportLDataToRTDB, and empty
// case tables.
//
// IEEE 14 names: nodes N1 to N14 with buses B1 to B14 (one voltage level each, so the
// levels in id order are B1, B10, ..., B14, B2, ...), generators G1 to G5 on nodes N1G to
// N5G, each joined to its bus's node (N1, N2, N3, N6, N8) by closed switches, loads D<k>
// on N<k>.

#include "DbTest.h"
#include "records/StabilityCaseRecords.h"
#include "stability/caseset/STCaseDataTransfer.h"

#include <string>
#include <vector>

// The single families of the transfer, for tests that look at one step alone.
struct CaseSetProbe
{
    static int Faults(CSTCaseDataTransfer& t) { return t.ImportFAULTDataToRTDB(); }
    static int UserModels(CSTCaseDataTransfer& t) { return t.ImportUDCAL_STDataToRTDB(); }
    static int Disturbances(CSTCaseDataTransfer& t) { return t.ImportDISTDataToRTDB(); }
};

namespace casetest {

constexpr int kCase = 3;
constexpr int kCaseLF = 5;

class CaseSetTest : public testsupport::DbTest
{
protected:
    void SetUp() override;
    void TearDown() override;

    dbDatabase& rtdb() { return m_rtdb; }
    // The case row of kCase with the given extra columns, e.g. "Ctrl_Fault=1,T_Total=5".
    static void CaseRow(const QString& assignments);
    static int BusOf(const char* node);
    static std::string B(const char* node) { return std::to_string(BusOf(node)); }
    template <class T> static std::vector<T> All()
    {
        std::vector<T> out;
        dbCursor<T> c;
        if (c.select() > 0) {
            do {
                out.push_back(*c);
            } while (c.next());
        }
        return out;
    }
    // The records of the case: the criteria's ID_Name1 (or their count), the counts of the
    // other kinds, st_out's AnaFunc (or the count), the case record's Nfault/Ndist ("-"
    // without a record).
    static std::string Records();
    // Names of the bs records from `firstId` on, "id:name", in the order they were added.
    static std::vector<std::string> BusesFrom(int firstId);
    int lastBus() const { return m_lastBus; }

private:
    dbDatabase m_rtdb;
    int m_lastBus = -1;
};

} // namespace casetest
