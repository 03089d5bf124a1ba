// The base-database, case and job-table lookups against the real tables, with the
// names a user may type: quotes, non-ASCII, empty.

#include "DbTest.h"
#include "common/BaseDbLookups.h"

#include <QtGlobal>

using testsupport::DbTest;

namespace {
std::vector<std::string> warnings;
void catchWarnings(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtWarningMsg) {
        warnings.push_back(text.toStdString());
    }
}
char LF_CASE_TABLE[] = "LF_CASE";
char ST_CASE_TABLE[] = "ST_CASE";
} // namespace

class Lookups : public DbTest
{
protected:
    void SetUp() override
    {
        DbTest::SetUp();
        warnings.clear();
        previous = qInstallMessageHandler(catchWarnings);
    }
    void TearDown() override { qInstallMessageHandler(previous); }
    QtMessageHandler previous = nullptr;
};

TEST_F(Lookups, BasePowerAndBaseVoltages)
{
    Truncate({"CDB_SBBAK", "CDB_NODEBAK", "CDB_BUSBAK"});
    EXPECT_EQ(GetSB_FromDB(db()), 1.0) << "an empty table reads as 1.0";
    Exec("INSERT INTO CDB_SBBAK VALUES (250.5)");
    EXPECT_EQ(GetSB_FromDB(db()), 250.5);

    Exec("INSERT INTO CDB_BUSBAK(Bus_Name, Base_kV) VALUES ('B220', 220), ('母线', 35)");
    Exec("INSERT INTO CDB_NODEBAK(Node_Name, Bus_Name) VALUES ('N1', 'B220'), ('节点', '母线')");
    EXPECT_EQ(GetBasekV_FromDB(db(), "节点", false), 35.0);
    EXPECT_TRUE(feedback().messages().empty()) << "none, also for the empty table above";

    // The bus form's text runs the table name into WHERE: it never finds the bus.
    StartStatementLog();
    EXPECT_EQ(GetBasekV_FromDB(db(), "B220", true), 1.0);
    EXPECT_EQ(SentStatements(),
              (std::vector<std::string>{"SELECT Base_kV FROM CDB_BUSBAKWHERE Bus_Name = 'B220'"}));
    EXPECT_EQ(GetBasekV_FromDB(db(), "无此节点", false), 1.0);
    EXPECT_EQ(feedback().texts(2),
              (std::vector<std::string>{"查询母线基准电压发生错误", "查询节点基准电压发生错误"}));
}

TEST_F(Lookups, CaseNumbersAndNames)
{
    Exec("INSERT INTO LF_CASE(Case_No, Case_Name) VALUES (0, 'work'), (3, '夏季大方式'), (4, '')");
    StartStatementLog();
    EXPECT_EQ(GetCase_NoByCase_Name(LF_CASE_TABLE, db(), QString()), -1); // and sends nothing
    EXPECT_EQ(GetCase_NoByCase_Name(LF_CASE_TABLE, db(), "夏季大方式"), 3);
    EXPECT_EQ(GetCase_NoByCase_Name(LF_CASE_TABLE, db(), ""), 4) << "an empty name is asked for";
    EXPECT_EQ(GetCase_NoByCase_Name(LF_CASE_TABLE, db(), "it's"), -1)
        << "a quote is part of the name asked for";
    EXPECT_EQ(warnings, std::vector<std::string>{"查询作业号出现错误：作业表中没有该作业！"});
    const auto sent = SentStatements();
    ASSERT_EQ(sent.size(), 3u);
    EXPECT_EQ(sent[0], "SELECT Case_No FROM LF_CASE WHERE Case_Name='夏季大方式'");

    warnings.clear();
    EXPECT_TRUE(GetCase_NameByCase_No(LF_CASE_TABLE, db(), 0).isNull()) << "job 0 has no name";
    EXPECT_EQ(GetCase_NameByCase_No(LF_CASE_TABLE, db(), 3), "夏季大方式");
    const QString missing = GetCase_NameByCase_No(LF_CASE_TABLE, db(), 9);
    EXPECT_TRUE(missing.isEmpty() && !missing.isNull());
    EXPECT_EQ(GetCase_NameByCase_No(ST_CASE_TABLE, db(), 3), "");
    EXPECT_EQ(warnings.size(), 2u);

    EXPECT_EQ((std::vector<int>{GetSDataCase_No(0), GetSDataCase_No(4), GetSDataCase_No(5),
                                GetSDataCase_No(-7)}),
              (std::vector<int>{1, 1, 2, 0})) << "-7: truncation towards zero";
}

TEST_F(Lookups, TransformerTypesAndStabilityOutputFlags)
{
    Exec("INSERT INTO L3_2(ID_Name, I_Name, J_Name, Ntype) VALUES ('T1', 'STAR', 'N2', 32)");
    char id[] = "T1", star[] = "STAR", n2[] = "N2";
    EXPECT_EQ(GetTransNType(2, db(), id, star, n2), 32);
    EXPECT_EQ(GetTransNType(2, db(), id, n2, star), -1) << "the ends swapped";
    EXPECT_EQ(warnings, std::vector<std::string>{"查询变压器类型出现错误！"});

    Exec("INSERT INTO ST_OUT(Case_No, AnaFunc, Fault_120, Variable) VALUES (1, 2, 0, 1)");
    EXPECT_EQ((std::vector<bool>{IsSTVarOut(db(), 1), IsSTAnaOut(db(), 1), IsSTABC120Out(db(), 1),
                                 IsSTVarOut(db(), 2)}),
              (std::vector<bool>{true, true, false, false})) << "no row for case 2";
}
