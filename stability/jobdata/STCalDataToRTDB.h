#pragma once
// One stability job's values laid over the network records that the load-flow import
// already filled: zero-sequence values of branches and transformers, DC control data,
// dynamic model references of generators and loads, static var compensators. No record
// is added; a row whose record is missing is reported and passed over. A job table that
// cannot be read reads as empty. Nothing here commits: the calling module does, on the
// thread attached to the real-time database.

class QSqlDatabase;

class CSTCalDataToRTDB
{
public:
    CSTCalDataToRTDB(int jobNumber, QSqlDatabase* db);
    ~CSTCalDataToRTDB() {}
    CSTCalDataToRTDB& operator=(const CSTCalDataToRTDB&) = default;

    // The six tables in order; 0 when all gave 0, which each always does.
    int ImportSDataToRTDB();
    int ImportS2DataToRTDB(); // ln (AC lines "_ac", series "_sc") and cp (shunts, bare)
    int ImportS3DataToRTDB(); // xf by the winding's suffix
    int ImportS4DataToRTDB(); // dln
    int ImportS5DataToRTDB(); // un
    int ImportS6DataToRTDB(); // ld
    int ImportS7DataToRTDB(); // svc, found by id_name

private:
    QSqlDatabase* m_pDB;
    int m_nJobNumber;
};
