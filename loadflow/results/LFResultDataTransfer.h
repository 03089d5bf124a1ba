#pragma once
// Load-flow results between the result tables (LFR_*_R, or OPFR_*_R for an optimal flow)
// and the records of the real-time database, both ways. Values go across as the engine
// left them. The two drivers do not pass on their families' failures: a caller learns of
// those from the messages.

#include "common/BulkLoad.h"
#include "common/GbkWidth.h"

#include <QByteArray>
#include <QList>

class CSqlRows;
class QSqlDatabase;
class dbDatabase;

// A voltage level, in the order "order by id" of the kv records; its position is the
// ikv of bs.
struct SKV
{
    int Zone_No;
    char KV[GbkBufferSize(27)]; // 27 bytes as the design counted them, in UTF-8
    double Base_kV;
    double Vmax_kV;
    double Vmin_kV;
};

class CLFResultDataTransfer
{
public:
    CLFResultDataTransfer(int caseNo, QSqlDatabase* db, dbDatabase* rtdb, bool bOptimal, int mode);
    virtual ~CLFResultDataTransfer();
    // Member by member: two copies share the list and both delete it, as designed.
    CLFResultDataTransfer(const CLFResultDataTransfer&) = default;
    CLFResultDataTransfer& operator=(const CLFResultDataTransfer&) = default;

    // Stored results of the case into the records; always 0.
    int ImportLFResultDataToRTDB();
    // The solution in the records into the result tables; 1 only when there is no kv.
    int ImportRTDBDataToLFResultDB();
    // The results go in the design's batches of 100 and statements per record unless the
    // caller asks for the batched mode (common/BulkLoad.h), in which each family's rows go
    // in one bulk load and the tables end the same.
    void SetWriteMode(RecordWriteMode mode) { m_writeMode = mode; }
    RecordWriteMode WriteMode() const { return m_writeMode; }

private:
    int ImportBus_RDataToRTDB();
    int ImportBs_RDataToRTDB();
    int ImportACLine_RDataToRTDB();
    int ImportSCR_RDataToRTDB();
    int ImportPCR_RDataToRTDB();
    int ImportDCLine_RDataToRTDB();
    int ImportGen_RDataToRTDB();
    int ImportLoad_RDataToRTDB();
    int ImportT2W_RDataToRTDB();
    int ImportShift_RDataToRTDB();
    int ImportT3W_RDataToRTDB();
    int ImportBreaker_RDataToRTDB();
    void UpdateNdBsNo(char* name, int ibs);
    // The shared halves of the families above: lines and series elements, two-winding
    // transformers and phase shifters, and the topology columns of one- and two-ended rows.
    int importLines(const char* family, const char* suffix);
    int importTransformers(const char* family, const char* suffix, const char* message);
    template <class T> void oneEndedTopology(T& r, const CSqlRows& q);
    template <class T> void twoEndedTopology(T& r, const CSqlRows& q, int first);

    int PrepareLFDataList();
    int ImportRTDBToBs_R();
    int ImportRTDBToBus_R();
    int ImportRTDBToACLine_R();
    int ImportRTDBToSCR_R();
    int ImportRTDBToPCR_R();
    int ImportRTDBToDCLine_R();
    int ImportRTDBToGen_R();
    int ImportRTDBToLoad_R();
    int ImportRTDBToT2W_R();
    int ImportRTDBToShift_R();
    int ImportRTDBToT3W_R();
    int ImportRTDBToBreaker_R();

    // The whole rows of the values alone, or of the values and the topology.
    bool topology() const { return !m_bOptimal && m_mode != 2; }
    QByteArray table(const char* family) const;

    QSqlDatabase* m_pDB;
    int m_mode;
    bool m_bOptimal;
    int m_caseNo;
    QList<SKV>* m_pKVList;
    dbDatabase* m_pRTDB;
    RecordWriteMode m_writeMode = RecordWriteMode::PerRecord;
};
