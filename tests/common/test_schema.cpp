// The server settings and the schema under the statements of the library: the session
// set-up and what the lenient sql_mode it leaves lets through that a strict server refuses,
// the column order that positional inserts rely on, the job-table procedures, and the
// table names in either spelling.

#include "DbTest.h"
#include "common/Feedback.h"
#include "common/Session.h"
#include "common/SqlRows.h"

#include <QSqlError>

using testsupport::DbTest;

class ServerSettings : public DbTest
{
protected:
    // Runs a statement on the library's connection, as a transfer would.
    static bool Run(const QString& sql, QString* error = nullptr)
    {
        QSqlQuery q(*db());
        const bool ok = q.exec(sql);
        if (!ok && error) {
            *error = q.lastError().text();
        }
        return ok;
    }
};

TEST_F(ServerSettings, TheSessionSetUpLeavesAModeThatAcceptsWhatAStrictServerRefuses)
{
    // A host's session as strict as MariaDB makes one, with a character set and an engine
    // of its own: the statements the library depends on fail under it.
    const QString global = Scalar("SELECT @@GLOBAL.sql_mode");
    ASSERT_TRUE(Run("SET SESSION sql_mode='TRADITIONAL,ONLY_FULL_GROUP_BY,"
                    "PAD_CHAR_TO_FULL_LENGTH,NO_BACKSLASH_ESCAPES'"));
    ASSERT_TRUE(Run("SET NAMES latin1"));
    ASSERT_TRUE(Run("SET SESSION default_storage_engine=MyISAM"));
    QString error;
    EXPECT_FALSE(
        Run("INSERT INTO CDB_NODEBAK(Node_Name) VALUES('N_123456789012345678901234')", &error));
    EXPECT_TRUE(error.contains("Data too long")) << error.toStdString();
    EXPECT_FALSE(Run("INSERT INTO L5_0(ID_Name, Pg) SELECT 'G1', 1/0"));
    EXPECT_FALSE(Run("SELECT Bus_Name, PS_Name FROM L1_0 GROUP BY Bus_Name", &error));
    EXPECT_TRUE(error.contains("GROUP BY")) << error.toStdString();

    const SessionSetup setup = SetUpSession(db());
    EXPECT_TRUE(setup.ok()) << setup.problems.join('\n').toStdString();
    EXPECT_EQ(setup.changes,
              QStringList({"sql_mode: 'ONLY_FULL_GROUP_BY,NO_BACKSLASH_ESCAPES,STRICT_TRANS_TABLES,"
                           "STRICT_ALL_TABLES,NO_ZERO_IN_DATE,NO_ZERO_DATE,"
                           "ERROR_FOR_DIVISION_BY_ZERO,TRADITIONAL,NO_AUTO_CREATE_USER,"
                           "NO_ENGINE_SUBSTITUTION,PAD_CHAR_TO_FULL_LENGTH' -> "
                           "'NO_BACKSLASH_ESCAPES,NO_ZERO_IN_DATE,NO_ZERO_DATE,"
                           "ERROR_FOR_DIVISION_BY_ZERO,NO_AUTO_CREATE_USER,NO_ENGINE_SUBSTITUTION'",
                           "character set: latin1 -> utf8mb4",
                           "default_storage_engine: MyISAM -> InnoDB"}));
    EXPECT_EQ(setup.lowerCaseTableNames, 1);
    QSqlQuery q(*db());
    ASSERT_TRUE(q.exec("SELECT @@character_set_results, @@default_storage_engine") && q.next());
    EXPECT_EQ(q.value(0).toString() + "|" + q.value(1).toString(), "utf8mb4|InnoDB");
    EXPECT_EQ(Scalar("SELECT @@GLOBAL.sql_mode"), global) << "nothing changes server-wide";
    EXPECT_TRUE(SetUpSession(db()).changes.isEmpty()) << "once set up, nothing to change";
    EXPECT_TRUE(Run("SELECT Bus_Name, PS_Name FROM L1_0 GROUP BY Bus_Name"));

    // A case row made by naming its key alone: every other column takes its default.
    ASSERT_TRUE(Run("INSERT INTO LF_CASE SET Case_No=0 "));
    EXPECT_EQ(Rows("SELECT Case_No, Nbus, Ntrans, SCHEME FROM LF_CASE"),
              (std::vector<std::string>{"0|0|0|"}));

    // Names are cut to their column width of 20 characters, with a warning, not an error.
    ASSERT_TRUE(Run(
        "INSERT INTO CDB_NODEBAK(Node_Name, Bus_Name) "
        "VALUES('N_123456789012345678901234', '一二三四五六七八九十一二三四五六七八九十一二')"));
    EXPECT_EQ(Rows("SELECT Node_Name, CHAR_LENGTH(Bus_Name), LENGTH(Bus_Name) FROM CDB_NODEBAK"),
              (std::vector<std::string>{"N_123456789012345678|20|60"}))
        << "a width counts characters: twenty Chinese characters are kept, 60 bytes in UTF-8";

    // An orphan-style insert-select names some columns only; the others take defaults
    // (here PhyPos, Unit, and the stability columns of the shunt table).
    Exec("CREATE TABLE orphans (ID_Name CHAR(20) BINARY, Valid INT, I_Name CHAR(20) BINARY)");
    Exec("INSERT INTO orphans VALUES ('C1', 1, 'N1')");
    ASSERT_TRUE(Run("insert into CDB_PCAPREABAK(GrpName, ID_Name, Valid, Node_Name) "
                    "select 'G', a.ID_Name, a.Valid, a.I_Name from orphans a"));
    EXPECT_EQ(Rows("SELECT ID_Name, Node_Name, Unit, R0, Type FROM CDB_PCAPREABAK"),
              (std::vector<std::string>{"C1|N1|0|0|"}));

    // A division by zero inside an insert-select stores NULL instead of failing.
    ASSERT_TRUE(Run("INSERT INTO L5_0(ID_Name, Pg) SELECT 'G0', 1/0"));
    EXPECT_EQ(Scalar("SELECT COUNT(*) FROM L5_0 WHERE ID_Name='G0' AND Pg IS NULL"), "1");

    ASSERT_TRUE(Run("SET SESSION sql_mode=@@GLOBAL.sql_mode"));
    EXPECT_TRUE(SetUpSession(db()).ok());
}

TEST_F(ServerSettings, PositionalInsertsLineUpWithTheJobTablesOfANewJob)
{
    Exec("CALL create_lf_job_tables(42)");
    Exec("CALL create_st_job_tables(42)");
    for (const char* t :
         {"L1_42", "L2_42", "L3_42", "L4_42", "L5_42", "L6_42", "LK_42", "S2_42", "S7_42"}) {
        EXPECT_EQ(Count(t), 0) << t;
    }
    Exec("INSERT INTO CDB_GENERATBAK(ID, GrpName, ID_Name, PhyPos, Valid, Node_Name, Mode_Ctrl, "
         "Unit, Pg, Qg, V0, Angle, Qmax, Qmin, Pmax, Pmin, Par_Group, Bus_Ctrl, Line_Ctrl, "
         "Value_Ctrl) VALUES (7, 'g', 'GEN1', 3, 1, 'N1', 2, 0, 50, 20, 110, 5, 40, -30, 80, 10, "
         "4, 'BC', 6, 1.5)");
    Exec("INSERT INTO CDB_NODEBAK(Node_Name, Bus_Name, Base_kV) VALUES ('N1', 'B1', 110)");
    Exec("CREATE TEMPORARY TABLE tmp (ID int unsigned, INDEX(ID))");
    Exec("INSERT INTO tmp VALUES (7)");
    // The generator statement of extraction, as the library sends it, on a base of 100 MVA
    // and through the mixed-case node table name of the load statement.
    QSqlQuery q(checker());
    ASSERT_TRUE(q.exec(
        "INSERT INTO L5_42 SELECT 42,a.ID,a.ID_Name,a.PhyPos,a.Valid,a.Node_Name,a.Mode_Ctrl,"
        "a.Pg/100.000000,a.Qg/100.000000,a.V0/c.Base_kV,a.Angle,a.Qmax/100.000000, "
        "a.Qmin/100.000000,a.Pmax/100.000000,a.Pmin/100.000000,a.Par_Group,a.Bus_Ctrl,"
        "a.Line_Ctrl,a.Value_Ctrl FROM CDB_GENERATBAK a,tmp,CDB_NodeBAK c WHERE a.ID=tmp.ID AND "
        "a.Node_Name=c.Node_Name AND a.Unit=0 "))
        << q.lastError().text().toStdString();
    EXPECT_EQ(
        Rows("SELECT Case_No, EleID, ID_Name, PhyPos, Valid, Node_Name, Mode_Ctrl, Pg, Qg, "
             "V0, Angle, Qmax, Qmin, Pmax, Pmin, Par_Group, Bus_Ctrl, Line_Ctrl, Value_Ctrl "
             "FROM L5_42"),
        (std::vector<std::string>{"42|7|GEN1|3|1|N1|2|0.5|0.2|1|5|0.4|-0.3|0.8|0.1|4|BC|6|1.5"}));
}

TEST_F(ServerSettings, BothSpellingsOfATableNameReachTheSameTable)
{
    QSqlQuery q(*db());
    ASSERT_TRUE(q.exec("Create temporary Table T3W select 1 as eleid, 31 as Ntype"));
    ASSERT_TRUE(q.exec("update T3w b set b.Ntype=32"));
    ASSERT_TRUE(q.exec("select Ntype from T3W") && q.next());
    EXPECT_EQ(q.value(0).toInt(), 32);
    Exec("INSERT INTO CDB_NODEBAK(Node_Name) VALUES ('N9')");
    EXPECT_EQ(Count("CDB_NodeBAK WHERE Node_Name='N9'"), 1);
    EXPECT_EQ(Count("s4_5"), 0) << "the lower-case stability table name of one statement";

    // A server that compares table names by case needs the schema's spelling: the three
    // names of another spelling go out as the schema writes them, whole words outside
    // quotes only; by default everything goes as written.
    const QByteArray written = "update CDB_TRANS_3WBAK a, T3w b set a.Name_2='T3w s4_7' where "
                               "b.x=`T3w` FROM s4_17,CDB_NodeBAK c,xs4_1,s4_1x,T3wx,"
                               "CDB_NodeBAKS,CDB_NODEBAK";
    EXPECT_EQ(InTableSpelling(written), written);
    SetTableSpelling(TableSpelling::Schema);
    EXPECT_EQ(InTableSpelling(written).toStdString(),
              "update CDB_TRANS_3WBAK a, T3W b set a.Name_2='T3w s4_7' where b.x=`T3w` FROM "
              "S4_17,CDB_NODEBAK c,xs4_1,s4_1x,T3wx,CDB_NodeBAKS,CDB_NODEBAK");
    StartStatementLog();
    EXPECT_TRUE(ExecStatement(q, "update T3w b set b.Ntype=33"));
    CSqlRows rows;
    EXPECT_TRUE(rows.exec(q, "SELECT COUNT(*) FROM CDB_NodeBAK"));
    SetTableSpelling(TableSpelling::AsWritten);
    EXPECT_EQ(SentStatements(), (std::vector<std::string>{"update T3W b set b.Ntype=33",
                                                          "SELECT COUNT(*) FROM CDB_NODEBAK"}));
}
