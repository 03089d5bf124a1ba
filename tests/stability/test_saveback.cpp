// Save-back of a changed stability job into the working copies and data groups.

#include "Faults.h"
#include "StabilityNetwork.h"
#include "TableSnapshots.h"
#include "common/Feedback.h"
#include "common/RunGuard.h"
#include "common/SaveBackStatements.h"
#include "platform/CDatabase.h"
#include "stability/jobdata/STCalDataTransfer.h"

#include <QCoreApplication>
#include <QSqlError>
#include <QSqlQuery>
#include <QSysInfo>

using namespace sttest;

class SaveBack : public StabilityTest
{
protected:
    void SetUp() override
    {
        StabilityTest::SetUp();
        if (HasFatalFailure() || IsSkipped()) {
            return;
        }
        ASSERT_EQ(CSTCalDataTransfer(kJob, kCaseLF, db(), nullptr).ImportSDataFromBaseDB(), 0);
        feedback().clear();
    }
    // One row of every family changed beyond the tolerance: L1 (per unit), the shunt and
    // the series capacitor (ohms), T1, P1, all three windings of W3, a compared DC column
    // (and DC_Model, which is not compared), the generator's model, the load's model, and
    // an SVC (never saved).
    static void ChangeEveryFamily()
    {
        Exec("UPDATE S2_7 SET R0=R0+0.01 WHERE ID_Name='L1'");
        Exec("UPDATE S2_7 SET X0=X0+0.5 WHERE ID_Name='C1'");
        Exec("UPDATE S2_7 SET X0=X0-0.01 WHERE ID_Name='S1'");
        Exec("UPDATE S3_7 SET X0=X0+0.01 WHERE ID_Name='T1'");
        Exec("UPDATE S3_7 SET R0=R0+0.01 WHERE ID_Name='P1'");
        Exec("UPDATE S3_7 SET R0=R0+0.01 WHERE ID_Name='W3'");
        Exec("UPDATE S4_7 SET Tdo=0.75, DC_Model=9");
        Exec("UPDATE S5_7 SET Gen_Model=7");
        Exec("UPDATE S6_7 SET Load_Model=4");
        Exec("UPDATE S7_7 SET X_Fixed=11");
    }
    static double Base(const QString& table, const QString& column, const QString& name,
                       const QString& group = "G")
    {
        return Value(QString("SELECT %1 FROM %2 WHERE ID_Name='%3' AND GrpName='%4'")
                         .arg(column, table, name, group));
    }
    static void DropTemporaries()
    {
        QSqlQuery(*db()).exec("DROP TEMPORARY TABLE IF EXISTS Tac, TPCR, TSCR, T2W, TShift, "
                              "T3W, Tdc, TGen");
    }
    CDatabase m_base;
};

TEST_F(SaveBack, NothingIsSavedUpToOneThousandthAndChangesBeyondItAre)
{
    // Unchanged, nothing is saved either way. Named rows compare in their own units after
    // the conversion by L1_5 (true base voltages); by L1_7 (1 kV) every one would count.
    for (bool newGroup : {false, true}) {
        feedback().clear();
        EXPECT_EQ(
            CSTCalDataTransfer(kJob, kCaseLF, db(), &m_base).SaveSDataToBaseDB("NEW", newGroup), 0);
        EXPECT_EQ(feedback().texts(1), (std::vector<std::string>{"回存元件总数：0"}));
        EXPECT_TRUE(feedback().texts(2).empty());
    }
    EXPECT_TRUE(m_base.ModifiedTableTypes().empty());
    EXPECT_EQ(Count("CDB_DATAGROUPBAK WHERE GrpName='NEW'"), 0);

    // L1 per unit; L2 in ohms at 220 kV, so a job change of d/484 is d ohm in the base.
    // (The server would divide the literals in decimals: the values come from here.)
    auto setL2X0 = [](double ohmsAbove) {
        Exec(QString("UPDATE S2_7 SET X0=%1 WHERE ID_Name='L2'")
                 .arg(0.1 + ohmsAbove / 484, 0, 'g', 17));
    };
    Exec("UPDATE S2_7 SET R0=0.2509 WHERE ID_Name='L1'");
    setL2X0(0.0009);
    StartStatementLog();
    CSTCalDataTransfer below(kJob, kCaseLF, db(), &m_base);
    EXPECT_EQ(below.SaveSDataToBaseDB("NEW", false), 0);
    EXPECT_EQ(below.Nacline, 0) << "0.0009 is within the tolerance 0.001";
    EXPECT_DOUBLE_EQ(Base("CDB_ACLINEBAK", "R0", "L1"), 0.25);
    // The tolerance stands with six decimals; the named rows join the load-flow case's L1_5.
    const std::string unit0 = SentStartingWith("insert into Tac(");
    EXPECT_NE(unit0.find("from S2_7 a, CDB_ACLINEBAK b, L1_5 c where"), std::string::npos);
    EXPECT_NE(unit0.find("-b.X0)>0.001000 or"), std::string::npos);

    Exec("UPDATE S2_7 SET R0=0.2511 WHERE ID_Name='L1'");
    setL2X0(0.0011);
    CSTCalDataTransfer above(kJob, kCaseLF, db(), &m_base);
    EXPECT_EQ(above.SaveSDataToBaseDB("NEW", false), 0);
    EXPECT_EQ(above.Nacline, 2);
    EXPECT_NEAR(Base("CDB_ACLINEBAK", "R0", "L1"), 0.2511, 1e-12);
    EXPECT_NEAR(Base("CDB_ACLINEBAK", "X0", "L2"), 48.4 + 0.0011, 1e-9);
    EXPECT_NEAR(Base("CDB_ACLINEBAK", "B0_Half", "L2"), 100, 1e-9) << "back to microsiemens";
    EXPECT_EQ(feedback().texts(1),
              (std::vector<std::string>{"回存元件总数：0", "回存元件总数：0", "回存交流线数目：2",
                                        "回存元件总数：2"}));
    EXPECT_EQ(m_base.ModifiedTableTypes(), (std::vector<int>{102}));
}

TEST_F(SaveBack, InPlaceEveryFamilySavesItsStabilityColumnsAndSvcsNever)
{
    ChangeEveryFamily();
    // Named rows go back in ohms at their I node's base voltage, 220 kV (Zb = 484 ohm):
    // T3 (two-winding), P2 (phase shifter), winding 3 of W1.
    Exec("UPDATE S3_7 SET X0=X0+0.01 WHERE ID_Name='T3'");
    Exec("UPDATE S3_7 SET R0=R0+0.001 WHERE ID_Name='P2'");
    Exec("UPDATE S3_7 SET X0=X0+0.01 WHERE ID_Name='W1' AND Ntype=33");
    StartStatementLog();
    CSTCalDataTransfer job(kJob, kCaseLF, db(), &m_base);
    ASSERT_EQ(job.SaveSDataToBaseDB("NEW", false), 0);

    EXPECT_EQ(feedback().texts(1),
              (std::vector<std::string>{"回存交流线数目：1", "回存并联电容电抗器数目：1",
                                        "回存串联电容电抗器数目：1", "回存两绕组变压器数目：2",
                                        "回存移相变压器数目：2", "回存三绕组变压器数目：4",
                                        "回存直连线数目：1", "回存发电机数目：1", "回存负荷数目：1",
                                        "回存元件总数：14"}));
    EXPECT_TRUE(feedback().texts(2).empty());
    EXPECT_EQ(m_base.ModifiedTableTypes(),
              (std::vector<int>{102, 103, 104, 105, 107, 106, 108, 109, 110}));
    EXPECT_EQ(job.Nacline, 3);
    EXPECT_EQ(job.Ntrans, 8) << "T1, T3, P1, P2 and four windings";
    EXPECT_EQ(job.Nsvc, 0);

    EXPECT_NEAR(Base("CDB_ACLINEBAK", "R0", "L1"), 0.26, 1e-12);
    EXPECT_NEAR(Base("CDB_PCAPREABAK", "X0", "C1"), 20.5 * 121, 1e-9);
    EXPECT_NEAR(Base("CDB_SCAPREABAK", "X0", "S1"), -0.21 * 484, 1e-9);
    EXPECT_NEAR(Base("CDB_TRANS_2WBAK", "X0", "T1"), 0.05, 1e-12);
    EXPECT_NEAR(Base("CDB_SHIFTBAK", "R0", "P1"), 0.013, 1e-12);
    EXPECT_NEAR(Base("CDB_TRANS_2WBAK", "X0", "T3"), 0.05 * 484, 1e-9);
    EXPECT_NEAR(Base("CDB_TRANS_2WBAK", "R0", "T3"), 0.968, 1e-9) << "unchanged";
    EXPECT_NEAR(Base("CDB_SHIFTBAK", "R0", "P2"), 0.002 * 484, 1e-9);
    EXPECT_NEAR(Base("CDB_SHIFTBAK", "X0", "P2"), 9.68, 1e-9);
    EXPECT_EQ(Rows("SELECT CONCAT_WS('|', R10, X10, X30) FROM CDB_TRANS_3WBAK WHERE ID_Name='W1'"),
              (std::vector<std::string>{"4.84|48.4|101.64"}));
    EXPECT_EQ(Rows("SELECT CONCAT_WS('|', R10, R20, R30, Name_1, Name_2, Name_3, ID_No1, ID_No3) "
                   "FROM CDB_TRANS_3WBAK WHERE ID_Name='W3'"),
              (std::vector<std::string>{"0.02|0.03|0.04|N2|N3|N4|4|6"}));
    EXPECT_EQ(Rows("SELECT CONCAT_WS('|', Tdo, DC_Model) FROM CDB_DCLINEBAK"),
              (std::vector<std::string>{"0.75|2"}))
        << "only the ten compared DC columns go back";
    EXPECT_EQ(Scalar("SELECT Gen_Model FROM CDB_GENERATBAK"), "7");
    EXPECT_EQ(Scalar("SELECT Load_Model FROM CDB_LOADBAK"), "4");
    EXPECT_EQ(Scalar("SELECT X_Fixed FROM CDB_SVCBAK WHERE ID_Name='V1'"), "1210");
    EXPECT_EQ(Scalar("SHOW TABLES LIKE 'TLoad'"), "") << "dropped at the end";
    EXPECT_EQ(Count("CDB_DATAGROUPBAK WHERE GrpName='NEW'"), 0);
    // The index statement names no table: sent, refused, and of no consequence.
    const auto sent = SentStatements();
    EXPECT_EQ(std::count(sent.begin(), sent.end(), "Create index Idtype on Ntype"), 1);
}

TEST_F(SaveBack, FaithfulCopiesIntoANewGroupThatTheServerRefuses)
{
    // One changed row at a time in each family whose copy names a column twice (1110) or
    // has a value more than columns (1136): the run stops there with nothing saved.
    const struct
    {
        const char* change;
        const char* copyHead;
        const char* serverError;
    } families[] = {
        {"UPDATE S2_7 SET R0=R0+0.01 WHERE ID_Name='L1'",
         "insert into CDB_ACLINEBAK(GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, Valid,I_Break,",
         "1110"},
        {"UPDATE S2_7 SET X0=X0+0.5 WHERE ID_Name='C1'",
         "insert into CDB_PCAPREABAK(GrpName, ID_Name,Valid, Node_Name, ID_No,Valid, Unit, R0, "
         "X0, R0, X0,",
         "1110"},
        {"UPDATE S2_7 SET X0=X0-0.01 WHERE ID_Name='S1'",
         "insert into CDB_SCAPREABAK(GrpName, ID_Name, PhyPos,Valid, I_Name, J_Name, ID_No, "
         "Valid,",
         "1110"},
        {"UPDATE S3_7 SET X0=X0+0.01 WHERE ID_Name='T1'",
         "insert into CDB_TRANS_2WBAK(GrpName, ID_Name, PhyPos,Valid, I_Name, J_Name, ID_No, "
         "Valid,",
         "1110"},
        {"UPDATE S4_7 SET Tdo=0.75",
         "insert into CDB_DCLINEBAK(GrpName, ID_Name, I_Name, J_Name, ID_No, Owner,Valid,", "1136"},
    };
    for (const auto& f : families) {
        SCOPED_TRACE(f.copyHead);
        ASSERT_EQ(CSTCalDataTransfer(kJob, kCaseLF, db(), nullptr).ImportSDataFromBaseDB(), 0);
        Exec(f.change);
        feedback().clear();
        m_base.ClearModifiedTableTypes();
        CSTCalDataTransfer job(kJob, kCaseLF, db(), &m_base);
        EXPECT_EQ(job.StatementMode(), SaveStatementMode::Faithful);
        EXPECT_EQ(job.SaveSDataToBaseDB("NEW", true), 1);
        const auto errors = feedback().texts(2);
        ASSERT_EQ(errors.size(), 1u);
        const std::string prefix = "Fail to execute SQL: ";
        EXPECT_EQ(errors[0].rfind(prefix + f.copyHead, 0), 0u) << errors[0];
        EXPECT_TRUE(feedback().texts(1).empty()) << "no family message, no total";
        EXPECT_TRUE(m_base.ModifiedTableTypes().empty());
        EXPECT_EQ(Count("CDB_DATAGROUPBAK WHERE GrpName='NEW'"), 0);
        // What the server says to the same text, on the connection that holds T.
        QSqlQuery q(*db());
        EXPECT_FALSE(q.exec(QString::fromStdString(errors[0].substr(prefix.size()))));
        EXPECT_EQ(q.lastError().nativeErrorCode().toStdString(), f.serverError);
        DropTemporaries(); // the failed family's table stays on the connection
    }
    const int copies =
        Count("CDB_ACLINEBAK WHERE GrpName='NEW'") + Count("CDB_PCAPREABAK WHERE GrpName='NEW'") +
        Count("CDB_SCAPREABAK WHERE GrpName='NEW'") + Count("CDB_TRANS_2WBAK WHERE GrpName='NEW'") +
        Count("CDB_DCLINEBAK WHERE GrpName='NEW'");
    EXPECT_EQ(copies, 0);

    // Left in place, the failed family's table makes the next run on the connection fail
    // at its create.
    Exec("UPDATE S2_7 SET R0=R0+0.01 WHERE ID_Name='L1'");
    CSTCalDataTransfer first(kJob, kCaseLF, db(), nullptr);
    EXPECT_EQ(first.SaveSDataToBaseDB("NEW", true), 1);
    feedback().clear();
    CSTCalDataTransfer second(kJob, kCaseLF, db(), nullptr);
    EXPECT_EQ(second.SaveSDataToBaseDB("NEW", false), 1);
    ASSERT_EQ(feedback().texts(2).size(), 1u);
    EXPECT_EQ(feedback().texts(2)[0].rfind("Fail to execute SQL: Create temporary Table Tac", 0),
              0u);
}

TEST_F(SaveBack, FaithfulRunIntoAGroupKeepsTheFamiliesBeforeTheRefusedDcCopy)
{
    Exec("UPDATE S3_7 SET R0=R0+0.01 WHERE ID_Name='P1'");
    Exec("UPDATE S3_7 SET R0=R0+0.01 WHERE ID_Name='W3'");
    Exec("UPDATE S4_7 SET Tdo=0.75");
    CSTCalDataTransfer job(kJob, kCaseLF, db(), &m_base);
    EXPECT_EQ(job.SaveSDataToBaseDB("NEW", true), 1);

    EXPECT_EQ(feedback().texts(1),
              (std::vector<std::string>{"回存移相变压器数目：1", "回存三绕组变压器数目：3"}));
    EXPECT_EQ(m_base.ModifiedTableTypes(), (std::vector<int>{107, 106}));
    EXPECT_EQ(Count("CDB_DATAGROUPBAK WHERE GrpName='NEW'"), 0) << "no group row after a failure";
    // The copies stand in NEW with the job's values; the source rows are as they were. The
    // shifter's copy names no Ang_Shift.
    EXPECT_NEAR(Base("CDB_SHIFTBAK", "R0", "P1", "NEW"), 0.013, 1e-12);
    EXPECT_NEAR(Base("CDB_SHIFTBAK", "R0", "P1"), 0.003, 1e-12);
    EXPECT_EQ(Base("CDB_SHIFTBAK", "Ang_Shift", "P1", "NEW"), 0.0);
    EXPECT_EQ(Rows("SELECT CONCAT_WS('|', R10, R20, R30, Name_N, Zero_Conn2) FROM "
                   "CDB_TRANS_3WBAK WHERE GrpName='NEW'"),
              (std::vector<std::string>{"0.02|0.03|0.04|NS|IG"}))
        << "one copy of the transformer, every winding updated";
    EXPECT_EQ(Count("CDB_DCLINEBAK WHERE GrpName='NEW'"), 0);
}

TEST_F(SaveBack, FaithfulRunIntoAGroupCompletesWhenOnlyModelsChanged)
{
    Exec("UPDATE S5_7 SET Xdp=Xdp+0.002, PSS_Par=9");
    Exec("UPDATE S6_7 SET Load_Par=8");
    CSTCalDataTransfer job(kJob, kCaseLF, db(), &m_base);
    // The group's row refused: level 3 and 1, after the element rows and their flags.
    Exec("CREATE TRIGGER no_group BEFORE INSERT ON CDB_DATAGROUPBAK FOR EACH ROW SIGNAL "
         "SQLSTATE '45000' SET MESSAGE_TEXT='no group'");
    const int refused = job.SaveSDataToBaseDB("组二", true);
    Exec("DROP TRIGGER no_group");
    EXPECT_EQ(refused, 1);
    EXPECT_EQ(feedback().texts(3), (std::vector<std::string>{"执行新增数据组 组二 出错！"}));
    EXPECT_TRUE(feedback().texts(2).empty());
    EXPECT_EQ(m_base.ModifiedTableTypes(), (std::vector<int>{109, 110}));
    EXPECT_EQ(Count("CDB_GENERATBAK WHERE GrpName='组二'"), 1);
    feedback().clear();
    m_base.ClearModifiedTableTypes();

    EXPECT_EQ(job.SaveSDataToBaseDB("组一", true), 0);
    EXPECT_EQ(feedback().texts(1), (std::vector<std::string>{"回存发电机数目：1", "回存负荷数目：1",
                                                             "回存元件总数：2"}));
    EXPECT_EQ(m_base.ModifiedTableTypes(), (std::vector<int>{109, 110, 12}));
    EXPECT_EQ(Count("CDB_DATAGROUPBAK WHERE GrpName='组一'"), 1);
    EXPECT_EQ(Rows("SELECT CONCAT_WS('|', Node_Name, Pg, Valid, Gen_Model, PSS_Par, Xdp) FROM "
                   "CDB_GENERATBAK WHERE GrpName='组一'"),
              (std::vector<std::string>{"N1|1|1|6|9|0.302"}));
    EXPECT_EQ(Rows("SELECT CONCAT_WS('|', Node_Name, No_Load, Pl, Load_Model, Load_Par, Z_Percent) "
                   "FROM CDB_LOADBAK WHERE GrpName='组一'"),
              (std::vector<std::string>{"N3|2|0.5|3|8|12.7"}));
    EXPECT_EQ(Scalar("SELECT PSS_Par FROM CDB_GENERATBAK WHERE GrpName='G'"), "6");
}

// A group's name of 20 bytes as the design counted them, with a quote and a backslash: the
// copy, its update and the group's row carry it whole. One byte more is refused before
// anything is written; in place the name is never written and is not looked at.
TEST_F(SaveBack, AGroupNameOfTwentyBytesWithAQuoteAndABackslashNamesItsOwnRows)
{
    Exec("UPDATE S5_7 SET Gen_Model=7");
    CSTCalDataTransfer job(kJob, kCaseLF, db(), &m_base);
    const QString group = QString::fromUtf8("O'Neil\\1华北电网调度");
    EXPECT_EQ(job.SaveSDataToBaseDB(group, true), 0);
    EXPECT_TRUE(feedback().texts(2).empty());
    EXPECT_EQ(Rows("SELECT GrpName FROM CDB_DATAGROUPBAK WHERE GrpName LIKE 'O''N%'"),
              (std::vector<std::string>{group.toStdString()}));
    EXPECT_EQ(Rows("SELECT CONCAT_WS('|', GrpName, Gen_Model) FROM CDB_GENERATBAK WHERE "
                   "GrpName LIKE 'O''N%'"),
              (std::vector<std::string>{group.toStdString() + "|7"}));
    EXPECT_EQ(Scalar("SELECT Gen_Model FROM CDB_GENERATBAK WHERE GrpName='G'"), "6");

    const auto checksums = testsupport::BaseChecksums(checker());
    EXPECT_EQ(job.SaveSDataToBaseDB(group + "A", true), 1);
    EXPECT_EQ(feedback().texts(2), std::vector<std::string>{"数据组名 " + group.toStdString() +
                                                            "A 超过20字节（汉字按2字节计），数据组"
                                                            "中存不下，回存未执行，基础库未作任何"
                                                            "修改。"});
    EXPECT_EQ(testsupport::BaseChecksums(checker()), checksums);
    EXPECT_EQ(job.SaveSDataToBaseDB(group + "A", false), 0);
    EXPECT_EQ(Scalar("SELECT Gen_Model FROM CDB_GENERATBAK WHERE GrpName='G'"), "7");
}

TEST_F(SaveBack, MendedRunIntoAGroupSavesEveryFamily)
{
    ChangeEveryFamily();
    StartStatementLog();
    CSTCalDataTransfer job(kJob, kCaseLF, db(), &m_base);
    job.SetStatementMode(SaveStatementMode::Mended);
    ASSERT_EQ(job.SaveSDataToBaseDB("NEW", true), 0);
    EXPECT_TRUE(feedback().texts(2).empty());
    EXPECT_EQ(feedback().texts(1).back(), "回存元件总数：11");
    EXPECT_EQ(m_base.ModifiedTableTypes(),
              (std::vector<int>{102, 103, 104, 105, 107, 106, 108, 109, 110, 12}));
    EXPECT_EQ(Count("CDB_DATAGROUPBAK WHERE GrpName='NEW'"), 1);

    // Each copy keeps its source row's values, the changed ones from the job.
    EXPECT_EQ(Rows("SELECT CONCAT_WS('|', Valid, I_Name, ID_No, Unit, R1, R0, X0, Type, Rate_Ka) "
                   "FROM CDB_ACLINEBAK WHERE GrpName='NEW'"),
              (std::vector<std::string>{"1|N1|1|1|0.01|0.26|0.75|LGJ|1.2"}));
    EXPECT_EQ(Rows("SELECT CONCAT_WS('|', Valid, Node_Name, ID_No, R1, X1, R0, X0, Rate_Capa) "
                   "FROM CDB_PCAPREABAK WHERE GrpName='NEW'"),
              (std::vector<std::string>{"1|N3|1|12.1|1210|0|2480.5|30"}))
        << "each column its own value, the positive-sequence pair kept";
    EXPECT_EQ(Rows("SELECT CONCAT_WS('|', PhyPos, Valid, I_Name, J_Name, R1, X1, R0, Owner) FROM "
                   "CDB_SCAPREABAK WHERE GrpName='NEW'"),
              (std::vector<std::string>{"3|1|N1|N2|0.242|-48.4|0.484|1"}));
    EXPECT_NEAR(Base("CDB_SCAPREABAK", "X0", "S1", "NEW"), -0.21 * 484, 1e-9);
    EXPECT_EQ(Rows("SELECT CONCAT_WS('|', Valid, I_Name, J_Name, Unit, X1, Tk, Zero_Conn, R0, X0) "
                   "FROM CDB_TRANS_2WBAK WHERE GrpName='NEW'"),
              (std::vector<std::string>{"1|N1|N3|1|0.05|1|IG|0.002|0.05"}));
    EXPECT_EQ(Rows("SELECT CONCAT_WS('|', ID_Name, I_Name, J_Name, ID_No, Owner, Valid, Rpi_Ohm, "
                   "OP_Mode, DC_Model, reg_set, Ireg_fon, Tdo, N_rs, V_rs_Perc) FROM "
                   "CDB_DCLINEBAK WHERE GrpName='NEW'"),
              (std::vector<std::string>{"DC1|N1|N4|1|1|1|2.5|3|2|1.5|7|0.75|4|80"}))
        << "every value in its own column";
    EXPECT_EQ(Scalar("SELECT Gen_Model FROM CDB_GENERATBAK WHERE GrpName='NEW'"), "7");
    EXPECT_EQ(Scalar("SELECT Load_Model FROM CDB_LOADBAK WHERE GrpName='NEW'"), "4");
    EXPECT_EQ(Count("CDB_SVCBAK WHERE GrpName='NEW'"), 0);
    // The source rows of group G stay as they were.
    EXPECT_DOUBLE_EQ(Base("CDB_ACLINEBAK", "R0", "L1"), 0.25);
    EXPECT_DOUBLE_EQ(Base("CDB_DCLINEBAK", "Tdo", "DC1"), 0.5);

    // The updates in the group go as designed; the mended DC copy names the group once.
    const auto sent = SentStatements();
    auto has = [&](const std::string& s) {
        return std::find(sent.begin(), sent.end(), s) != sent.end();
    };
    EXPECT_TRUE(has("update CDB_ACLINEBAK a, Tac b set a.R0=b.R0, a.X0=b.X0, a.B0_Half=b.B0_Half "
                    "where a.GrpName='NEW' and a.ID_Name=b.ID_Name"));
    EXPECT_TRUE(has("update CDB_TRANS_3WBAK a, T3w b set a.Name_2=b.J_Name, ID_No2=b.ID_No, "
                    "a.R20=b.R0, a.X20=b.X0 where a.ID_Name=b.ID_Name and a.GrpName='NEW' and "
                    "b.Ntype=32"));
    EXPECT_NE(SentStartingWith("insert into CDB_DCLINEBAK(GrpName, ID_Name,")
                  .find("select 'NEW', a.ID_Name, a.I_Name,"),
              std::string::npos);
}

TEST_F(SaveBack, AFailureInTheLoadsLeavesTLoadAndTheNextRunsFailUntilItIsDropped)
{
    // The load's copy into the group refused (a column it names taken away): TLoad stays.
    Exec("ALTER TABLE CDB_LOADBAK CHANGE No_Load No_Load_Away INT");
    Exec("UPDATE S6_7 SET Load_Model=4");
    CSTCalDataTransfer job(kJob, kCaseLF, db(), &m_base);
    const int refused = job.SaveSDataToBaseDB("NEW", true);
    Exec("ALTER TABLE CDB_LOADBAK CHANGE No_Load_Away No_Load INT");
    EXPECT_EQ(refused, 1);
    EXPECT_EQ(Scalar("SHOW TABLES LIKE 'TLoad'").toLower(), "tload");

    // Every run after fails at its create, in place too.
    for (int run = 0; run < 2; ++run) {
        feedback().clear();
        CSTCalDataTransfer again(kJob, kCaseLF, db(), nullptr);
        EXPECT_EQ(again.SaveSDataToBaseDB("NEW", false), 1);
        ASSERT_EQ(feedback().texts(2).size(), 1u);
        EXPECT_EQ(feedback().texts(2)[0].rfind("Fail to execute SQL: Create Table TLoad select", 0),
                  0u);
        EXPECT_EQ(feedback().texts(1), (std::vector<std::string>{})) << "nothing else changed";
    }
    EXPECT_EQ(Scalar("SELECT Load_Model FROM CDB_LOADBAK"), "3");
    Exec("DROP TABLE TLoad");
    feedback().clear();
    CSTCalDataTransfer fixed(kJob, kCaseLF, db(), nullptr);
    EXPECT_EQ(fixed.SaveSDataToBaseDB("NEW", false), 0);
    EXPECT_EQ(Scalar("SELECT Load_Model FROM CDB_LOADBAK"), "4");
    EXPECT_EQ(feedback().texts(1),
              (std::vector<std::string>{"回存负荷数目：1", "回存元件总数：1"}));
}

// With the guard of a shared database: TLoad held by another run makes the save-back say once
// for whom it waits and give up having written nothing; let go, the run saves; held by a
// connection that is gone, it is taken over at once; a new group whose name exists is refused.
TEST_F(SaveBack, WithTheGuardATLoadHeldByAnotherRunIsWaitedForAndADeadHoldersIsTakenOver)
{
    Exec("UPDATE S6_7 SET Load_Model=4");
    QSqlDatabase other = scratch().openSecondConnection("tload_holder");
    unsigned long holderId = 0;
    ASSERT_TRUE(ConnectionId(&other, &holderId));
    auto holder = std::make_unique<CRunGuard>(&other, 0);
    ASSERT_TRUE(holder->Take({runguard::WorkTable("TLoad")}));

    const QString holderText = QString("主机 %1 上进程 %2 的连接 %3")
                                   .arg(QSysInfo::machineHostName())
                                   .arg(QCoreApplication::applicationPid())
                                   .arg(holderId);
    const QString node = Scalar("SELECT CONCAT(@@hostname, ':', @@port)");
    const QString who = holderText + "（节点 " + node + "）";
    CSTCalDataTransfer job(kJob, kCaseLF, db(), nullptr);
    job.SetRunGuard(1);
    EXPECT_EQ(job.SaveSDataToBaseDB("NEW", false), 1);
    EXPECT_EQ(feedback().texts(1),
              (std::vector<std::string>{
                  ("工作表 TLoad 正由" + who + "使用，等待其完成，至多 1 秒……").toStdString()}));
    const std::string refusal =
        ("等待 1 秒后工作表 TLoad仍由" + who + "使用，本次运行未写入任何数据。").toStdString();
    EXPECT_EQ(feedback().texts(2), (std::vector<std::string>{refusal}));
    EXPECT_EQ(job.RunGuardRefusal().toStdString(), refusal);
    EXPECT_EQ(Scalar("SELECT Load_Model FROM CDB_LOADBAK"), "3");
    EXPECT_EQ(Scalar("SHOW TABLES LIKE 'TLoad'"), "");

    holder->Release();
    feedback().clear();
    EXPECT_EQ(job.SaveSDataToBaseDB("NEW", false), 0);
    EXPECT_EQ(Scalar("SELECT Load_Model FROM CDB_LOADBAK"), "4");
    EXPECT_EQ(Scalar("SELECT COUNT(*) FROM CALC_LEASE"), "0");

    // The holder's connection drops with its lease held (its guard's own connections stay).
    ASSERT_TRUE(holder->Take({runguard::WorkTable("TLoad")}));
    other.close();
    Exec("UPDATE S6_7 SET Load_Model=5");
    feedback().clear();
    job.SetRunGuard(0);
    EXPECT_EQ(job.SaveSDataToBaseDB("NEW", false), 0);
    EXPECT_EQ(feedback().texts(1)[0], ("工作表 TLoad 的持有者（" + holderText + "，节点 " + node +
                                       "）已不在，由本次运行接手。")
                                          .toStdString());
    EXPECT_EQ(Scalar("SELECT Load_Model FROM CDB_LOADBAK"), "5");

    feedback().clear();
    EXPECT_EQ(job.SaveSDataToBaseDB("G", true), 1);
    EXPECT_EQ(feedback().texts(2),
              (std::vector<std::string>{
                  "数据组 G 已存在（已由其他运行新建），本次新建数据组的回存未写入任何数据。"}));
    holder.reset();
}

// ---- The save-back's preview and its all-or-nothing option ----

namespace {

const std::vector<const char*> kWorkingCopies = {
    "CDB_ACLINEBAK", "CDB_PCAPREABAK",  "CDB_SCAPREABAK",  "CDB_TRANS_2WBAK",
    "CDB_SHIFTBAK",  "CDB_TRANS_3WBAK", "CDB_DCLINEBAK",   "CDB_GENERATBAK",
    "CDB_LOADBAK",   "CDB_SVCBAK",      "CDB_DATAGROUPBAK"};
const std::vector<const char*> kWorkTables = {"Tac", "TPCR", "TSCR", "T2W",  "TShift",
                                              "T3W", "Tdc",  "TGen", "TLoad"};

} // namespace

class SaveBackOptions : public SaveBack
{
protected:
    static testsupport::Snapshot Take() { return testsupport::Take(checker(), kWorkingCopies); }
    // Every table of the database, job tables and TLoad included.
    static std::map<std::string, std::string> Checksums()
    {
        return testsupport::Checksums(checker(), testsupport::TablesLike(checker(), "%"));
    }
    static std::vector<std::string> TablesLeft()
    {
        return testsupport::TablesLeft(db(), kWorkTables);
    }
};

TEST_F(SaveBackOptions, APreviewTellsRowForRowWhatTheSaveBackThenWritesAndChangesNothing)
{
    using namespace testsupport;
    ChangeEveryFamily();
    const Snapshot before = Take();
    const auto sums = Checksums();
    CSTCalDataTransfer job(kJob, kCaseLF, db(), &m_base);
    const SaveBackPreview preview = job.PreviewSDataToBaseDB("NEW", false);
    EXPECT_EQ(preview.result, 0) << preview.Report().toStdString();
    EXPECT_EQ(Checksums(), sums) << "no table of the database changed";
    EXPECT_TRUE(m_base.ModifiedTableTypes().empty());
    EXPECT_TRUE(feedback().messages().empty());
    EXPECT_EQ(TablesLeft(), std::vector<std::string>{}) << "TLoad, made and dropped, too";
    EXPECT_EQ(job.Nacline, 0) << "the transfer's counts stay as they were";
    EXPECT_EQ(preview.ChangedElements(), 9) << "W3 once, although its three windings count";
    EXPECT_TRUE(preview.additions.empty());

    EXPECT_EQ(job.SaveSDataToBaseDB("NEW", false), 0);
    std::vector<std::string> changes, added;
    Diff(before, Take(), changes, added);
    EXPECT_EQ(PreviewChanges(preview), changes);
    EXPECT_EQ(added, std::vector<std::string>{});
    EXPECT_EQ(preview.flags, m_base.ModifiedTableTypes());
    EXPECT_EQ(Texts(preview.messages), Texts(feedback().messages()));

    // Into a new group, mended: each change is the value of the element's copy in the group.
    SetUp();
    ChangeEveryFamily();
    const Snapshot start = Take();
    CSTCalDataTransfer copies(kJob, kCaseLF, db(), &m_base);
    copies.SetStatementMode(SaveStatementMode::Mended);
    const SaveBackPreview group = copies.PreviewSDataToBaseDB("NEW", true);
    EXPECT_EQ(group.result, 0) << group.Report().toStdString();
    EXPECT_EQ(PreviewAdditions(group), std::vector<std::string>{"CDB_DATAGROUPBAK|NEW"});
    EXPECT_EQ(copies.SaveSDataToBaseDB("NEW", true), 0);
    changes.clear();
    added.clear();
    Diff(start, Take(), changes, added);
    EXPECT_EQ(changes, std::vector<std::string>{}) << "the source rows stay as they were";
    std::vector<std::string> expected = PreviewAdditions(group);
    for (const SaveBackChange& c : group.changes) {
        expected.push_back((c.family + '|' + c.element).toStdString());
        EXPECT_EQ(Scalar(QString("SELECT %1 FROM %2 WHERE GrpName='NEW' AND ID_Name='%3'")
                             .arg(c.field, c.family, c.element)),
                  c.newValue.toString())
            << c.family.toStdString() << ' ' << c.element.toStdString();
    }
    std::sort(expected.begin(), expected.end());
    expected.erase(std::unique(expected.begin(), expected.end()), expected.end());
    EXPECT_EQ(added, expected) << "one copy of each changed element and the group's row";
    EXPECT_EQ(Texts(group.messages), Texts(feedback().messages()));
}

TEST_F(SaveBackOptions, AFaithfulPreviewIntoAGroupStopsAtTheRefusedCopyWithItsReason)
{
    using namespace testsupport;
    Exec("UPDATE S3_7 SET R0=R0+0.01 WHERE ID_Name='P1'");
    Exec("UPDATE S4_7 SET Tdo=0.75");
    const auto sums = Checksums();
    CSTCalDataTransfer job(kJob, kCaseLF, db(), &m_base);
    const SaveBackPreview preview = job.PreviewSDataToBaseDB("NEW", true);
    EXPECT_EQ(preview.result, 1);
    EXPECT_EQ(Checksums(), sums);
    EXPECT_EQ(TablesLeft(), std::vector<std::string>{}) << "Tdc too, where the run stopped";
    ASSERT_FALSE(preview.messages.empty());
    const SaveBackMessage& stop = preview.messages.back();
    EXPECT_EQ(stop.text.toStdString().rfind("Fail to execute SQL: insert into CDB_DCLINEBAK(", 0),
              0u);
    EXPECT_TRUE(stop.why.contains("不符"))
        << "a value more than columns: " << stop.why.toStdString();
    ASSERT_EQ(preview.changes.size(), 1u) << "the shifter's copy; nothing of the refused DC line's";
    const SaveBackChange& shifter = preview.changes[0];
    EXPECT_EQ((shifter.family + '|' + shifter.element + '|' + shifter.field).toStdString(),
              "CDB_SHIFTBAK|P1|R0");
    EXPECT_DOUBLE_EQ(shifter.baseValue.toDouble(), 0.003);
    EXPECT_NEAR(shifter.newValue.toDouble(), 0.013, 1e-12);

    EXPECT_EQ(job.SaveSDataToBaseDB("NEW", true), 1);
    EXPECT_EQ(Texts(preview.messages), Texts(feedback().messages()));
    EXPECT_EQ(preview.flags, m_base.ModifiedTableTypes());
    EXPECT_EQ(Scalar("SELECT R0 FROM CDB_SHIFTBAK WHERE GrpName='NEW'"),
              preview.changes.at(0).newValue.toString());
}

TEST_F(SaveBackOptions, AllOrNothingWithARefusedLateFamilyLeavesEveryTableAsItWas)
{
    using namespace testsupport;
    ChangeEveryFamily();
    const auto sums = Checksums();
    const std::string nothingSaved = sbo::MSG_NOTHING_SAVED;

    // The loads, the last family that writes, refused by the server in the mended mode.
    Exec("CREATE TRIGGER no_load BEFORE UPDATE ON CDB_LOADBAK FOR EACH ROW SIGNAL SQLSTATE "
         "'45000' SET MESSAGE_TEXT='no load'");
    CSTCalDataTransfer job(kJob, kCaseLF, db(), &m_base);
    job.SetStatementMode(SaveStatementMode::Mended);
    job.SetAllOrNothing(true);
    EXPECT_EQ(job.SaveSDataToBaseDB("NEW", false), 1);
    Exec("DROP TRIGGER no_load");
    EXPECT_EQ(Checksums(), sums) << "the eight families before are undone; no TLoad is left";
    EXPECT_TRUE(m_base.ModifiedTableTypes().empty());
    EXPECT_EQ(feedback().texts(1).size(), 8u) << "the families before counted, as shown";
    const auto errors = feedback().texts(2);
    ASSERT_EQ(errors.size(), 2u);
    EXPECT_EQ(errors[0].rfind("Fail to execute SQL: update CDB_LOADBAK", 0), 0u) << errors[0];
    EXPECT_EQ(errors[1], nothingSaved);
    EXPECT_EQ(TablesLeft(), std::vector<std::string>{});

    // The faithful copy of the DC line into a group, refused after the shifter's and the
    // three-winding transformer's copies.
    SetUp();
    Exec("UPDATE S3_7 SET R0=R0+0.01 WHERE ID_Name='P1'");
    Exec("UPDATE S3_7 SET R0=R0+0.01 WHERE ID_Name='W3'");
    Exec("UPDATE S4_7 SET Tdo=0.75");
    const auto start = Checksums();
    m_base.ClearModifiedTableTypes();
    CSTCalDataTransfer faithful(kJob, kCaseLF, db(), &m_base);
    faithful.SetAllOrNothing(true);
    EXPECT_EQ(faithful.SaveSDataToBaseDB("NEW", true), 1);
    EXPECT_EQ(feedback().texts(1),
              (std::vector<std::string>{"回存移相变压器数目：1", "回存三绕组变压器数目：3"}));
    EXPECT_EQ(Checksums(), start);
    EXPECT_TRUE(m_base.ModifiedTableTypes().empty());
    EXPECT_EQ(feedback().messages().back().text, nothingSaved);
    EXPECT_EQ(TablesLeft(), std::vector<std::string>{});
}

TEST_F(SaveBackOptions, AllOrNothingEqualsTheOrdinarySaveBackAndFlagsAfterTheCommit)
{
    using namespace testsupport;
    ChangeEveryFamily();
    CSTCalDataTransfer ordinary(kJob, kCaseLF, db(), &m_base);
    ordinary.SetStatementMode(SaveStatementMode::Mended);
    EXPECT_EQ(ordinary.SaveSDataToBaseDB("NEW", true), 0);
    const SaveBackOutcome ordinaryRun = Outcome(checker(), kWorkingCopies, m_base);

    SetUp(); // the same network and changes again
    ChangeEveryFamily();
    CommitWatch watch(db());
    CSTCalDataTransfer whole(kJob, kCaseLF, db(), &watch);
    whole.SetStatementMode(SaveStatementMode::Mended);
    whole.SetAllOrNothing(true);
    EXPECT_EQ(whole.SaveSDataToBaseDB("NEW", true), 0);
    ExpectSameOutcomeFlaggedAfterCommit(Outcome(checker(), kWorkingCopies, watch),
                                        watch.inTransaction, ordinaryRun);
    EXPECT_EQ(TablesLeft(), std::vector<std::string>{});
    EXPECT_EQ(whole.Ntrans, ordinary.Ntrans);
}
