// The session set-up of the library's connections, which lets through the statements a
// strict session refuses, and the table names in either spelling.

#include "DbTest.h"
#include "common/Feedback.h"
#include "common/Session.h"
#include "common/SqlRows.h"

using testsupport::DbTest;

class ServerSettings : public DbTest
{
protected:
    // Runs a statement on the library's connection, as a transfer would.
    static bool Run(const QString& sql) { return QSqlQuery(*db()).exec(sql); }
};

TEST_F(ServerSettings, TheSessionSetUpLeavesAModeThatAcceptsWhatAStrictServerRefuses)
{
    // A host's session as strict as MariaDB makes one, with a character set and an engine
    // of its own (the server refuses the statements below under it).
    const QString global = Scalar("SELECT @@GLOBAL.sql_mode");
    ASSERT_TRUE(Run("SET SESSION sql_mode='TRADITIONAL,ONLY_FULL_GROUP_BY,"
                    "PAD_CHAR_TO_FULL_LENGTH,NO_BACKSLASH_ESCAPES'"));
    ASSERT_TRUE(Run("SET NAMES latin1"));
    ASSERT_TRUE(Run("SET SESSION default_storage_engine=MyISAM"));

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
    // The same statements pass now: a name cut to its width of 20 characters (twenty
    // Chinese ones kept, 60 bytes in UTF-8), a division by zero stored as NULL.
    EXPECT_TRUE(Run("SELECT Bus_Name, PS_Name FROM L1_0 GROUP BY Bus_Name"));
    ASSERT_TRUE(Run(
        "INSERT INTO CDB_NODEBAK(Node_Name, Bus_Name) "
        "VALUES('N_123456789012345678901234', '一二三四五六七八九十一二三四五六七八九十一二')"));
    EXPECT_EQ(Rows("SELECT Node_Name, CHAR_LENGTH(Bus_Name), LENGTH(Bus_Name) FROM CDB_NODEBAK"),
              (std::vector<std::string>{"N_123456789012345678|20|60"}));
    ASSERT_TRUE(Run("INSERT INTO L5_0(ID_Name, Pg) SELECT 'G0', 1/0"));
    EXPECT_EQ(Count("L5_0 WHERE ID_Name='G0' AND Pg IS NULL"), 1);
}

TEST_F(ServerSettings, TheSchemasSpellingOfATableNameGoesOutWhereTheServerComparesByCase)
{
    QSqlQuery q(*db());
    ASSERT_TRUE(q.exec("Create temporary Table T3W select 1 as eleid, 31 as Ntype"));
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
