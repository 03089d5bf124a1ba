// The save-back's two options: the preview, which must tell exactly what the save-back then
// writes and change nothing itself, and the all-or-nothing run, which must leave every base
// table as it was when anything fails and equal the ordinary save-back when nothing does.

#include "Faults.h"
#include "SaveBackRoad.h"
#include "TableSnapshots.h"
#include "common/SaveBackPattern.h"
#include "common/SaveBackStatements.h"

#include <QSqlError>
#include <QSqlRecord>
#include <QStringList>
#include <map>
#include <set>

using namespace testsupport;

namespace {

// The work tables of the save-back.
const std::vector<const char*> kWorkTables = {"Tac", "TPCR", "TSCR",  "T2W",  "TShift",  "T3W",
                                              "Tdc", "TGen", "TLoad", "TBrk", "Tswitch", "Tnode"};

} // namespace

class SaveBackOptions : public SaveBackRoad
{
protected:
    static Snapshot Take() { return testsupport::Take(checker(), kWorkingCopies); }

    // CHECKSUM TABLE of every table of the database, read on the second connection.
    static std::map<std::string, std::string> Checksums()
    {
        auto sums = testsupport::Checksums(checker(), TablesLike(checker(), "%"));
        EXPECT_GT(sums.size(), 100u);
        return sums;
    }

    // The save-back's work tables that stand on the library's connection.
    static std::vector<std::string> TablesLeft()
    {
        return testsupport::TablesLeft(db(), kWorkTables);
    }

    static int InTransaction()
    {
        QSqlQuery q(*db());
        return q.exec("SELECT @@in_transaction") && q.next() ? q.value(0).toInt() : -1;
    }
};

TEST_F(SaveBackOptions, APreviewTellsRowForRowWhatTheSaveBackThenWritesAndChangesNothing)
{
    ChangeEveryFamily();
    const Snapshot before = Take();
    const auto sums = Checksums();
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    job.SetStatementMode(SaveStatementMode::Mended);

    const SaveBackPreview preview = job.PreviewLDataToBaseDB("NEW", false);
    EXPECT_EQ(preview.result, 0) << preview.Report().toStdString();
    EXPECT_TRUE(preview.refused.isEmpty());
    EXPECT_EQ(Checksums(), sums) << "no table of the database changed";
    EXPECT_TRUE(m_base.ModifiedTableTypes().empty()) << "no flag raised";
    EXPECT_TRUE(feedback().messages().empty()) << "the save-back's messages are kept, not shown";
    EXPECT_EQ(TablesLeft(), std::vector<std::string>{});
    EXPECT_EQ(job.Nacline, 0) << "the transfer's counts stay as they were";

    // The orphans, and the node, bus, station and zone that the orphan generator's new node
    // needs; the group's row since orphans go into it.
    std::vector<std::string> orphans;
    for (const SaveBackAddition& a : preview.additions) {
        if (a.orphan) {
            orphans.push_back((a.table + '|' + a.name).toStdString());
        }
    }
    EXPECT_EQ(Sorted(orphans),
              (std::vector<std::string>{"CDB_BREAKERBAK|KNEW", "CDB_DCLINEBAK|DCNEW",
                                        "CDB_GENERATBAK|GNEW", "CDB_ISOSWITCHBAK|QNEW",
                                        "CDB_LOADBAK|DNEW", "CDB_PCAPREABAK|CNEW",
                                        "CDB_SCAPREABAK|SNEW", "CDB_SHIFTBAK|PNEW",
                                        "CDB_TRANS_2WBAK|TNEW", "CDB_TRANS_3WBAK|T3NEW"}));
    ASSERT_EQ(preview.AdditionsTo("CDB_NODEBAK").size(), 1u);
    const SaveBackAddition node = preview.AdditionsTo("CDB_NODEBAK")[0];
    EXPECT_EQ(node.name, "NEWN");
    EXPECT_EQ(node.values[node.columns.indexOf("Bus_Name")].toString(), "NEWB");
    EXPECT_EQ(preview.AdditionsTo("CDB_BUSBAK").size(), 1u);
    EXPECT_EQ(preview.AdditionsTo("CDB_BUSBAK")[0].name, "NEWB");
    EXPECT_EQ(preview.AdditionsTo("CDB_PSTATIONBAK")[0].name, "NEWS");
    EXPECT_EQ(preview.AdditionsTo("CDB_ZONEBAK")[0].name, "9");
    EXPECT_EQ(preview.AdditionsTo("CDB_DATAGROUPBAK")[0].name, "NEW");
    EXPECT_EQ(preview.ChangedElements(), 12) << "the design counts T3A's two windings as two";
    EXPECT_EQ(preview.changes.size(), 13u);

    // Values in the base row's unit: the generator stored in MW.
    bool seen = false;
    for (const SaveBackChange& c : preview.changes) {
        if (c.element == "GU" && c.field.toLower() == "pg") {
            EXPECT_DOUBLE_EQ(c.baseValue.toDouble(), 50.0);
            EXPECT_NEAR(c.newValue.toDouble(), 50.0002, 1e-9);
            seen = true;
        }
    }
    EXPECT_TRUE(seen);
    const QString report = preview.Report();
    EXPECT_TRUE(report.contains("变化元件 12 个、数值 13 项")) << report.toStdString();
    EXPECT_TRUE(report.contains("新增 CDB_NODEBAK 1 行")) << report.toStdString();

    // The save-back itself, on the same object: it writes what the preview listed and
    // nothing else, raises the flags and shows the messages that the preview gave.
    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", false), 0);
    std::vector<std::string> changes, added;
    Diff(before, Take(), changes, added);
    EXPECT_EQ(PreviewChanges(preview), changes);
    EXPECT_EQ(PreviewAdditions(preview), added);
    EXPECT_EQ(preview.flags, m_base.ModifiedTableTypes());
    EXPECT_EQ(Texts(preview.messages), Texts(feedback().messages()));
}

TEST_F(SaveBackOptions, APreviewIntoANewGroupListsTheValuesOfTheCopies)
{
    ChangeEveryFamily();
    const Snapshot before = Take();
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    job.SetStatementMode(SaveStatementMode::Mended);
    const SaveBackPreview preview = job.PreviewLDataToBaseDB("NEW", true);
    EXPECT_EQ(preview.result, 0) << preview.Report().toStdString();
    EXPECT_TRUE(preview.newGroup);
    EXPECT_TRUE(preview.Report().startsWith("回存预览：变化存入数据组 NEW"));
    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", true), 0);

    // Nothing that stood changed; the group holds one copy of each changed element with the
    // preview's values, and the preview's additions.
    std::vector<std::string> changes, added;
    const Snapshot after = Take();
    Diff(before, after, changes, added);
    EXPECT_EQ(changes, std::vector<std::string>{});
    std::set<std::string> copies;
    for (const SaveBackChange& c : preview.changes) {
        copies.insert((c.family + '|' + c.element).toStdString());
        EXPECT_EQ(Scalar(QString("SELECT %1 FROM %2 WHERE GrpName='NEW' AND ID_Name='%3'")
                             .arg(c.field, c.family, c.element)),
                  c.newValue.toString())
            << c.family.toStdString() << ' ' << c.element.toStdString();
    }
    std::vector<std::string> expected = PreviewAdditions(preview);
    expected.insert(expected.end(), copies.begin(), copies.end());
    EXPECT_EQ(added, Sorted(expected));
    EXPECT_EQ(preview.flags, m_base.ModifiedTableTypes());
    EXPECT_EQ(Texts(preview.messages), Texts(feedback().messages()));
}

TEST_F(SaveBackOptions, AFaithfulPreviewStopsWhereTheSaveBackStopsAndLeavesNoTableBehind)
{
    ChangeEveryFamily();
    const Snapshot before = Take();
    const auto sums = Checksums();
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    const SaveBackPreview preview = job.PreviewLDataToBaseDB("NEW", false);
    EXPECT_EQ(preview.result, 1);
    EXPECT_EQ(Checksums(), sums);
    EXPECT_EQ(TablesLeft(), std::vector<std::string>{}) << "T2W too, where the run stopped";
    ASSERT_FALSE(preview.messages.empty());
    EXPECT_EQ(preview.messages.back().text.toStdString().rfind(
                  "Fail to execute SQL: insert into T2W(eleid,", 0),
              0u);
    EXPECT_FALSE(preview.messages.back().why.isEmpty()) << "the server's reason";

    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", false), 1);
    EXPECT_EQ(TablesLeft(), std::vector<std::string>{"T2W"}) << "the save-back's, as designed";
    DropTemporaryTables(db());
    std::vector<std::string> changes, added;
    Diff(before, Take(), changes, added);
    EXPECT_EQ(changes.size(), 3u);
    EXPECT_EQ(PreviewChanges(preview), changes) << "the three families before the stop";
    EXPECT_EQ(PreviewAdditions(preview), added);
    EXPECT_EQ(preview.flags, m_base.ModifiedTableTypes());
    EXPECT_EQ(Texts(preview.messages), Texts(feedback().messages()));
}

TEST_F(SaveBackOptions, APreviewInsideTheCallersTransactionLeavesItOpenAndItsWorkUncommitted)
{
    ChangeEveryFamily();
    ASSERT_TRUE(QSqlQuery(*db()).exec("START TRANSACTION"));
    ASSERT_TRUE(QSqlQuery(*db()).exec("UPDATE CDB_ZONEBAK SET Area_No=77"));
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    job.SetStatementMode(SaveStatementMode::Mended);
    const SaveBackPreview preview = job.PreviewLDataToBaseDB("NEW", false);
    EXPECT_EQ(preview.result, 0) << preview.Report().toStdString();
    EXPECT_EQ(InTransaction(), 1);
    ASSERT_TRUE(QSqlQuery(*db()).exec("ROLLBACK"));
    EXPECT_EQ(Count("CDB_ZONEBAK WHERE Area_No=77"), 0);
    EXPECT_EQ(TablesLeft(), std::vector<std::string>{});
}

TEST_F(SaveBackOptions, AllOrNothingEqualsTheOrdinarySaveBackAndFlagsAfterTheCommit)
{
    ChangeEveryFamily();
    CLFCalDataTransfer ordinary(0, kScheme, db(), &m_base);
    ordinary.SetStatementMode(SaveStatementMode::Mended);
    EXPECT_EQ(ordinary.SaveLDataToBaseDB("NEW", true), 0);
    const SaveBackOutcome ordinaryRun = Outcome(checker(), kWorkingCopies, m_base);

    SetUp(); // the same network and changes again
    ChangeEveryFamily();
    CommitWatch watch(db());
    StartStatementLog();
    CLFCalDataTransfer whole(0, kScheme, db(), &watch);
    whole.SetStatementMode(SaveStatementMode::Mended);
    whole.SetAllOrNothing(true);
    EXPECT_EQ(whole.SaveLDataToBaseDB("NEW", true), 0);
    ExpectSameOutcomeFlaggedAfterCommit(Outcome(checker(), kWorkingCopies, watch),
                                        watch.inTransaction, ordinaryRun);
    EXPECT_EQ(TablesLeft(), std::vector<std::string>{});
    EXPECT_EQ(whole.Nacline, ordinary.Nacline);
    EXPECT_EQ(whole.Ntrans, ordinary.Ntrans);

    // Between START TRANSACTION and COMMIT nothing that ends a transaction was sent; the
    // drops and the index came after, as they stand.
    const auto sent = SentStatements();
    const auto begin = std::find(sent.begin(), sent.end(), "start transaction");
    const auto commit = std::find(sent.begin(), sent.end(), "commit");
    ASSERT_NE(begin, sent.end());
    ASSERT_NE(commit, sent.end());
    for (auto it = begin + 1; it != commit; ++it) {
        EXPECT_FALSE(CSaveBackPattern::EndsTransaction(QByteArray::fromStdString(*it))) << *it;
    }
    std::vector<std::string> after(commit + 1, sent.end());
    for (const char* s : {"drop table Tac", "Create index Idtype on Ntype", "drop table T3W",
                          "drop table Tswitch", "drop table Tnode"}) {
        EXPECT_NE(std::find(after.begin(), after.end(), s), after.end()) << s;
    }
}

TEST_F(SaveBackOptions, AFailureInALateFamilyLeavesEveryBaseTableAsItWasAndNoFlag)
{
    ChangeEveryFamily();
    const auto sums = Checksums();
    const std::string nothingSaved = sbo::MSG_NOTHING_SAVED;

    // The last family's update refused by the server, in the mended mode.
    Exec("CREATE TRIGGER no_switch BEFORE UPDATE ON CDB_ISOSWITCHBAK FOR EACH ROW SIGNAL "
         "SQLSTATE '45000' SET MESSAGE_TEXT='no switch'");
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    job.SetStatementMode(SaveStatementMode::Mended);
    job.SetAllOrNothing(true);
    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", false), 1);
    EXPECT_EQ(Checksums(), sums);
    EXPECT_TRUE(m_base.ModifiedTableTypes().empty());
    auto texts = feedback().texts(1);
    ASSERT_EQ(texts.size(), 10u) << "the ten families before it counted, as shown";
    EXPECT_EQ(texts[9], "回存开关数目：1");
    auto errors = feedback().texts(2);
    ASSERT_GE(errors.size(), 2u);
    EXPECT_EQ(errors[errors.size() - 2].rfind("Fail to execute SQL: update CDB_ISOSWITCHBAK", 0),
              0u);
    EXPECT_EQ(feedback().messages().back().text, nothingSaved);
    EXPECT_EQ(TablesLeft(), std::vector<std::string>{});
    Exec("DROP TRIGGER no_switch");

    // The faithful default: the transformer statement the server refuses.
    feedback().clear();
    CLFCalDataTransfer faithful(0, kScheme, db(), &m_base);
    faithful.SetAllOrNothing(true);
    EXPECT_EQ(faithful.SaveLDataToBaseDB("NEW", false), 1);
    EXPECT_EQ(Checksums(), sums) << "the lines saved before the refusal are undone";
    EXPECT_TRUE(m_base.ModifiedTableTypes().empty());
    EXPECT_EQ(feedback().texts(1).size(), 3u);
    EXPECT_EQ(feedback().messages().back().text, nothingSaved);
    EXPECT_EQ(TablesLeft(), std::vector<std::string>{});

    // A working copy that a rollback cannot undo is refused before its first write.
    Exec("ALTER TABLE CDB_ACLINEBAK ENGINE=MyISAM");
    feedback().clear();
    EXPECT_EQ(faithful.SaveLDataToBaseDB("NEW", false), 1);
    EXPECT_EQ(Texts(feedback().messages()),
              (std::vector<std::string>{"2 数据表 CDB_ACLINEBAK 不是事务表（须为 InnoDB），不能以"
                                        "全部或全不方式回存。",
                                        "2 " + nothingSaved}));
    EXPECT_EQ(Checksums(), sums);
    Exec("ALTER TABLE CDB_ACLINEBAK ENGINE=InnoDB");

    // A trigger that writes a table of that kind is beyond the run's sight: the server's
    // warning after the rollback makes the run say that not everything was undone.
    Exec("CREATE TABLE line_audit(ID_Name CHAR(20)) ENGINE=MyISAM");
    Exec("CREATE TRIGGER audit_line AFTER UPDATE ON CDB_ACLINEBAK FOR EACH ROW INSERT INTO "
         "line_audit VALUES (NEW.ID_Name)");
    feedback().clear();
    EXPECT_EQ(faithful.SaveLDataToBaseDB("NEW", false), 1);
    EXPECT_EQ(feedback().messages().back().text, std::string(sbo::MSG_NOT_ALL_UNDONE));
    EXPECT_EQ(Checksums()["CDB_ACLINEBAK"], sums.at("CDB_ACLINEBAK"));
    EXPECT_EQ(Rows("SELECT ID_Name FROM line_audit"), std::vector<std::string>{"L1"});
    Exec("DROP TRIGGER audit_line");
    Exec("DROP TABLE line_audit");
}

// The working copies that a save-back writes must be transactional for the all-or-nothing
// run to mean anything; the project's schema leaves the engine to the server's default.
TEST_F(SaveBackOptions, TheWorkingCopiesTheSaveBackWritesAreInnoDB)
{
    for (const char* table : kWorkingCopies) {
        EXPECT_EQ(Scalar(QString("SELECT ENGINE FROM information_schema.TABLES WHERE "
                                 "TABLE_SCHEMA=DATABASE() AND TABLE_NAME='%1'")
                             .arg(QString(table).toLower())),
                  "InnoDB")
            << table;
    }
}

TEST_F(SaveBackOptions, AllOrNothingRefusesAConnectionInsideTheCallersTransaction)
{
    ChangeEveryFamily();
    const auto sums = Checksums();
    ASSERT_TRUE(QSqlQuery(*db()).exec("START TRANSACTION"));
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    job.SetStatementMode(SaveStatementMode::Mended);
    job.SetAllOrNothing(true);
    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", false), 1);
    EXPECT_EQ(Texts(feedback().messages()),
              std::vector<std::string>{"2 " + std::string(sbo::MSG_IN_CALLERS_TRANSACTION)});
    EXPECT_EQ(InTransaction(), 1) << "the caller's transaction is left to the caller";
    ASSERT_TRUE(QSqlQuery(*db()).exec("ROLLBACK"));
    EXPECT_EQ(Checksums(), sums);
}

// What MariaDB does to an open transaction for the kinds of statement a save-back sends,
// against what the run's classification says.
TEST_F(SaveBackOptions, TheStatementsThatEndATransactionAreTheOnesHeldOutOfIt)
{
    auto ends = [&](const QString& sql) {
        QSqlQuery q(*db());
        EXPECT_TRUE(q.exec("START TRANSACTION"));
        EXPECT_TRUE(q.exec("UPDATE CDB_ZONEBAK SET Area_No=Area_No+1"));
        q.exec(sql);
        const int open = InTransaction();
        q.exec("ROLLBACK");
        return open == 0;
    };
    ASSERT_TRUE(QSqlQuery(*db()).exec("CREATE TEMPORARY TABLE Tkeep SELECT * FROM CDB_ZONEBAK"));
    const char* statements[] = {
        "Create temporary Table Tx select * from CDB_ZONEBAK",
        "insert into Tx select * from CDB_ZONEBAK",
        "delete from Tx",
        "drop table Tx", // temporary, all the same
        "Create temporary Table Tx select * from CDB_ZONEBAK",
        "drop temporary table Tx",
        "create temporary table Tnode(node_name char(20) binary, index(node_name))",
        "Create index Idtype on Tnode(node_name)", // on a temporary table, all the same
        "drop table Tnode",
        "Create Table TLoad select * from CDB_ZONEBAK",
        "drop table TLoad",
        "update CDB_ZONEBAK a, Tkeep b set a.Area_No=b.Area_No where a.id=b.id",
        "insert into CDB_DATAGROUPBAK(GrpName) values('X')",
        "select I_Name from Tkeep"};
    for (const char* sql : statements) {
        EXPECT_EQ(CSaveBackPattern::EndsTransaction(sql), ends(sql)) << sql;
    }
    // The design's index names no table: the server refuses it before it ends anything, and
    // the run holds it back all the same.
    EXPECT_FALSE(ends("Create index Idtype on Ntype"));
    EXPECT_TRUE(CSaveBackPattern::EndsTransaction("Create index Idtype on Ntype"));
    QSqlQuery(*db()).exec("DROP TEMPORARY TABLE IF EXISTS Tkeep");
}

// The stability families make one working table that is not temporary ("Create Table
// TLoad"): the all-or-nothing run makes it before the transaction and drops it after,
// here with a family of that shape between two others.
TEST_F(SaveBackOptions, AWorkingTableThatIsNotTemporaryIsMadeBeforeTheTransaction)
{
    Exec("INSERT INTO S6_0(EleID, ID_Name, Node_Name, Load_Model, Load_Par, Z_Percent) SELECT id, "
         "ID_Name, Node_Name, Load_Model+1, Load_Par, Z_Percent FROM CDB_LOADBAK");
    Exec("UPDATE L5_0 SET Pg=Pg+0.1");
    const int loads = Count("CDB_LOADBAK");
    SaveBackFamily gens, tload, refused;
    gens.changes = {"Create temporary Table TGen select a.EleID, a.ID_Name, a.Pg from L5_0 a, "
                    "CDB_GENERATBAK b where b.id=a.eleid and abs(a.Pg-b.Pg)>0.001000"};
    gens.inPlace = {"update CDB_GENERATBAK a, TGen b set a.Pg=b.Pg where a.id=b.eleid"};
    gens.drop = "drop table TGen";
    tload.changes = {"Create Table TLoad select a.EleID, a.ID_Name,a.Node_Name, a.Load_Model, "
                     "a.Load_Par, a.Z_Percent from S6_0 a, CDB_LOADBAK b where b.id=a.eleid and "
                     "(a.Load_Model!=b.Load_Model or a.Load_Par!=b.Load_Par or "
                     "a.Z_Percent!=b.Z_Percent)"};
    tload.inPlace = {"update CDB_LOADBAK a, TLoad b set a.Load_Model=b.Load_Model, "
                     "a.Load_Par=b.Load_Par, a.Z_Percent =b.Z_Percent where a.id=b.eleid"};
    tload.drop = "drop table TLoad";
    refused.changes = {"Create temporary Table TSCR select nothing from nowhere"};
    CSaveBackPattern pattern(db(), "Fail to execute SQL: %s");
    pattern.SetAllOrNothing(true);
    int counter = 0;
    auto run = [&](bool fail) {
        counter = 0;
        return pattern.Save([&] {
            for (const SaveBackFamily* f : {&gens, &tload, &refused}) {
                if ((f != &refused || fail) && pattern.Run(*f, false, counter, nullptr) != 0) {
                    return 1;
                }
            }
            return 0;
        });
    };

    // A preview makes the working table and drops it again; inside a transaction of the
    // caller's it stops before the statement that would end that transaction.
    const auto sums = Checksums();
    auto preview = [&] {
        return pattern.Preview([&] {
            counter = 0;
            return pattern.Run(gens, false, counter, nullptr) ||
                   pattern.Run(tload, false, counter, nullptr);
        });
    };
    SaveBackPreview p = preview();
    EXPECT_EQ(p.result, 0) << p.Report().toStdString();
    EXPECT_EQ(int(p.changes.size()), Count("L5_0") + loads) << "Pg of each, Load_Model of each";
    EXPECT_EQ(Checksums(), sums);
    EXPECT_EQ(TablesLeft(), std::vector<std::string>{});
    ASSERT_TRUE(QSqlQuery(*db()).exec("START TRANSACTION"));
    ASSERT_TRUE(QSqlQuery(*db()).exec("UPDATE CDB_ZONEBAK SET Area_No=77"));
    p = preview();
    EXPECT_EQ(p.result, 1);
    EXPECT_TRUE(p.refused.startsWith("预览需执行会结束事务的语句")) << p.refused.toStdString();
    EXPECT_TRUE(p.messages.empty()) << "no failure of the save-back's own is made up";
    EXPECT_EQ(InTransaction(), 1);
    ASSERT_TRUE(QSqlQuery(*db()).exec("ROLLBACK"));
    EXPECT_EQ(Checksums(), sums);
    EXPECT_EQ(TablesLeft(), std::vector<std::string>{}) << "TGen, made before the stop, too";

    EXPECT_EQ(run(true), 1);
    EXPECT_EQ(counter, Count("L5_0") + loads) << "both families counted before the third failed";
    EXPECT_EQ(Checksums(), sums);
    EXPECT_EQ(TablesLeft(), std::vector<std::string>{}) << "TLoad too";
    EXPECT_EQ(feedback().messages().back().text, std::string(sbo::MSG_NOTHING_SAVED));

    StartStatementLog();
    EXPECT_EQ(run(false), 0);
    EXPECT_EQ(Count("CDB_LOADBAK a, S6_0 b WHERE a.id=b.EleID AND a.Load_Model=b.Load_Model"),
              loads);
    EXPECT_EQ(TablesLeft(), std::vector<std::string>{});
    const auto sent = SentStatements();
    auto at = [&](const std::string& start) {
        return std::find_if(sent.begin(), sent.end(),
                            [&](const std::string& s) { return s.rfind(start, 0) == 0; }) -
               sent.begin();
    };
    EXPECT_LT(at("Create Table TLoad"), at("start transaction"));
    EXPECT_LT(at("start transaction"), at("Create temporary Table TGen"));
    EXPECT_LT(at("update CDB_LOADBAK"), at("commit"));
    EXPECT_LT(at("commit"), at("drop table TLoad"));
    EXPECT_EQ(std::count(sent.begin(), sent.end(), sent[at("Create Table TLoad")]), 1)
        << "made once, not again in the transaction";
}

// Stability's copies into a group name a column twice, or give one value too many; the
// server refuses them only when it runs them, and the preview foresees it all the same.
TEST_F(SaveBackOptions, APreviewForeseesAnInsertTheServerRefusesOnlyWhenItRunsIt)
{
    Exec("UPDATE L5_0 SET Pg=Pg+0.1");
    SaveBackFamily gens;
    gens.changes = {"Create temporary Table TGen select a.EleID, a.ID_Name, a.Pg from L5_0 a, "
                    "CDB_GENERATBAK b where b.id=a.eleid and abs(a.Pg-b.Pg)>0.001000"};
    gens.drop = "drop table TGen";
    CSaveBackPattern pattern(db(), "Fail to execute SQL: %s");
    const struct
    {
        const char* copy;
        const char* why;
    } faults[] = {
        {"insert into CDB_GENERATBAK(GrpName, ID_Name, Valid, Pg, Valid) select 'NEW', "
         "a.ID_Name, a.Valid, a.Pg, a.Valid from CDB_GENERATBAK a, TGen where a.id=TGen.eleid",
         "列 Valid 在插入语句中出现两次"},
        {"insert into CDB_GENERATBAK(GrpName, ID_Name, Pg) select 'NEW', a.GrpName, a.ID_Name, "
         "a.Pg from CDB_GENERATBAK a, TGen where a.id=TGen.eleid",
         "插入语句的列数 3 与值的个数 4 不符"},
    };
    for (const auto& fault : faults) {
        gens.intoGroup = {fault.copy};
        int counter = 0;
        const SaveBackPreview p =
            pattern.Preview([&] { return pattern.Run(gens, true, counter, nullptr); });
        EXPECT_EQ(p.result, 1);
        ASSERT_EQ(p.messages.size(), 1u);
        EXPECT_EQ(p.messages[0].why, QString(fault.why));
        EXPECT_EQ(Count("CDB_GENERATBAK WHERE GrpName='NEW'"), 0);
        EXPECT_EQ(TablesLeft(), std::vector<std::string>{});

        feedback().clear();
        EXPECT_EQ(pattern.Save([&] { return pattern.Run(gens, true, counter, nullptr); }), 1);
        EXPECT_EQ(Texts(feedback().messages()), Texts(p.messages)) << "refused when run";
        DropTemporaryTables(db());
    }
}

class SaveBackOptionsKilled : public SaveBackOptions
{};

// The library's connection killed by a second session while the loads family, the ninth of
// eleven, waits on a lock: the server rolls back the whole run.
TEST_F(SaveBackOptionsKilled, AConnectionKilledInALateFamilyLeavesEveryBaseTableAsItWas)
{
    ChangeEveryFamily();
    const auto sums = Checksums();
    int result = -1;
    {
        using testsupport::Hold;
        testsupport::FaultInjector fault(scratch(), db(), testsupport::Fault::Killed, "CDB_LOADBAK",
                                         Hold::SharedRows);
        ASSERT_TRUE(fault.Run([&](QSqlDatabase* connection) {
            CLFCalDataTransfer job(0, kScheme, connection, &m_base);
            job.SetStatementMode(SaveStatementMode::Mended);
            job.SetAllOrNothing(true);
            result = job.SaveLDataToBaseDB("NEW", false);
        }));
    }
    EXPECT_EQ(result, 1);
    EXPECT_EQ(feedback().texts(1).back(), "回存发电机数目：1") << "the last count shown";
    const auto errors = feedback().texts(2);
    ASSERT_GE(errors.size(), 2u);
    EXPECT_EQ(errors[errors.size() - 2].rfind("Fail to execute SQL: insert into CDB_LOADBAK", 0),
              0u)
        << errors[errors.size() - 2];
    EXPECT_EQ(feedback().messages().back().text, std::string(sbo::MSG_NOTHING_SAVED));
    EXPECT_TRUE(m_base.ModifiedTableTypes().empty());
    EXPECT_EQ(Checksums(), sums);
}
