// The whole save-back road: every family, the driver's end, the new group and the new
// nodes, in the mended statement mode; and where the faithful default stops.

#include "DbTest.h"
#include "SaveBackFamilies.h"
#include "SampleNetwork.h"
#include "common/Feedback.h"
#include "loadflow/jobdata/LFCalDataTransfer.h"
#include "loadflow/jobdata/LFSaveStatements.h"
#include "platform/CDatabase.h"

#include <QSqlError>
#include <algorithm>

using testsupport::DbTest;

namespace {

char kScheme[] = "SCH";

// The temporary tables a run that stopped leaves on the library's connection.
void DropTemporaryTables(QSqlDatabase* db)
{
    for (const char* t : {"Tac", "TPCR", "TSCR", "T2W", "TShift", "T3W", "Tdc", "TGen", "TLoad",
                          "TBrk", "Tswitch", "Tnode"}) {
        QSqlQuery(*db).exec(QString("DROP TEMPORARY TABLE IF EXISTS %1").arg(t));
    }
}

bool Sent(const std::vector<std::string>& sent, const std::string& start)
{
    return std::any_of(sent.begin(), sent.end(),
                       [&](const std::string& s) { return s.rfind(start, 0) == 0; });
}

} // namespace

// The IEEE 14-bus sample as group G1, with buses 4 to 9 at 110 kV (Zb = 110^2/100 = 121 ohm)
// and, beside its per-unit rows, one element in named units (Unit 0) of each family it
// lacks or holds only per unit: a series capacitor, a two-winding transformer, two phase
// shifters, a three-winding transformer, two DC lines, a generator and a load.
class SaveBackRoad : public DbTest
{
protected:
    void SetUp() override
    {
        DbTest::SetUp();
        DropTemporaryTables(db());
        Truncate({"CDB_SBBAK", "CDB_BUSBAK", "CDB_NODEBAK", "CDB_PSTATIONBAK", "CDB_ZONEBAK",
                  "CDB_ACLINEBAK", "CDB_SCAPREABAK", "CDB_PCAPREABAK", "CDB_TRANS_2WBAK",
                  "CDB_SHIFTBAK", "CDB_TRANS_3WBAK", "CDB_DCLINEBAK", "CDB_GENERATBAK",
                  "CDB_LOADBAK", "CDB_BREAKERBAK", "CDB_ISOSWITCHBAK", "CDB_DATAGROUPBAK",
                  "CDB_SCHEMEINFBAK", "CDB_SCHEMECONTBAK", "LF_CASE"});
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
    // every family but the AC lines.
    void ChangeEveryFamily()
    {
        Exec("UPDATE L2_0 SET R1=R1+0.00011 WHERE ID_Name='L1'");
        Exec("UPDATE L2_0 SET X1=X1+0.00009 WHERE ID_Name='L2'");
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
             "J_Break, R1, X1, Owner, Ntype) VALUES (0, 90008, 'CNEW', 1, 'N4', 'N4', 1, 1, 0, 0, "
             "-2, 0, 3), (0, 90009, 'SNEW', 1, 'N4', 'N7', 1, 1, 1, 0, -0.3, 4, 2)");
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

    static double Value(const QString& sql) { return Scalar(sql).toDouble(); }

    // The orphan warnings of ChangeEveryFamily, in the order of the families.
    static std::vector<std::string> OrphanWarnings(const std::string& group)
    {
        const char* texts[] = {"并联电容电抗器作业数据中有 1 条记录", "串联电容电抗器作业数据中有 1 条记录",
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

TEST_F(SaveBackRoad, MendedInPlaceRunsEveryFamilyAndTheDriversEnd)
{
    ChangeEveryFamily();
    StartStatementLog();
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    EXPECT_EQ(job.StatementMode(), SaveStatementMode::Faithful) << "the default";
    job.SetStatementMode(SaveStatementMode::Mended);
    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", false), 0);

    EXPECT_EQ(feedback().texts(1),
              (std::vector<std::string>{"回存交流线数目：1", "回存并联电容电抗器数目：1",
                                        "回存串联电容电抗器数目：1", "回存两绕组变压器数目：1",
                                        "回存移相变压器数目：1", "回存三绕组变压器数目：2",
                                        "回存直连线数目：1", "回存发电机数目：1", "回存负荷数目：2",
                                        "回存开关数目：1", "回存刀闸数目：1",
                                        "回存变化元件总数：13", "回存新增元件总数：10"}));
    EXPECT_EQ(feedback().texts(2), OrphanWarnings("NEW"));
    EXPECT_EQ(m_base.ModifiedTableTypes(), (std::vector<int>{102, 103, 104, 105, 107, 106, 108, 109,
                                                             110, 112, 120, 12, 116, 101, 117,
                                                             115}));
    EXPECT_EQ(job.Ntrans, 4);
    EXPECT_EQ(job.Nswitch, 2);

    // Changed rows in their own units; rows within the tolerance and columns that are never
    // compared stay as they were.
    EXPECT_NEAR(Value("SELECT X1 FROM CDB_SCAPREABAK WHERE ID_Name='SC1'"), -13.31, 1e-9);
    EXPECT_NEAR(Value("SELECT X1 FROM CDB_SCAPREABAK WHERE ID_Name='SC2'"), -0.2, 1e-12);
    EXPECT_NEAR(Value("SELECT Gm FROM CDB_TRANS_2WBAK WHERE ID_Name='TU'"), 2.0, 1e-9);
    EXPECT_NEAR(Value("SELECT Bm FROM CDB_TRANS_2WBAK WHERE ID_Name='TU'"), -5.0, 1e-9);
    EXPECT_NEAR(Value("SELECT Tk FROM CDB_TRANS_2WBAK WHERE ID_Name='T8'"), 0.978, 1e-12);
    EXPECT_NEAR(Value("SELECT Bm FROM CDB_SHIFTBAK WHERE ID_Name='P1'"), -20.0, 1e-9);
    EXPECT_NEAR(Value("SELECT Tk FROM CDB_SHIFTBAK WHERE ID_Name='P1'"), 1.0, 1e-12)
        << "the comma is back: Tk is its own assignment";
    EXPECT_NEAR(Value("SELECT R1 FROM CDB_SHIFTBAK WHERE ID_Name='P2'"), 0.01, 1e-12);
    EXPECT_EQ(Rows("SELECT ROUND(R1,6), ROUND(R2,6), ROUND(Gm,6), ROUND(Tk3,6), Valid FROM "
                   "CDB_TRANS_3WBAK WHERE ID_Name='T3A'"),
              (std::vector<std::string>{"1.21|3.63|4|1|1"}));
    EXPECT_EQ(Rows("SELECT Pd1_MW, Vd1_kV, Type_fadc FROM CDB_DCLINEBAK ORDER BY ID_Name"),
              (std::vector<std::string>{"110|500|7", "50|400|0", "30|0|0"}));
    EXPECT_NEAR(Value("SELECT Pg FROM CDB_GENERATBAK WHERE ID_Name='GU'"), 50.0002, 1e-9);
    EXPECT_NEAR(Value("SELECT Pg FROM CDB_GENERATBAK WHERE ID_Name='G3'"), 0.0, 1e-12);
    EXPECT_EQ(Scalar("SELECT Par_Group FROM CDB_GENERATBAK WHERE ID_Name='G4'"), "0");
    EXPECT_NEAR(Value("SELECT Ql FROM CDB_LOADBAK WHERE ID_Name='DU'"), 5.0002, 1e-9);
    EXPECT_EQ(Rows("SELECT ID_Name, Mode_Ctrl, No_Load FROM CDB_LOADBAK WHERE ID_Name IN "
                   "('D9','D10') ORDER BY ID_Name"),
              (std::vector<std::string>{"D10|0|1", "D9|1|1"}));
    EXPECT_EQ(Rows("SELECT ID_Name, Valid, Lbreak FROM CDB_BREAKERBAK WHERE ID_Name IN "
                   "('K1','K2') UNION ALL SELECT ID_Name, Valid, Lbreak FROM CDB_ISOSWITCHBAK "
                   "WHERE ID_Name='Q2'"),
              (std::vector<std::string>{"K1|1|0", "K2|1|1", "Q2|0|1"}));

    // Orphans in the group, per unit, and the nodes, buses, stations and zones they need.
    EXPECT_EQ(Rows("SELECT GrpName, Unit, Pg, Par_Group FROM CDB_GENERATBAK WHERE ID_Name='GNEW'"),
              (std::vector<std::string>{"NEW|1|0.3|2"}));
    EXPECT_EQ(Rows("SELECT GrpName, Unit, Valid, Name_N, Name_1, Name_2, Name_3, Break_2, R3, "
                   "Tk2 FROM CDB_TRANS_3WBAK WHERE ID_Name='T3NEW'"),
              (std::vector<std::string>{"NEW|1|1|N7|N4|N8|N9|0|0.03|1.05"}));
    EXPECT_EQ(Rows("SELECT GrpName, Unit, Ang_Shift FROM CDB_SHIFTBAK WHERE ID_Name='PNEW'"),
              (std::vector<std::string>{"NEW|1|2"}));
    EXPECT_EQ(Rows("SELECT GrpName, Unit, Tk FROM CDB_TRANS_2WBAK WHERE ID_Name='TNEW'"),
              (std::vector<std::string>{"NEW|1|1.02"}));
    // The shunt's valid flag folds the job's three flags; the series element's owner flag
    // says whether its zone is the I node's (N4 lies in zone 1, its job row says 4).
    EXPECT_EQ(Rows("SELECT GrpName, Valid, Node_Name, X1 FROM CDB_PCAPREABAK WHERE ID_Name='CNEW'"),
              (std::vector<std::string>{"NEW|0|N4|-2"}));
    EXPECT_EQ(Rows("SELECT GrpName, Unit, Owner, X1 FROM CDB_SCAPREABAK WHERE ID_Name='SNEW'"),
              (std::vector<std::string>{"NEW|1|0|-0.3"}));
    EXPECT_EQ(Count("CDB_DATAGROUPBAK WHERE GrpName='NEW'"), 1);
    EXPECT_EQ(Rows("SELECT Bus_Name, Base_kV FROM CDB_NODEBAK WHERE Node_Name='NEWN'"),
              (std::vector<std::string>{"NEWB|110"}));
    EXPECT_EQ(Rows("SELECT PS_Name, Base_kV, HasNode FROM CDB_BUSBAK WHERE Bus_Name='NEWB'"),
              (std::vector<std::string>{"NEWS|110|1"}));
    EXPECT_EQ(Rows("SELECT Zone_No FROM CDB_PSTATIONBAK WHERE PS_Name='NEWS'"),
              (std::vector<std::string>{"9"}));
    EXPECT_EQ(Rows("SELECT Area_No FROM CDB_ZONEBAK WHERE Zone_No=9"),
              (std::vector<std::string>{"0"}));
    EXPECT_EQ(Count("CDB_BUSBAK"), 15) << "only the missing bus is added";

    const auto sent = SentStatements();
    for (const std::string& s : sent) {
        EXPECT_EQ(s.find("*/("), std::string::npos) << s;
        EXPECT_EQ(s.find("a.Bm=b.Bm a.Tk=b.Tk"), std::string::npos) << s;
    }
    EXPECT_TRUE(Sent(sent, "Create index Idtype on Ntype")) << "sent, and its failure ignored";
    EXPECT_TRUE(Sent(sent, "drop table Tswitch"));
    EXPECT_TRUE(Sent(sent, "drop table Tnode"));
}

TEST_F(SaveBackRoad, MendedIntoANewGroupCopiesEveryFamilyAndLeavesTheBaseRows)
{
    ChangeEveryFamily();
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    job.SetStatementMode(SaveStatementMode::Mended);
    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", true), 0);
    EXPECT_EQ(feedback().texts(1).size(), 13u);
    EXPECT_EQ(feedback().texts(1)[11], "回存变化元件总数：13");
    EXPECT_EQ(feedback().texts(2), OrphanWarnings("NEW"));
    EXPECT_EQ(m_base.ModifiedTableTypes(), (std::vector<int>{102, 103, 104, 105, 107, 106, 108, 109,
                                                             110, 112, 120, 12, 116, 101, 117,
                                                             115}));

    // Each changed element: its base row as it was, a copy with the new values in the group,
    // in the base row's unit, with the columns a job does not carry copied where the copy
    // lists them and left to their defaults where it does not.
    auto both = [&](const char* table, const char* columns, const char* name) {
        return Rows(QString("SELECT GrpName, %1 FROM %2 WHERE ID_Name='%3' ORDER BY GrpName")
                        .arg(columns, table, name));
    };
    EXPECT_EQ(both("CDB_SCAPREABAK", "Unit, ROUND(X1,6)", "SC1"),
              (std::vector<std::string>{"G1|0|-12.1", "NEW|0|-13.31"}));
    EXPECT_EQ(both("CDB_TRANS_2WBAK", "Unit, PhyPos, ROUND(Gm,6), Bm, Rate_MVA", "TU"),
              (std::vector<std::string>{"G1|0|3|1|-5|90", "NEW|0|3|2|-5|90"}));
    EXPECT_EQ(both("CDB_SHIFTBAK", "ROUND(Bm,6), Tk, Ang_Shift", "P1"),
              (std::vector<std::string>{"G1|-10|1|5", "NEW|-20|1|0"}))
        << "the copy does not list Ang_Shift";
    EXPECT_EQ(both("CDB_TRANS_3WBAK", "ROUND(R2,6), ROUND(Gm,6), Name_2, Rate_MVA1", "T3A"),
              (std::vector<std::string>{"G1|2.42|3|N8|120", "NEW|3.63|4|N8|120"}))
        << "two changed windings, one copy";
    EXPECT_EQ(both("CDB_DCLINEBAK", "Pd1_MW, Type_fadc", "DC1"),
              (std::vector<std::string>{"G1|100|7", "NEW|110|7"}));
    EXPECT_EQ(both("CDB_GENERATBAK", "Unit, PhyPos, ROUND(Pg,6), Xdp", "GU"),
              (std::vector<std::string>{"G1|0|4|50|0.25", "NEW|0|0|50.0002|0.25"}))
        << "the copy does not list PhyPos";
    EXPECT_EQ(both("CDB_LOADBAK", "PhyPos, ROUND(Ql,6), Load_Model", "DU"),
              (std::vector<std::string>{"G1|6|5|2", "NEW|0|5.0002|2"}));
    EXPECT_EQ(both("CDB_LOADBAK", "Mode_Ctrl", "D9"), (std::vector<std::string>{"G1|0", "NEW|1"}));
    EXPECT_EQ(both("CDB_BREAKERBAK", "Lbreak", "K1"), (std::vector<std::string>{"G1|1", "NEW|0"}));
    EXPECT_EQ(both("CDB_ISOSWITCHBAK", "Valid", "Q2"), (std::vector<std::string>{"G1|1", "NEW|0"}));
    EXPECT_EQ(Count("CDB_ACLINEBAK WHERE GrpName='NEW'"), 1) << "L2 stayed within the tolerance";
    EXPECT_EQ(Count("CDB_DATAGROUPBAK WHERE GrpName='NEW'"), 1);
}

TEST_F(SaveBackRoad, TheFaithfulDefaultStopsWhereTheServerRefusesTheDesignsText)
{
    ChangeEveryFamily();
    StartStatementLog();
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", false), 1);
    EXPECT_EQ(feedback().texts(1),
              (std::vector<std::string>{"回存交流线数目：1", "回存并联电容电抗器数目：1",
                                        "回存串联电容电抗器数目：1"}));
    EXPECT_EQ(m_base.ModifiedTableTypes(), (std::vector<int>{102, 103, 104}));
    const auto errors = feedback().texts(2);
    ASSERT_EQ(errors.size(), 4u) << "three orphan warnings, then the refusal";
    const auto warnings = OrphanWarnings("NEW");
    EXPECT_EQ(std::vector<std::string>(errors.begin(), errors.begin() + 3),
              std::vector<std::string>(warnings.begin(), warnings.begin() + 3));
    EXPECT_EQ(errors[3].rfind("Fail to execute SQL: insert into T2W(eleid,", 0), 0u);
    EXPECT_EQ(Count("CDB_TRANS_2WBAK WHERE ID_Name='TNEW'"), 1) << "saved before the refusal";
    EXPECT_NEAR(Value("SELECT Gm FROM CDB_TRANS_2WBAK WHERE ID_Name='TU'"), 1.0, 1e-12);
    EXPECT_EQ(Count("CDB_DATAGROUPBAK"), 3) << "no group row, no new node";
    EXPECT_EQ(Count("CDB_NODEBAK WHERE Node_Name='NEWN'"), 0);
    DropTemporaryTables(db());

    // The phase shifters alone: their conversion is refused in the same way, after the
    // orphan was saved.
    feedback().clear();
    CLFCalDataTransferFamilies::Prepare(job, "NEW", false);
    EXPECT_EQ(CLFCalDataTransferFamilies::Shifters(job), 1);
    ASSERT_EQ(feedback().texts(2).size(), 2u);
    EXPECT_EQ(feedback().texts(2)[1].rfind("Fail to execute SQL: insert into TShift(eleid,", 0),
              0u);
    EXPECT_NE(feedback().texts(2)[1].find("a.Bm*1.0e6*/(c.Base_kV*c.Base_kV/100.000000)"),
              std::string::npos);
    EXPECT_EQ(Count("CDB_SHIFTBAK WHERE GrpName='NEW'"), 1);

    // What comes after that statement in the shifters and the new nodes is never reached
    // in this mode. Sent as the design writes it through the save-back's exec point, the
    // server refuses each: the missing comma, and `a` named across the comma of a join.
    CSaveBackPattern& pattern = CLFCalDataTransferFamilies::Pattern(job);
    Exec("CREATE TABLE Tnode(node_name char(20) binary)");
    const struct
    {
        QByteArray sql;
        const char* why;
    } refused[] = {
        {FormatText(lfs::SQL_SHIFT_IN_GROUP, "CDB_SHIFT", "BAK", "NEW"), "syntax"},
        {FormatText(lfs::SQL_SHIFT_IN_PLACE, "CDB_SHIFT", "BAK"), "syntax"},
        {FormatText(lfs::SQL_NEW_STATIONS, "CDB_PSTATION", "BAK", 0, "CDB_PSTATION", "BAK"),
         "Unknown column 'a.PS_Name' in 'ON'"},
        {FormatText(lfs::SQL_NEW_ZONES, "CDB_ZONE", "BAK", 0, "CDB_ZONE", "BAK"),
         "Unknown column 'a.Zone_No' in 'ON'"},
    };
    for (const auto& r : refused) {
        QSqlQuery q(*db());
        EXPECT_FALSE(pattern.Exec(q, r.sql)) << r.sql.constData();
        EXPECT_NE(q.lastError().text().indexOf(r.why), -1) << q.lastError().text().toStdString();
        EXPECT_TRUE(feedback().has("Fail to execute SQL: " + r.sql.toStdString(), 2));
    }
    Exec("DROP TABLE Tnode");
}

TEST_F(SaveBackRoad, AGroupRowTheServerRefusesEndsTheRunAtLevelThreeBeforeTheNodes)
{
    ChangeEveryFamily();
    Exec("CREATE TRIGGER no_group BEFORE INSERT ON CDB_DATAGROUPBAK FOR EACH ROW SIGNAL SQLSTATE "
         "'45000' SET MESSAGE_TEXT='no new group'");
    StartStatementLog();
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    job.SetStatementMode(SaveStatementMode::Mended);
    const int result = job.SaveLDataToBaseDB("NEW", false);
    Exec("DROP TRIGGER no_group");
    EXPECT_EQ(result, 1);
    EXPECT_EQ(feedback().texts(3), (std::vector<std::string>{"执行新增数据组 NEW 出错！"}));
    EXPECT_EQ(feedback().texts(1).back(), "回存新增元件总数：10");
    EXPECT_EQ(m_base.ModifiedTableTypes(),
              (std::vector<int>{102, 103, 104, 105, 107, 106, 108, 109, 110, 112, 120}))
        << "the families stay saved and flagged; no group flag, no node flags";
    EXPECT_EQ(Count("CDB_GENERATBAK WHERE ID_Name='GNEW'"), 1) << "the group's rows are in";
    EXPECT_EQ(Count("CDB_NODEBAK WHERE Node_Name='NEWN'"), 0);
    EXPECT_FALSE(Sent(SentStatements(), "create temporary table Tnode"))
        << "SaveL1DataToBaseDB is not reached";
}

TEST_F(SaveBackRoad, ASecondRunSendsTheFirstRunsNodesAgainAndTnodeGoesInBatchesOf200)
{
    // 205 orphan loads on nodes the job does not know, one on a node it knows.
    Exec("INSERT INTO L1_0(Case_No, Node_Name, Bus_Name, Zone_No, PS_Name, Base_kV) VALUES "
         "(0, 'NEWN', 'NEWB', 9, 'NEWS', 110), (0, 'NEWY', 'NEWB', 9, 'NEWS', 110)");
    QString rows;
    for (int k = 1; k <= 205; ++k) {
        rows += QString("(0, %1, 'DX%2', 1, 'X%3', 0.01), ")
                    .arg(80000 + k)
                    .arg(k)
                    .arg(k, 3, 10, QChar('0'));
    }
    Exec("INSERT INTO L6_0(Case_No, EleID, ID_Name, Valid, Node_Name, Pl) VALUES " + rows +
         "(0, 80999, 'DN', 1, 'NEWN', 0.02)");
    StartStatementLog();
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    job.SetStatementMode(SaveStatementMode::Mended);
    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", false), 0);
    EXPECT_TRUE(feedback().has("回存新增元件总数：206", 1));
    EXPECT_EQ(Count("CDB_LOADBAK WHERE GrpName='NEW'"), 206);
    auto tnodeBatches = [&] {
        std::vector<int> batches;
        for (const std::string& s : SentStatements()) {
            if (s.rfind("insert into Tnode(node_name) values", 0) == 0) {
                batches.push_back(static_cast<int>(std::count(s.begin(), s.end(), '\n')));
            }
        }
        return batches;
    };
    EXPECT_EQ(tnodeBatches(), (std::vector<int>{200, 6}));
    EXPECT_EQ(Count("CDB_NODEBAK WHERE Node_Name='NEWN'"), 1);
    EXPECT_EQ(Count("CDB_NODEBAK WHERE Node_Name LIKE 'X%'"), 0) << "not in the job's node table";

    // The same object again, with one new orphan on another node: the names of the first
    // run go into Tnode once more, and no node is added twice.
    Exec("DELETE FROM L6_0 WHERE EleID>80000");
    Exec("INSERT INTO L5_0(Case_No, EleID, ID_Name, Valid, Node_Name, Pg) VALUES "
         "(0, 90001, 'GY', 1, 'NEWY', 0.3)");
    feedback().clear();
    StartStatementLog();
    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", false), 0);
    EXPECT_TRUE(feedback().has("回存新增元件总数：1", 1));
    EXPECT_EQ(tnodeBatches(), (std::vector<int>{200, 7}));
    bool oldNames = false;
    for (const std::string& s : SentStatements()) {
        oldNames |= s.rfind("insert into Tnode(node_name) values", 0) == 0 &&
                    s.find("('X001')") != std::string::npos;
    }
    EXPECT_TRUE(oldNames);
    EXPECT_EQ(Rows("SELECT Node_Name FROM CDB_NODEBAK WHERE Node_Name LIKE 'NEW%' ORDER BY 1"),
              (std::vector<std::string>{"NEWN", "NEWY"}));
}
