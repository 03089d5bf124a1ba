// The save-back's two options where they meet what stood before them: the preview into a
// group an earlier save filled, all-or-nothing where it cannot finish, both inside a
// transaction of the caller's. (Their ordinary runs are on the road.)

#include "SaveBackRoad.h"
#include "common/SaveBackPattern.h"
#include "common/SaveBackStatements.h"

#include <QSqlError>
#include <QStringList>
#include <set>

using namespace testsupport;

// Into a group that an earlier save filled, on a session whose sql_mode holds
// NO_BACKSLASH_ESCAPES, with a group name that holds a quote and ends in a backslash: the
// preview lists the copies' values, the rows the group holds that the update into it
// rewrites, and the breakers' and switches' rows as the job gives them whole.
TEST_F(SaveBackRoad, APreviewIntoAGroupListsTheCopiesTheRowsItHoldsAndTheSwitchesWhole)
{
    const QString group = "NEW'\\";
    const QString named = "GrpName='NEW''\\\\'"; // on the checker, which reads escapes
    const QString mode = Scalar("SELECT @@SESSION.sql_mode");
    ASSERT_TRUE(QSqlQuery(*db()).exec("SET SESSION sql_mode=CONCAT(@@sql_mode, "
                                      "',NO_BACKSLASH_ESCAPES')"));
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    job.SetStatementMode(SaveStatementMode::Mended);
    Exec("UPDATE L5_0 SET Pg=0.6 WHERE ID_Name='GU'"); // 60 MW into the group first
    ASSERT_EQ(job.SaveLDataToBaseDB(group, true), 0);
    ChangeEveryFamily(); // GU to 50.0002 MW
    const Snapshot before = Take(checker(), kWorkingCopies);
    m_base.ClearModifiedTableTypes();
    feedback().clear();

    const SaveBackPreview preview = job.PreviewLDataToBaseDB(group, true);
    EXPECT_EQ(preview.result, 0) << preview.Report().toStdString();
    EXPECT_TRUE(preview.Report().startsWith("回存预览：变化存入数据组 NEW'\\"));
    EXPECT_EQ(job.SaveLDataToBaseDB(group, true), 0);
    ASSERT_TRUE(QSqlQuery(*db()).exec("SET SESSION sql_mode='" + mode + "'"));

    // What stood and changed is the group's earlier copy of GU, as the preview said.
    std::vector<std::string> changes, added;
    Diff(before, Take(checker(), kWorkingCopies), changes, added);
    SaveBackPreview held;
    std::set<std::string> copies;
    for (const SaveBackChange& c : preview.changes) {
        if (c.groupRow) {
            held.changes.push_back(c);
            continue;
        }
        copies.insert((c.family + '|' + c.element).toStdString());
        EXPECT_EQ(Scalar(QString("SELECT %1 FROM %2 WHERE %3 AND ID_Name='%4' ORDER BY ID DESC")
                             .arg(c.field, c.family, named, c.element)),
                  c.newValue.toString())
            << c.family.toStdString() << ' ' << c.element.toStdString();
    }
    ASSERT_EQ(held.changes.size(), 1u);
    EXPECT_EQ(PreviewChanges(held), changes);
    EXPECT_EQ(preview.ChangedElements(), 12) << "the group's row is GU again";
    const std::vector<std::string> additions = PreviewAdditions(preview);
    copies.insert(additions.begin(), additions.end());
    EXPECT_EQ(added, std::vector<std::string>(copies.begin(), copies.end()));
    // The breakers' rows in the group, the orphan's and K1's, as the preview gives them.
    std::vector<std::string> breakers;
    for (const SaveBackAddition& a : preview.AdditionsTo("CDB_BREAKERBAK")) {
        QStringList values;
        for (const QVariant& v : a.values) {
            values << v.toString();
        }
        breakers.push_back(values.join('|').toStdString());
    }
    EXPECT_EQ(breakers, Rows("SELECT GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, Lbreak FROM "
                             "CDB_BREAKERBAK WHERE " + named + " ORDER BY ID"));
    EXPECT_EQ(preview.flags, m_base.ModifiedTableTypes());
    EXPECT_EQ(Texts(preview.messages), Texts(feedback().messages()));
}

// What all-or-nothing cannot finish it does not commit: orphans whose nodes could not be
// listed or put into the node table, and a run whose connection reconnected on the way
// (what ran after it ran outside the transaction).
TEST_F(SaveBackRoad, AllOrNothingCommitsNoOrphanWithoutItsNodesNorARunThatChangedSession)
{
    const std::string undone = std::string("2 ") + sbo::MSG_NOTHING_SAVED;
    // 300 orphan generators, each on a node of its own that the job's node table holds.
    Exec("INSERT INTO L1_0(Case_No, Node_Name, Bus_Name, Zone_No, PS_Name, Base_kV) SELECT 0, "
         "CONCAT('X', seq), 'B4', 1, 'S', 110 FROM seq_1_to_300");
    Exec("INSERT INTO L5_0(Case_No, EleID, ID_Name, Valid, Node_Name, Pg) SELECT 0, 90000+seq, "
         "CONCAT('GX', seq), 1, CONCAT('X', seq), 0.01 FROM seq_1_to_300");
    auto sums = Checksums();

    // The node select refused.
    SaveBackFamily gens;
    gens.createOrphans = "Create temporary Table TGen select a.ID_Name, a.Node_Name from L5_0 a "
                         "left join CDB_GENERATBAK b on b.id=a.eleid where b.id is null";
    gens.orphanWarning = "%d orphans into %s";
    gens.orphanInserts = {"insert into CDB_GENERATBAK(GrpName, ID_Name, Node_Name) select 'NEW', "
                          "ID_Name, Node_Name from TGen"};
    gens.orphanNodes = "select Node_Nam from TGen";
    gens.clearOrphans = "delete from TGen";
    CSaveBackPattern pattern(db(), "Fail to execute SQL: %s");
    pattern.SetAllOrNothing(true);
    int counter = 0;
    EXPECT_EQ(pattern.Save([&] { return pattern.Run(gens, false, counter, nullptr); }), 1);
    EXPECT_EQ(Texts(feedback().messages()),
              (std::vector<std::string>{"2 300 orphans into ",
                                        "2 Fail to execute SQL: select Node_Nam from TGen", undone}));
    EXPECT_EQ(Checksums(), sums);

    // The node table of the transfer's node stage full before it holds every node.
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    job.SetAllOrNothing(true);
    CLFCalDataTransferFamilies::Prepare(job, "NEW", false);
    feedback().clear();
    int calls = 0; // the run goes through its driver twice, the first time sending nothing
    const int full = CLFCalDataTransferFamilies::Pattern(job).Save([&] {
        if (CLFCalDataTransferFamilies::Generators(job) != 0) {
            return 1;
        }
        if (++calls == 2) {
            QSqlQuery(*db()).exec("SET SESSION default_tmp_storage_engine=MEMORY, "
                                  "max_heap_table_size=16384");
        }
        return CLFCalDataTransferFamilies::AddNodes(job);
    });
    QSqlQuery(*db()).exec("SET SESSION default_tmp_storage_engine=DEFAULT, "
                          "max_heap_table_size=DEFAULT");
    EXPECT_EQ(full, 1);
    // The node table, a MEMORY table now, is the one the server names as not undone.
    EXPECT_EQ(feedback().messages().back().text, std::string(sbo::MSG_NOT_ALL_UNDONE));
    EXPECT_TRUE(feedback().has("Fail to execute SQL: insert into Tnode(node_name) values ...", 2));
    EXPECT_EQ(Checksums(), sums);

    // A connection that reconnects by itself, killed between two families: the first one's
    // update is rolled back by the server, the second would run on the new session.
    Exec("DELETE FROM L5_0 WHERE EleID>90000");
    Exec("UPDATE L5_0 SET Pg=Pg+0.1");
    Exec("UPDATE L6_0 SET Ql=Ql+0.1");
    sums = Checksums();
    QSqlDatabase c = QSqlDatabase::cloneDatabase(*db(), "reconnecting");
    c.setConnectOptions(c.connectOptions() + (c.connectOptions().isEmpty() ? "" : ";") +
                        "MYSQL_OPT_RECONNECT=1");
    ASSERT_TRUE(c.open()) << c.lastError().text().toStdString();
    SaveBackFamily g, l;
    g.changes = {"Create temporary Table TGen select a.EleID, a.Pg from L5_0 a, CDB_GENERATBAK b "
                 "where b.id=a.eleid and abs(a.Pg-b.Pg)>0.001000"};
    g.inPlace = {"update CDB_GENERATBAK a, TGen b set a.Pg=b.Pg where a.id=b.eleid"};
    l.changes = {"Create temporary Table TLoad select a.EleID, a.Ql from L6_0 a, CDB_LOADBAK b "
                 "where b.id=a.eleid and abs(a.Ql-b.Ql)>0.001000"};
    l.inPlace = {"update CDB_LOADBAK a, TLoad b set a.Ql=b.Ql where a.id=b.eleid"};
    CSaveBackPattern reconnecting(&c, "Fail to execute SQL: %s");
    reconnecting.SetAllOrNothing(true);
    QSqlQuery id(c);
    ASSERT_TRUE(id.exec("SELECT CONNECTION_ID()") && id.next());
    const QString before = id.value(0).toString();
    feedback().clear();
    const int changed = reconnecting.Save([&] {
        if (reconnecting.Run(g, false, counter, nullptr) != 0) {
            return 1;
        }
        if (++calls == 3) {
            return 0;
        }
        Exec("KILL CONNECTION " + before);
        while (Count("information_schema.PROCESSLIST WHERE ID=" + before) > 0) {
        }
        reconnecting.ExecUnchecked("delete from TGen"); // unchecked, as the clean-ups are
        return reconnecting.Run(l, false, counter, nullptr);
    });
    ASSERT_TRUE(id.exec("SELECT CONNECTION_ID()") && id.next());
    EXPECT_EQ(changed, 1);
    EXPECT_EQ(feedback().messages().back().text,
              FormatText(sbo::MSG_SESSION_CHANGED, before.toULong(),
                         static_cast<unsigned long>(id.value(0).toULongLong()))
                  .toStdString());
    EXPECT_EQ(Checksums(), sums);
    id = QSqlQuery();
    c.close();
}

// A transaction of the caller's on the library's connection: a preview of temporary work
// tables runs inside it and leaves it open with its work; all-or-nothing refuses to start;
// a preview that would make a working table of its own (a stability family's TLoad) stops
// before the statement that would end it. Then, with no transaction: stability's copies into
// a group name a column twice, or give one value too many; the server refuses them only when
// it runs them, and the preview foresees it all the same.
TEST_F(SaveBackRoad,
       InACallersTransactionAPreviewRunsOrStopsAllOrNothingRefusesAndAPreviewForeseesRefusedCopies)
{
    ChangeEveryFamily();
    ASSERT_TRUE(QSqlQuery(*db()).exec("START TRANSACTION"));
    ASSERT_TRUE(QSqlQuery(*db()).exec("UPDATE CDB_ZONEBAK SET Area_No=77"));
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    job.SetStatementMode(SaveStatementMode::Mended);
    const SaveBackPreview preview = job.PreviewLDataToBaseDB("NEW", false);
    EXPECT_EQ(preview.result, 0) << preview.Report().toStdString();

    job.SetAllOrNothing(true);
    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", false), 1);
    EXPECT_EQ(Texts(feedback().messages()),
              std::vector<std::string>{"2 " + std::string(sbo::MSG_IN_CALLERS_TRANSACTION)});

    SaveBackFamily gens, tload;
    gens.changes = {"Create temporary Table TGen select a.EleID, a.ID_Name, a.Pg from L5_0 a, "
                    "CDB_GENERATBAK b where b.id=a.eleid and abs(a.Pg-b.Pg)>0.001000"};
    // The values a preview lists are read by the in-place update, once the copy passed.
    gens.inPlace = {"update CDB_GENERATBAK a, TGen b set a.Pg=b.Pg where a.id=b.eleid"};
    gens.drop = "drop table TGen";
    tload.changes = {"Create Table TLoad select a.EleID, a.ID_Name, a.Ql from L6_0 a, "
                     "CDB_LOADBAK b where b.id=a.eleid and a.Ql!=b.Ql"};
    CSaveBackPattern pattern(db(), "Fail to execute SQL: %s");
    int counter = 0;
    const SaveBackPreview stopped = pattern.Preview([&] {
        return pattern.Run(gens, false, counter, nullptr) ||
               pattern.Run(tload, false, counter, nullptr);
    });
    EXPECT_EQ(stopped.result, 1);
    EXPECT_EQ(stopped.refused.toStdString(),
              "预览需执行会结束事务的语句，而连接上有未结束的事务，预览在此停止：" +
                  std::string(tload.changes[0].constData()));
    EXPECT_TRUE(stopped.messages.empty()) << "no failure of the save-back's own is made up";
    // No step ended the caller's transaction (a drop or CREATE TABLE would have committed
    // its update): the caller's rollback undoes it only now.
    ASSERT_TRUE(QSqlQuery(*db()).exec("ROLLBACK"));
    EXPECT_EQ(Count("CDB_ZONEBAK WHERE Area_No=77"), 0);
    EXPECT_EQ(TablesLeft(db(), kWorkTables), std::vector<std::string>{})
        << "TGen, made before the stop, too";

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
        counter = 0;
        const SaveBackPreview p =
            pattern.Preview([&] { return pattern.Run(gens, true, counter, nullptr); });
        EXPECT_EQ(p.result, 1);
        ASSERT_EQ(p.messages.size(), 1u);
        EXPECT_EQ(p.messages[0].why, QString(fault.why));
        EXPECT_TRUE(p.changes.empty()) << "a refused copy saves nothing, so lists nothing";

        feedback().clear();
        EXPECT_EQ(pattern.Save([&] { return pattern.Run(gens, true, counter, nullptr); }), 1);
        EXPECT_EQ(Texts(feedback().messages()), Texts(p.messages)) << "refused when run";
        DropTemporaryTables(db());
    }
}
