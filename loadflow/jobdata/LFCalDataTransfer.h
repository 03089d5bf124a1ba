#pragma once
// The transfer between the base database and the load-flow job tables of one job.
// Extraction: the calculation scheme picks one row per element, the rows are copied into
// the job tables in per-unit form inside the server, the node table is built last and the
// counts go to LF_CASE. Save-back: what a calculation changed goes back to the working
// copies, in place or into a data group, and orphans are saved into the group.

#include "common/GbkWidth.h"
#include "common/RunGuard.h"
#include "common/SaveBackPattern.h"

#include <QMap>
#include <QString>

class QSqlDatabase;
class CDatabase;

class CLFCalDataTransfer
{
public:
    CLFCalDataTransfer(int jobNumber, char* schemeName, QSqlDatabase* db, CDatabase* baseDb);
    // For extraction only: job 0 and no base-database object.
    CLFCalDataTransfer(char* schemeName, QSqlDatabase* db);
    virtual ~CLFCalDataTransfer() {}
    CLFCalDataTransfer(const CLFCalDataTransfer&) = default;
    CLFCalDataTransfer& operator=(const CLFCalDataTransfer&) = default;

    int ImportLDataFromBaseDB();
    int DeleteLData();
    // Saves what the job changed into the working copies: in place, or with `newGroup`
    // as copies in data group `groupName`, where orphan rows always go.
    int SaveLDataToBaseDB(QString groupName, bool newGroup);
    // Which text save-back sends where the design's statement is refused by the server:
    // faithful (the default) stops the run there, mended sends the intended statement.
    void SetStatementMode(SaveStatementMode mode) { m_saveBack.SetStatementMode(mode); }
    SaveStatementMode StatementMode() const { return m_saveBack.StatementMode(); }
    // All-or-nothing (off by default): SaveLDataToBaseDB runs in one transaction on the
    // connection and undoes everything when any family fails; it refuses a connection that
    // is inside a transaction already. The change flags are raised after the commit.
    void SetAllOrNothing(bool on) { m_saveBack.SetAllOrNothing(on); }
    bool AllOrNothing() const { return m_saveBack.AllOrNothing(); }
    // What SaveLDataToBaseDB would do with these arguments, in this statement mode, found by
    // its own detection statements and without writing a base table; the transfer's counts
    // and new-node map stay as they were.
    SaveBackPreview PreviewLDataToBaseDB(QString groupName, bool newGroup);
    // The guard of a database that other runs share (off by default; common/RunGuard.h):
    // given a wait of 0 seconds or more, extraction holds the table tmp and the job's tables
    // for its time, save-back and its preview the job's tables and the data group, and a
    // save-back into a new group runs only where no group of that name exists yet. A run the
    // guard refuses returns 1 having written nothing, and RunGuardRefusal() says why.
    void SetRunGuard(int waitSeconds) { m_guard.SetWait(waitSeconds); }
    const QString& RunGuardRefusal() const { return m_guard.Refusal(); }
    double RunGuardWaited() const { return m_guard.Waited(); } // seconds, in all

    // Counters: after extraction the LF_CASE counts, after save-back the changed elements.
    int Nbus = 0, Ngenerat = 0, Nload = 0, Nacline = 0, Ndcline = 0, Ntrans = 0, Nswitch = 0;

    double BasePower() const { return m_dBaseMva; }

private:
    // Tests run single save-back families, which the driver on this server never reaches.
    friend struct CLFCalDataTransferFamilies;
    static constexpr int kSchemeBytes = 32;
    void Init(char* schemeName);
    // The frame of an extraction family: tmp created before, dropped after success.
    bool CreateTmp();
    void DropTmp();
    // Fills tmp by the scheme from `source` (a composed working-copy name).
    bool SelectByScheme(const QByteArray& source);

    int RunImport(); // the extraction's driver
    int ImportL1DataFromBaseDB();
    int ImportL2DataFromBaseDB();
    int ImportL2DataFromAC();
    int ImportL2DataFromSCR();
    int ImportL2DataFromPCR();
    int ImportL3DataFromBaseDB();
    int ImportL3DataFromT2W();
    int ImportL3DataFromShift();
    int ImportL3DataFromT3W();
    int ImportL4DataFromBaseDB();
    int ImportL5DataFromBaseDB();
    int ImportL6DataFromBaseDB();
    int ImportLKDataFromBaseDB();
    int AddNewNode(const QString& name);

    // The save-back's driver, which the save-back, its all-or-nothing run and the preview
    // run alike.
    int RunSaveBack(const QString& groupName, bool newGroup);
    // Save-back families, each 0 or 1.
    int RunSaveFamily(const SaveBackFamily& family, int& counter);
    int SaveL1DataToBaseDB();
    int SaveL2DataToAC();
    int SaveL2DataToPCR();
    int SaveL2DataToSCR();
    int SaveL3DataToT2W();
    int SaveL3DataToShift();
    int SaveL3DataToT3W();
    int SaveL4DataToBaseDB();
    int SaveL5DataToBaseDB();
    int SaveL6DataToBaseDB();
    int SaveLKDataToBreaker();
    int SaveLKDataToSwitch();
    int SaveL3Transformer(bool shifter);
    int SaveLKFamily(bool breaker);

    QSqlDatabase* m_pDB;
    CDatabase* m_pBaseDB;
    int m_nJobNumber;
    // The design's 32 bytes, counted as GBK, in UTF-8 (always terminated here).
    char m_SchName[GbkBufferSize(kSchemeBytes)];
    QByteArray m_overlongScheme; // the whole name, when it was wider than kSchemeBytes
    double m_dBaseMva = 1.0;
    bool m_bNewGroup = false;
    QString m_strGroupName;
    int m_nNewElements = 0;
    QMap<QString, int> m_NewNodes;
    CSaveBackPattern m_saveBack; // runs the families' statements, in the statement mode
    CTransferGuard m_guard;
};
