#pragma once
// The fixture of the tests that move a load-flow job between the server and the real-time
// records: job 1's tables emptied, a real-time database of records open, no feedback yet.

#include "DbTest.h"
#include "records/NetworkRecords.h"

// Job 1 in the SQL server and a real-time database of records, per test.
class JobTransfer : public testsupport::DbTest
{
protected:
    void SetUp() override
    {
        DbTest::SetUp();
        ASSERT_TRUE(m_rtdb.open("job"));
        Truncate({"L1_1", "L2_1", "L3_1", "L4_1", "L5_1", "L6_1", "LK_1"});
        feedback().clear();
        boxes().clear();
    }
    void TearDown() override
    {
        m_rtdb.rollback();
        m_rtdb.close();
    }
    dbDatabase m_rtdb;
};
