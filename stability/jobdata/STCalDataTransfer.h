#pragma once
// The transfer between the base database and the stability job tables S2_n ... S7_n of one
// job. A stability job rests on a load-flow case: extraction picks its rows by the scheme
// of that case (LF_CASE.SCHEME), and save-back converts named values by that case's node
// table L1_n. The tables hold what transient stability adds to load flow: zero-sequence
// values, DC control data, dynamic model references and static var compensators.

#include "common/GbkWidth.h"
#include "common/RunGuard.h"
#include "common/SaveBackPattern.h"

#include <QByteArray>
#include <QString>
#include <vector>

class QSqlDatabase;
class CDatabase;

class CSTCalDataTransfer
{
public:
    // Reads the scheme of load-flow case `lfCase` (when above 0) and the base power.
    CSTCalDataTransfer(int jobNumber, int lfCase, QSqlDatabase* db, CDatabase* baseDb);
    // For extraction only: both case numbers 0 and no base-database object.
    CSTCalDataTransfer(char* schemeName, QSqlDatabase* db);
    virtual ~CSTCalDataTransfer() {}
    CSTCalDataTransfer(const CSTCalDataTransfer&) = default;
    CSTCalDataTransfer& operator=(const CSTCalDataTransfer&) = default;

    // Empties the job tables, stopping at the first that fails (0 or 1).
    int DeleteSData();
    // Extraction: every family runs; 1 only when the ST_CASE counters cannot be written.
    int ImportSDataFromBaseDB();
    // Saves what the job changed into the working copies: in place, or with `newGroup` as
    // copies in data group `groupName`. 1 at the first failing family.
    int SaveSDataToBaseDB(QString groupName, bool newGroup);
    // Which text save-back sends where the design's copy into a new group is refused by
    // the server: faithful (the default) stops the run there, mended sends the intended one.
    void SetStatementMode(SaveStatementMode mode) { m_saveBack.SetStatementMode(mode); }
    SaveStatementMode StatementMode() const { return m_saveBack.StatementMode(); }
    // All-or-nothing (off by default): SaveSDataToBaseDB runs in one transaction on the
    // connection and undoes everything when any family fails; it refuses a connection that
    // is inside a transaction already. The change flags are raised after the commit.
    void SetAllOrNothing(bool on) { m_saveBack.SetAllOrNothing(on); }
    bool AllOrNothing() const { return m_saveBack.AllOrNothing(); }
    // What SaveSDataToBaseDB would do with these arguments, in this statement mode, found by
    // its own detection statements and without writing a base table; the transfer's counts
    // and group stay as they were.
    SaveBackPreview PreviewSDataToBaseDB(QString groupName, bool newGroup);
    // The guard of a database that other runs share (off by default; common/RunGuard.h):
    // given a wait of 0 seconds or more, extraction holds the table tmp and the job's tables
    // for its time, save-back and its preview the table TLoad, the job's tables and the data
    // group, and a save-back into a new group runs only where no group of that name exists
    // yet. A run the guard refuses returns 1 having written nothing, and RunGuardRefusal()
    // says why.
    void SetRunGuard(int waitSeconds) { m_guard.SetWait(waitSeconds); }
    const QString& RunGuardRefusal() const { return m_guard.Refusal(); }
    double RunGuardWaited() const { return m_guard.Waited(); } // seconds, in all

    // After extraction the ST_CASE counts (Nbus always 1), after save-back the saved rows.
    int Nbus = 0, Ngenerat = 0, Nload = 0, Nacline = 0, Ndcline = 0, Ntrans = 0, Nsvc = 0;

    double BasePower() const { return m_dBaseMva; }
    // The scheme the job is extracted by; empty when the load-flow case gave none. A name
    // wider than 31 bytes (a Chinese character counting 2) is kept cut between characters,
    // and the extraction refuses it.
    const char* SchemeName() const { return m_SchName; }

    struct S2Family; // what sets the three AC-side extractions apart

private:
    static constexpr int kSchemeBytes = 31;
    void Init();
    void SetScheme(const QByteArray& name);
    // The tmp of S4 to S6: made, or dropped and made again; false after the message.
    bool CreateTmp();
    // Fills tmp by the scheme from `source` (a composed working-copy name); false after
    // the failure message. `rows` gets what the fill affected.
    bool SelectByScheme(const QByteArray& source, int& rows);
    // Runs a statement; false after the failure message.
    bool Exec(const QByteArray& sql);
    bool Exec(const QByteArray& sql, int& rows);

    int RunImport(); // the extraction's driver
    int ImportS2DataFromBaseDB();
    int ImportS2DataFromAC();
    int ImportS2DataFromSCR();
    int ImportS2DataFromPCR();
    // The three AC-side families: one routine over what differs among them.
    int ImportS2Family(const S2Family& f);
    int ImportS3DataFromBaseDB();
    int ImportS3DataFromT2W();
    int ImportS3DataFromT3W();
    int ImportS3DataFromShift();
    int ImportS3Transformer(const char* table, int ntype);
    int ImportS4DataFromBaseDB();
    int ImportS5DataFromBaseDB();
    int ImportS6DataFromBaseDB();
    int ImportS7DataFromBaseDB();
    // S4 to S6: one insert of the rows the scheme picked, counted by the fill.
    int ImportSingleInsert(const char* jobTable, const char* source, const char* insert,
                           int& counter);

    // The save-back's driver, which the save-back, its all-or-nothing run and the preview
    // run alike.
    int RunSaveBack(const QString& groupName, bool newGroup);
    // Runs one save-back family through the shared pattern.
    int RunSaveFamily(const char* base, std::vector<QByteArray> changes, const char* copy,
                      const char* inGroup, const char* inPlace, const char* drop, int& counter);
    std::vector<QByteArray> ZeroSequenceChanges(const char* jobTable, const char* base,
                                                const char* unit1, const char* unit0) const;
    int SaveS2DataToAC();
    int SaveS2DataToPCR();
    int SaveS2DataToSCR();
    int SaveS3DataToT2W();
    int SaveS3DataToShift();
    int SaveS3DataToT3W();
    int SaveS4DataToBaseDB();
    int SaveS5DataToBaseDB();
    int SaveS6DataToBaseDB();
    int SaveS7DataToBaseDB();

    QSqlDatabase* m_pDB;
    CDatabase* m_pBaseDB;
    int m_nLFCase;
    int m_nJobNumber;
    // The design's 32 bytes (31 and the terminator, counted as GBK), in UTF-8.
    char m_SchName[GbkBufferSize(kSchemeBytes)];
    QByteArray m_overlongScheme; // the whole name, when it was wider than kSchemeBytes
    double m_dBaseMva = 1.0;
    bool m_bNewGroup = false;
    QString m_strGroupName;
    int m_nReserved = 0;         // cleared by each save-back; nothing reads it
    CSaveBackPattern m_saveBack; // runs the save-back families, in the statement mode
    CTransferGuard m_guard;
};
