// Extraction of a load-flow job from the base database by calculation scheme.

#include "DbTest.h"
#include "SampleNetwork.h"
#include "loadflow/jobdata/LFCalDataTransfer.h"

#include <QFile>
#include <cmath>

using testsupport::DbTest;

namespace {

char kScheme[] = "SCH";

samples::Network Load(const char* file)
{
    samples::Network net;
    QString error;
    EXPECT_TRUE(samples::ReadNetworkJson(QString(CALCDATA_SAMPLES_DIR "/") + file, net, error))
        << error.toStdString();
    return net;
}

} // namespace

class Extraction : public DbTest
{
protected:
    void SetUp() override
    {
        DbTest::SetUp();
        Truncate({"CDB_SBBAK", "CDB_BUSBAK", "CDB_NODEBAK", "CDB_PSTATIONBAK", "CDB_ZONEBAK",
                  "CDB_ACLINEBAK", "CDB_TRANS_2WBAK", "CDB_SHIFTBAK", "CDB_GENERATBAK",
                  "CDB_LOADBAK", "CDB_PCAPREABAK", "CDB_DATAGROUPBAK", "CDB_SCHEMEINFBAK",
                  "CDB_SCHEMECONTBAK", "LF_CASE", "L1_0", "L2_0", "L3_0", "L4_0", "L5_0", "L6_0",
                  "LK_0", "CDB_BREAKERBAK", "CDB_ISOSWITCHBAK"});
        feedback().clear();
    }
};

// The values per unit of both samples, whatever their unit, group and scheme level, are
// those apps.exactness solves to the reference's voltages and flows. Here IEEE 14's counts
// and messages, then what bad input and failing tables make the run say and leave.
TEST_F(Extraction, IeeeFourteenGivesItsCountsAndBadInputOrFailingTablesTheDesignsMessages)
{
    QString error;
    ASSERT_TRUE(samples::WriteNetworkToBaseDb(db(), Load("ieee14.json"), "G1", kScheme, error))
        << error.toStdString();
    CLFCalDataTransfer job(0, kScheme, db(), nullptr);
    EXPECT_EQ(job.ImportLDataFromBaseDB(), 0);

    // 20 branches: 17 lines and 3 transformers; bus 9's capacitor is a shunt row of L2;
    // 14 bus nodes and 5 generator nodes, each in L1; 10 switches, two for each generator
    // (whether breaker or isolating switch, the road's save-back of K1 and Q2 tells).
    EXPECT_EQ(Rows("SELECT Nbus, Ngenerat, Nload, Nacline, Ndcline, Ntrans, (SELECT COUNT(*) "
                   "FROM L1_0), (SELECT COUNT(*) FROM LK_0) FROM LF_CASE WHERE Case_No=0"),
              (std::vector<std::string>{"19|5|11|18|0|3|19|10"}));
    EXPECT_EQ(feedback().texts(1),
              (std::vector<std::string>{"基础库数据抽取开始...", "基础库数据抽取完成。"}));

    // 32 bytes as the design counted them hold a quote, a letter and 15 Chinese characters,
    // and the scheme is found whole (the quote a character like any other); a 16th Chinese
    // character would be cut and pick another scheme or none: refused, and the job tables
    // keep what they hold. Its refusal is the only error since the test began.
    char chinese[] = "O'华北电网二零二五年冬季方式方案", longer[] = "O'华北电网二零二五年冬季方式方案甲";
    Exec("UPDATE CDB_SCHEMEINFBAK SET SchName='O''华北电网二零二五年冬季方式方案'");
    EXPECT_EQ(CLFCalDataTransfer(0, chinese, db(), nullptr).ImportLDataFromBaseDB(), 0);
    EXPECT_EQ(Count("L2_0"), 18); // 17 lines and the shunt of IEEE 14
    EXPECT_EQ(CLFCalDataTransfer(0, longer, db(), nullptr).ImportLDataFromBaseDB(), 1);
    EXPECT_EQ(Count("L2_0"), 18);
    EXPECT_EQ(feedback().texts(2), std::vector<std::string>{"计算方案名 " + std::string(longer) +
                                                            " 超过32字节（汉字按2字节计），无法按"
                                                            "方案抽取，作业表未作任何修改。"});
    Exec(QString("UPDATE CDB_SCHEMEINFBAK SET SchName='%1'").arg(kScheme));
    // A job other than 0 has its LF_CASE row made elsewhere: no row, no update, no word.
    feedback().clear();
    EXPECT_EQ(CLFCalDataTransfer(5, kScheme, db(), nullptr).ImportLDataFromBaseDB(), 0);
    EXPECT_EQ(Count("LF_CASE WHERE Case_No=5"), 0);
    EXPECT_EQ(Rows("SELECT (SELECT COUNT(*) FROM L2_5), COUNT(*) FROM L1_5 WHERE Case_No=5"),
              std::vector<std::string>{"18|19"});
    EXPECT_TRUE(feedback().texts(2).empty());

    // A Unit 0 line owned by a node the base lacks: the owner join drops it, with no word.
    Exec("INSERT INTO CDB_ACLINEBAK(GrpName, ID_Name, Valid, I_Name, J_Name, Unit, R1, X1, "
         "Owner) VALUES ('G1', 'LZ', 1, 'NOWHERE', 'N2', 0, 1, 10, 1)");
    // No LF_CASE: the select fails, the insert is tried all the same and fails, the update
    // fails; three messages, and the run's result is not touched.
    Exec("RENAME TABLE LF_CASE TO LF_CASE_away");
    const int result = job.ImportLDataFromBaseDB();
    Exec("RENAME TABLE LF_CASE_away TO LF_CASE");
    EXPECT_EQ(result, 0);
    EXPECT_EQ(feedback().texts(2), std::vector<std::string>(3, "更新潮流作业表元件个数信息发生错误！"));
    EXPECT_EQ(feedback().texts(1).back(), "基础库数据抽取完成。");
    EXPECT_EQ(Count("L2_0"), 18) << "17 lines and the shunt, without LZ";

    // Job tables of generators and loads that refuse the Unit 1 insert: the statement's own
    // text at level -1, then the message at level 2; the other families still run.
    Exec("ALTER TABLE L5_0 ADD COLUMN extra INT");
    Exec("ALTER TABLE L6_0 ADD COLUMN extra INT");
    feedback().clear();
    const int refused = job.ImportLDataFromBaseDB();
    Exec("ALTER TABLE L5_0 DROP COLUMN extra");
    Exec("ALTER TABLE L6_0 DROP COLUMN extra");
    EXPECT_EQ(refused, 1);
    const auto raw = feedback().texts(-1);
    ASSERT_EQ(raw.size(), 2u);
    EXPECT_EQ(raw[0].rfind("INSERT INTO L5_0 SELECT 0,a.ID,a.ID_Name,a.PhyPos,", 0), 0u);
    EXPECT_EQ(raw[1].rfind("INSERT INTO L6_0 SELECT 0,a.ID,a.ID_Name,a.PhyPos,", 0), 0u);
    EXPECT_EQ(feedback().texts(2), std::vector<std::string>(2, "按计算方案抽取数据发生错误！"));
    EXPECT_EQ(feedback().messages()[1].level, -1) << "the raw text comes first";
    EXPECT_EQ(Count("LK_0"), 10);
}

TEST_F(Extraction, TheThirtyBusCaseInNamedUnitsGivesItsCountsAndTheOwnersZone)
{
    // The 30-bus case at 135 kV, stored in ohms, microsiemens, MW and kV.
    const samples::Network net = Load("ieee30.json");
    QString error;
    ASSERT_TRUE(samples::WriteNetworkToBaseDb(db(), net, "G1", kScheme, error))
        << error.toStdString();
    // Even lines in ohms, odd ones per unit (as apps.exactness solves them from here).
    const double zb = 135.0 * 135.0 / 100.0;
    EXPECT_NEAR(Scalar("SELECT R1 FROM CDB_ACLINEBAK WHERE ID_Name='L2' AND Unit=0").toDouble(),
                net.branches[1].r * zb, 1e-9);
    EXPECT_NEAR(Scalar("SELECT R1 FROM CDB_ACLINEBAK WHERE ID_Name='L1' AND Unit=1").toDouble(),
                net.branches[0].r, 1e-12);

    StartStatementLog();
    CLFCalDataTransfer job(0, kScheme, db(), nullptr);
    EXPECT_EQ(job.ImportLDataFromBaseDB(), 0);
    EXPECT_EQ(Scalar("SELECT Owner FROM L2_0 WHERE ID_Name='L1'"), "1") << "zone of the owner";

    const auto sent = SentStatements();
    EXPECT_NE(std::find(sent.begin(), sent.end(),
                        "UPDATE LF_CASE SET Nbus=36,Ngenerat=6,Nload=20,Nacline=43,Ndcline=0,"
                        "Ntrans=0 WHERE\tCase_No=0"),
              sent.end())
        << "the counts, with the tab before Case_No";
}

TEST_F(Extraction, TheSampleSqlFilesHoldWhatTheWriterMakesOfTheJsonToday)
{
    for (const char* name : {"ieee14", "ieee30"}) {
        SCOPED_TRACE(name);
        const samples::Network net = Load((std::string(name) + ".json").c_str());
        QFile file(QString(CALCDATA_SAMPLES_DIR "/%1.sql").arg(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray saved = file.readAll();
        dbserver::ScratchDatabase fresh(QStringLiteral("samplesql"));
        ASSERT_TRUE(fresh.ok()) << fresh.error().toStdString();
        QString error;
        QByteArray again;
        ASSERT_TRUE(samples::WriteNetworkToBaseDb(fresh.db(), net, "G1", kScheme, error))
            << error.toStdString();
        ASSERT_TRUE(samples::DumpBaseTablesAsSql(fresh.db(), again, error)) << error.toStdString();
        EXPECT_TRUE(saved.endsWith(again))
            << "samples/" << name << ".sql is out of date: make it again with network2sql";
    }
}

TEST_F(Extraction, TheSchemePicksByLevelThenIdAndAThreeWindingGivesRowsWithControlOnOne)
{
    Exec("INSERT INTO CDB_SBBAK(Base_Mva) VALUES (100)");
    Exec("INSERT INTO CDB_SCHEMEINFBAK(ID, SchName) VALUES (1, 'SCH')");
    Exec("INSERT INTO CDB_SCHEMECONTBAK(IDSch, GrpName, Nlever) VALUES (1,'A',1),(1,'B',1),"
         "(1,'L2',2),(1,'L11',11),(1,'K1000',1000),(1,'K200',200)");
    // The node's name holds a quote and a backslash among nine Chinese characters (20 bytes as
    // the design counts them) on its way through Tnode.
    const QString node = "'节点''甲乙丙丁戊己庚\\\\'";
    Exec("INSERT INTO CDB_NODEBAK(Node_Name, Bus_Name, Base_kV) VALUES (" + node + ",'B1',110)");
    Exec("INSERT INTO CDB_BUSBAK(Bus_Name, Base_kV) VALUES ('B1',110)");
    // Same level: ID 9 beats ID 10. Levels 2 and 11: 11. Levels 1000 and 200: 200.
    Exec(QString("INSERT INTO CDB_GENERATBAK(ID, GrpName, ID_Name, Node_Name, Unit, Pg) VALUES "
                 "(9,'A','g1',%1,1,9),(10,'B','g1',%1,1,10),(20,'L2','g2',%1,1,2),"
                 "(21,'L11','g2',%1,1,11),(30,'K1000','g3',%1,1,1000),(31,'K200','g3',%1,1,200),"
                 "(40,'A','g4',%1,2,1),(41,'NONE','g5',%1,1,1)")
             .arg(node));
    Exec("INSERT INTO CDB_BUSBAK(Bus_Name, Base_kV, Zone_No) VALUES ('BN', 220, 4)");
    Exec("INSERT INTO CDB_NODEBAK(Node_Name, Bus_Name, Base_kV) VALUES ('NS','BN',220)");
    // Named units on the star node's 220 kV: Zb = 484 ohm.
    Exec("INSERT INTO CDB_TRANS_3WBAK(GrpName, ID_Name, Valid, Name_1, Name_2, Name_3, Name_N,"
         " ID_No1, ID_No2, ID_No3, Break_1, Break_2, Break_3, Unit, R1, X1, R2, X2, R3, X3, Gm,"
         " Bm, Tk1, Tk2, Tk3, Rate_MVA1, Side_Ctrl, Mode_Ctrl, Par_No, Bus_Ctrl, Line_Ctrl,"
         " Value_Ctrl, TapMax2, TapMin2, Vpos_Tap2, TapMax3) VALUES ('A','T3',1,'NA','NB','NC',"
         "'NS',1,2,3,1,0,1,0,4.84,48.4,9.68,96.8,0,24.2,10,-20,1.05,1.0,0.95,180,2,5,6,'NB',7,"
         "1.02,17,-17,3,9)");
    CLFCalDataTransfer job(0, kScheme, db(), nullptr);
    EXPECT_EQ(job.ImportLDataFromBaseDB(), 0);
    EXPECT_EQ(Rows("SELECT ID_Name, EleID FROM L5_0 ORDER BY ID_Name"),
              (std::vector<std::string>{"g1|9", "g2|21", "g3|31"}))
        << "Unit 2 reaches no job table; a group outside the scheme is not seen";
    EXPECT_EQ(Rows("SELECT Node_Name FROM L1_0 ORDER BY Node_Name"),
              (std::vector<std::string>{"NS", "节点'甲乙丙丁戊己庚\\"}));
    // Per unit: R and X by Zb, Gm and Bm (on the first winding only) times 1e-6 * Zb.
    EXPECT_EQ(Rows("SELECT Ntype, Valid, I_Name, J_Name, ID_No, Owner, Mode_Ctrl, Par_No, "
                   "Bus_Ctrl, Line_Ctrl, TapMax1, TapMax2, TapMin2, Vpos_Tap2, ROUND(R1,12), "
                   "ROUND(X1,12), ROUND(Gm,12), ROUND(Bm,12), ROUND(Tk,12) FROM L3_0 ORDER BY "
                   "Ntype"),
              (std::vector<std::string>{
                  "31|1|NS|NA|1|4|0|0||0|0|0|0|0|0.01|0.1|0.00484|-0.00968|1.05",
                  "32|0|NS|NB|2|4|5|6|NB|7|0|17|-17|3|0.02|0.2|0|0|1",
                  "33|1|NS|NC|3|4|0|0||0|0|9|0|0|0|0.05|0|0|0.95"}));
    EXPECT_EQ(Scalar("SELECT Ntrans FROM LF_CASE WHERE Case_No=0"), "3");

    // A Unit 0 generator on a node the node table lacks is dropped; at Unit 1 it stays.
    Exec("DELETE FROM CDB_TRANS_3WBAK");
    Exec("UPDATE CDB_GENERATBAK SET Node_Name='N9'");
    Exec("UPDATE CDB_GENERATBAK SET Unit=0 WHERE ID=21");
    EXPECT_EQ(job.ImportLDataFromBaseDB(), 0);
    EXPECT_EQ(Rows("SELECT ID_Name FROM L5_0 ORDER BY ID_Name"),
              (std::vector<std::string>{"g1", "g3"}));
    EXPECT_EQ(Scalar("SELECT Nbus FROM LF_CASE WHERE Case_No=0"), "1")
        << "an unknown node is counted, though no L1 row stands for it";
    EXPECT_EQ(Count("L1_0"), 0);
}
