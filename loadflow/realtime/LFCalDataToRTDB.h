#pragma once
// One load-flow job between its job tables and the network records of the real-time
// database. The way in overwrites the input fields and flag bits of records that already
// stand (found by their real-time ids); the way back writes in-service states, switch
// states and operating points into the job tables; invalidation clears a job's marks.
// Nothing here commits: the calling module commits or rolls back, on the thread that is
// attached to the real-time database.

#include "common/BulkLoad.h"

class QSqlDatabase;

class CLFCalDataToRTDB
{
public:
    CLFCalDataToRTDB(int jobNumber, QSqlDatabase* db);
    ~CLFCalDataToRTDB() {}

    // Each returns 0 for success, 1 when a statement failed.
    int ImportLDataToRTDB();
    int ImportL1DataToRTDB();
    int ImportL2DataToRTDB();
    int ImportL3DataToRTDB();
    int ImportL4DataToRTDB();
    int ImportL5DataToRTDB();
    int ImportL6DataToRTDB();
    int ImportLKDataToRTDB();

    // The way back sends the design's statement per record unless the caller asks for the
    // batched mode (common/BulkLoad.h), in which each family's records go in bulk and its
    // job table ends the same.
    void SetWriteMode(RecordWriteMode mode) { m_writeMode = mode; }
    RecordWriteMode WriteMode() const { return m_writeMode; }

    int UpdateLDataFromRTDB();
    int UpdateL1DataFromRTDB();
    int UpdateL2DataFromRTDB();
    int UpdateL3DataFromRTDB();
    int UpdateL4DataFromRTDB();
    int UpdateL5DataFromRTDB();
    int UpdateL6DataFromRTDB();
    int UpdateLKDataFromRTDB();

    // Clears the in-job bit and sets the out-of-service bit of every network record; with
    // bForce also the family's topflags bit. Always 0.
    int InValidateLFCalDataInRTDB(bool bForce);

private:
    QSqlDatabase* m_pDB;
    int m_nJobNumber;
    RecordWriteMode m_writeMode = RecordWriteMode::PerRecord;
};
