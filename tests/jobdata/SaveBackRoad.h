#pragma once
// The save-back's fixture: a sample network with a row in named units in every family,
// extracted into job 0, and a change beyond and within the tolerance and an orphan in every
// family of the job; and the tests' way into CLFCalDataTransfer (a friend of it).

#include "DbTest.h"
#include "SampleNetwork.h"
#include "TableSnapshots.h"
#include "loadflow/jobdata/LFCalDataTransfer.h"
#include "platform/CDatabase.h"

#include <QSqlQuery>
#include <algorithm>
#include <string>
#include <vector>

struct CLFCalDataTransferFamilies
{
    static void Prepare(CLFCalDataTransfer& t, const QString& group, bool newGroup)
    {
        t.m_strGroupName = group;
        t.m_bNewGroup = newGroup;
    }
    static int Generators(CLFCalDataTransfer& t) { return t.SaveL5DataToBaseDB(); }
    static int AddNodes(CLFCalDataTransfer& t) { return t.SaveL1DataToBaseDB(); }
    static CSaveBackPattern& Pattern(CLFCalDataTransfer& t) { return t.m_saveBack; }
};

// The IEEE 14-bus sample as group G1, with buses 4 to 9 at 110 kV (Zb = 110^2/100 = 121 ohm)
// and, beside its per-unit rows, one element in named units (Unit 0) of each family it
// lacks or holds only per unit: a series capacitor, a two-winding transformer, two phase
// shifters, a three-winding transformer, two DC lines, a generator and a load.
class SaveBackRoad : public testsupport::DbTest
{
protected:
    static inline char kScheme[] = "SCH";
    static inline const std::vector<const char*> kWorkingCopies = {
        "CDB_ACLINEBAK", "CDB_PCAPREABAK",  "CDB_SCAPREABAK",   "CDB_TRANS_2WBAK",
        "CDB_SHIFTBAK",  "CDB_TRANS_3WBAK", "CDB_DCLINEBAK",    "CDB_GENERATBAK",
        "CDB_LOADBAK",   "CDB_BREAKERBAK",  "CDB_ISOSWITCHBAK", "CDB_DATAGROUPBAK",
        "CDB_NODEBAK",   "CDB_BUSBAK",      "CDB_PSTATIONBAK",  "CDB_ZONEBAK"};
    static inline const std::vector<const char*> kWorkTables = {
        "Tac", "TPCR", "TSCR", "T2W", "TShift", "T3W", "Tdc", "TGen", "TLoad", "TBrk", "Tswitch",
        "Tnode"};

    // The temporary tables a run that stopped leaves on the library's connection.
    static void DropTemporaryTables(QSqlDatabase* db)
    {
        for (const char* t : kWorkTables) {
            QSqlQuery(*db).exec(QString("DROP TEMPORARY TABLE IF EXISTS %1").arg(t));
        }
    }
    // CHECKSUM TABLE of every table of the database, read on the second connection.
    static std::map<std::string, std::string> Checksums()
    {
        return testsupport::Checksums(checker(), testsupport::TablesLike(checker(), "%"));
    }

    void SetUp() override
    {
        DbTest::SetUp();
        DropTemporaryTables(db());
        std::vector<QString> tables{"CDB_SBBAK", "CDB_SCHEMEINFBAK", "CDB_SCHEMECONTBAK", "LF_CASE"};
        tables.insert(tables.end(), kWorkingCopies.begin(), kWorkingCopies.end());
        Truncate(tables);
        samples::Network net;
        QString error;
        ASSERT_TRUE(samples::ReadNetworkJson(CALCDATA_SAMPLES_DIR "/ieee14.json", net, error));
        ASSERT_TRUE(samples::WriteNetworkToBaseDb(db(), net, "G1", kScheme, error))
            << error.toStdString();
        const QString kv110 = "Bus_Name IN ('B4','B5','B6','B7','B8','B9')";
        Exec("UPDATE CDB_BUSBAK SET Base_kV=110 WHERE " + kv110);
        Exec("UPDATE CDB_NODEBAK SET Base_kV=110 WHERE " + kv110);
        Exec("INSERT INTO CDB_SCAPREABAK(GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, I_Break, "
             "J_Break, Unit, R1, X1, Owner) VALUES ('G1', 'SC1', 1, 'N4', 'N5', 1, 1, 1, 0, 0, "
             "-12.1, 1), ('G1', 'SC2', 1, 'N9', 'N14', 1, 1, 1, 1, 0, -0.2, 1)");
        Exec("INSERT INTO CDB_TRANS_2WBAK(GrpName, ID_Name, PhyPos, Valid, I_Name, J_Name, ID_No, "
             "Unit, R1, X1, Gm, Bm, Tk, Rate_MVA) VALUES ('G1', 'TU', 3, 1, 'N4', 'N7', 2, 0, "
             "1.21, 24.2, 1, -5, 1.0, 90)");
        Exec("INSERT INTO CDB_SHIFTBAK(GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, Unit, R1, "
             "X1, Gm, Bm, Tk, Ang_Shift) VALUES ('G1', 'P1', 1, 'N4', 'N9', 1, 0, 1.21, 12.1, 2, "
             "-10, 1.0, 5), ('G1', 'P2', 1, 'N5', 'N6', 1, 1, 0.01, 0.2, 0, 0, 1.0, 3)");
        Exec("INSERT INTO CDB_TRANS_3WBAK(GrpName, ID_Name, Valid, Name_N, Name_1, Name_2, Name_3, "
             "ID_No1, ID_No2, ID_No3, Break_1, Break_2, Break_3, Unit, R1, X1, R2, X2, R3, X3, Gm, "
             "Bm, Tk1, Tk2, Tk3, Rate_MVA1) VALUES ('G1', 'T3A', 1, 'N7', 'N4', 'N8', 'N9', 1, 1, "
             "1, 1, 1, 1, 0, 1.21, 12.1, 2.42, 24.2, 3.63, 36.3, 3, -20, 1.0, 1.0, 1.0, 120)");
        Exec("INSERT INTO CDB_DCLINEBAK(GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, Owner, "
             "OP_Mode, Vd1_kV, Pd1_MW, Type_fadc) VALUES ('G1', 'DC1', 1, 'N4', 'N5', 1, 1, 1, "
             "500, 100, 7), ('G1', 'DC2', 1, 'N5', 'N4', 1, 1, 1, 400, 50, 0)");
        Exec("INSERT INTO CDB_GENERATBAK(GrpName, ID_Name, PhyPos, Valid, Node_Name, Mode_Ctrl, "
             "Unit, Pg, Qg, V0, Qmax, Qmin, Pmax, Pmin, Par_Group, Xdp) VALUES ('G1', 'GU', 4, 1, "
             "'N4', 0, 0, 50, 10, 112.2, 30, -30, 80, 0, 1, 0.25)");
        Exec("INSERT INTO CDB_LOADBAK(GrpName, ID_Name, PhyPos, Valid, Node_Name, No_Load, Unit, "
             "Pl, Ql, V0, Load_Model) VALUES ('G1', 'DU', 6, 1, 'N5', 1, 0, 20, 5, 110, 2)");
        CLFCalDataTransfer extract(0, kScheme, db(), nullptr);
        ASSERT_EQ(extract.ImportLDataFromBaseDB(), 0);
        feedback().clear();
    }

    // One change beyond the tolerance and one within it in every family, and one orphan in
    // every family.
    void ChangeEveryFamily()
    {
        Exec("UPDATE L2_0 SET R1=R1+0.00011 WHERE ID_Name='L1'");
        Exec("UPDATE L2_0 SET X1=X1+0.0001 WHERE ID_Name='L2'"); // the tolerance: no change
        Exec("UPDATE L2_0 SET X1=X1*2 WHERE ID_Name='C9'");
        Exec("UPDATE L2_0 SET X1=-0.11 WHERE ID_Name='SC1'"); // -13.31 ohm
        Exec("UPDATE L2_0 SET X1=X1+0.00009 WHERE ID_Name='SC2'");
        Exec("UPDATE L3_0 SET Gm=2.42e-4 WHERE ID_Name='TU'"); // 2 uS
        Exec("UPDATE L3_0 SET Tk=Tk+0.00009 WHERE ID_Name='T8'");
        Exec("UPDATE L3_0 SET Bm=-2.42e-3 WHERE ID_Name='P1'"); // -20 uS
        Exec("UPDATE L3_0 SET R1=R1+0.00009 WHERE ID_Name='P2'");
        Exec("UPDATE L3_0 SET R1=0.03 WHERE ID_Name='T3A' AND Ntype=32"); // 3.63 ohm
        Exec("UPDATE L3_0 SET Gm=4.84e-4 WHERE ID_Name='T3A' AND Ntype=31"); // 4 uS
        Exec("UPDATE L3_0 SET Tk=Tk+0.00005 WHERE ID_Name='T3A' AND Ntype=33");
        Exec("UPDATE L4_0 SET Pd1_MW=110 WHERE ID_Name='DC1'");
        Exec("UPDATE L4_0 SET Vd1_kV=Vd1_kV+0.00005 WHERE ID_Name='DC2'");
        Exec("UPDATE L5_0 SET Pg=0.500002 WHERE ID_Name='GU'"); // 50.0002 MW
        Exec("UPDATE L5_0 SET Pg=Pg+0.00009 WHERE ID_Name='G3'");
        Exec("UPDATE L5_0 SET Par_Group=7 WHERE ID_Name='G4'"); // never compared
        Exec("UPDATE L6_0 SET Ql=0.050002 WHERE ID_Name='DU'"); // 5.0002 Mvar
        Exec("UPDATE L6_0 SET Mode_Ctrl=1 WHERE ID_Name='D9'");
        Exec("UPDATE L6_0 SET No_Load=4 WHERE ID_Name='D10'"); // never compared
        Exec("UPDATE LK_0 SET Lbreak=0 WHERE ID_Name='K1'");
        Exec("UPDATE LK_0 SET Valid=0 WHERE ID_Name='Q2'");
        // Orphans; the generator's node is known to the job only, with a new bus, station
        // and zone.
        Exec("INSERT INTO L1_0(Case_No, Node_Name, Bus_Name, Zone_No, PS_Name, Base_kV, ISBus) "
             "VALUES (0, 'NEWN', 'NEWB', 9, 'NEWS', 110, 1)");
        Exec("INSERT INTO L5_0(Case_No, EleID, ID_Name, Valid, Node_Name, Pg, Par_Group) VALUES "
             "(0, 90001, 'GNEW', 1, 'NEWN', 0.3, 2)");
        Exec("INSERT INTO L6_0(Case_No, EleID, ID_Name, Valid, Node_Name, No_Load, Pl) VALUES "
             "(0, 90002, 'DNEW', 1, 'N4', 2, 0.1)");
        Exec("INSERT INTO L2_0(Case_No, EleID, ID_Name, Valid, I_Name, J_Name, ID_No, I_Break, "
             "J_Break, R1, X1, B1_Half, Owner, Ntype) VALUES (0, 90008, 'CNEW', 1, 'N4', 'N4', 1, "
             "1, 0, 0, -2, 0, 0, 3), (0, 90009, 'SNEW', 1, 'N4', 'N7', 1, 1, 1, 0, -0.3, 0, 4, 2), "
             "(0, 90011, 'LNEW', 1, 'N4', 'N5', 2, 1, 1, 0.01, 0.1, 0.02, 1, 1)");
        Exec("INSERT INTO L3_0(Case_No, EleID, ID_Name, Valid, I_Name, J_Name, ID_No, R1, X1, Tk, "
             "Ang_Shift, Ntype) VALUES (0, 90010, 'TNEW', 1, 'N4', 'N7', 1, 0.01, 0.1, 1.02, 0, 1), "
             "(0, 90003, 'PNEW', 1, 'N4', 'N5', 1, 0.01, 0.1, 1, 2, 2), "
             "(0, 90004, 'T3NEW', 1, 'N7', 'N4', 1, 0.01, 0.1, 1, 0, 31), (0, 90004, 'T3NEW', 0, "
             "'N7', 'N8', 1, 0.02, 0.2, 1.05, 0, 32), (0, 90004, 'T3NEW', 1, 'N7', 'N9', 1, 0.03, "
             "0.3, 1, 0, 33)");
        Exec("INSERT INTO L4_0(Case_No, EleID, ID_Name, Valid, I_Name, J_Name, ID_No, Owner, "
             "Pd1_MW) VALUES (0, 90005, 'DCNEW', 1, 'N4', 'N9', 1, 1, 30)");
        Exec("INSERT INTO LK_0(Case_No, EleID, ID_Name, Valid, Lbreak, I_Name, J_Name, ID_No, "
             "Ntype) VALUES (0, 90006, 'KNEW', 1, 1, 'NEWN', 'N4', 1, 1), (0, 90007, 'QNEW', 1, "
             "0, 'NEWN', 'N4', 1, 2)");
    }

    // What a test expects of a base table: the rows `where` picks (and `order` sorts), their
    // `columns` as "value|value", the rows joined by ';'.
    struct Expected
    {
        const char *table, *where, *columns, *rows;
    };
    static void ExpectRows(const std::vector<Expected>& expected, const QString& order = "")
    {
        for (const Expected& e : expected) {
            std::string rows;
            for (const std::string& r : Rows(QString("SELECT %1 FROM %2 WHERE %3%4")
                                                 .arg(e.columns, e.table, e.where, order))) {
                rows += (rows.empty() ? "" : ";") + r;
            }
            EXPECT_EQ(rows, e.rows) << e.table << " WHERE " << e.where << ": " << e.columns;
        }
    }

    // The orphan warnings of ChangeEveryFamily, in the order of the families.
    static std::vector<std::string> OrphanWarnings(const std::string& group)
    {
        const char* texts[] = {"交流线作业数据中有 1 条记录", "并联电容电抗器作业数据中有 1 条记录", "串联电容电抗器作业数据中有 1 条记录",
                               "两绕组变压器作业数据中有 1 条记录", "移相变压器作业数据中有 1 条记录",
                               "两绕组变压器作业数据中有 3 条记录", // the three windings
                               "直流线作业数据中有 1 条记录",       "发电机作业数据中有 1 条记录",
                               "负荷作业数据中有 1 条记录",         "开关作业数据中有 1 条记录",
                               "刀闸作业数据中有 1 条记录"};
        std::vector<std::string> out;
        for (const char* t : texts) {
            out.push_back(std::string(t) + "与基础库元件不对应, 被保存至数据组 " + group + " 。");
        }
        return out;
    }

    CDatabase m_base;
};
