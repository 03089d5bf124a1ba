// The whole save-back road: every family, the driver's end, the new group and the new
// nodes, in the mended statement mode, with the preview before and all-or-nothing beside;
// where the faithful default stops, and what its preview says of it; a group's name in
// Chinese.

#include "SaveBackRoad.h"
#include "TableSnapshots.h"
#include "common/Feedback.h"
#include "loadflow/jobdata/LFSaveStatements.h"

#include <QSqlError>

using namespace testsupport;

// The preview first, which must tell exactly what the save-back then writes and change
// nothing itself; then the save-back on the same object.
TEST_F(SaveBackRoad, MendedInPlaceRunsEveryFamilyAndTheDriversEndAsItsPreviewSaid)
{
    ChangeEveryFamily();
    const Snapshot before = Take(checker(), kWorkingCopies);
    const auto sums = Checksums();
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    job.SetStatementMode(SaveStatementMode::Mended);
    const SaveBackPreview preview = job.PreviewLDataToBaseDB("NEW", false);
    EXPECT_EQ(preview.result, 0) << preview.Report().toStdString();
    EXPECT_EQ(Checksums(), sums) << "no table of the database changed";
    EXPECT_EQ(job.Nacline, 0) << "the transfer's counts stay as they were";

    // The orphans as such (the fixture names each one ...NEW). Their nodes, buses, stations
    // and zones, and every value (in the base row's unit), are the rows the save-back then
    // writes, checked below.
    for (const SaveBackAddition& a : preview.additions) {
        EXPECT_EQ(a.orphan, a.table != "CDB_DATAGROUPBAK" && a.name.endsWith("NEW"))
            << a.table.toStdString() << ' ' << a.name.toStdString();
    }
    // 12 elements (the design counts T3A's two changed windings as two), 13 values.
    const QString report = preview.Report();
    EXPECT_TRUE(report.contains("变化元件 12 个、数值 13 项")) << report.toStdString();
    EXPECT_TRUE(report.contains("新增 CDB_NODEBAK 1 行")) << report.toStdString();

    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", false), 0);
    std::vector<std::string> changes, added; // the preview's rows are the rows written
    Diff(before, Take(checker(), kWorkingCopies), changes, added);
    EXPECT_EQ(PreviewChanges(preview), changes);
    EXPECT_EQ(PreviewAdditions(preview), added);
    EXPECT_EQ(preview.flags, m_base.ModifiedTableTypes());
    EXPECT_EQ(Texts(preview.messages), Texts(feedback().messages()));

    EXPECT_EQ(feedback().texts(1),
              (std::vector<std::string>{"回存交流线数目：1", "回存并联电容电抗器数目：1",
                                        "回存串联电容电抗器数目：1", "回存两绕组变压器数目：1",
                                        "回存移相变压器数目：1", "回存三绕组变压器数目：2",
                                        "回存直连线数目：1", "回存发电机数目：1", "回存负荷数目：2",
                                        "回存开关数目：1", "回存刀闸数目：1",
                                        "回存变化元件总数：13", "回存新增元件总数：11"}));
    EXPECT_EQ(feedback().texts(2), OrphanWarnings("NEW"));
    EXPECT_EQ(m_base.ModifiedTableTypes(), (std::vector<int>{102, 103, 104, 105, 107, 106, 108, 109,
                                                             110, 112, 120, 12, 116, 101, 117,
                                                             115}));

    // Changed rows in their own units (that rows within the tolerance and columns never
    // compared stay as they were, the counts above say: one change more would show there);
    // P1's Tk is its own assignment again. Then the orphans in the group, per unit, and the
    // nodes, buses, stations and zones they need. The series elements' owner flag says
    // whether their zone is the I node's (N4 lies in zone 1, SNEW's job row says 4); the
    // shunt's valid flag folds the job's three flags.
    ExpectRows({
        {"CDB_SCAPREABAK", "ID_Name='SC1'", "ROUND(X1,9)", "-13.31"},
        {"CDB_TRANS_2WBAK", "ID_Name='TU'", "ROUND(Gm,9), Bm", "2|-5"},
        {"CDB_SHIFTBAK", "ID_Name='P1'", "ROUND(Bm,9), Tk", "-20|1"},
        {"CDB_TRANS_3WBAK", "ID_Name='T3A'", "ROUND(R1,9), ROUND(R2,9), ROUND(Gm,9), Valid",
         "1.21|3.63|4|1"},
        {"CDB_DCLINEBAK", "1 ORDER BY ID_Name", "Pd1_MW, Vd1_kV, Type_fadc",
         "110|500|7;50|400|0;30|0|0"},
        {"CDB_GENERATBAK", "ID_Name='GU'", "ROUND(Pg,9)", "50.0002"},
        {"CDB_LOADBAK", "ID_Name='DU'", "ROUND(Ql,9)", "5.0002"},
        {"CDB_LOADBAK", "ID_Name='D9'", "Mode_Ctrl", "1"},
        {"CDB_BREAKERBAK", "ID_Name='K1'", "Valid, Lbreak", "1|0"},
        {"CDB_ISOSWITCHBAK", "ID_Name='Q2'", "Valid, Lbreak", "0|1"},
        {"CDB_ACLINEBAK", "ID_Name='LNEW'", "GrpName, Unit, ID_No, R1, X1, B1_Half, Owner",
         "NEW|1|2|0.01|0.1|0.02|1"},
        {"CDB_GENERATBAK", "ID_Name='GNEW'", "GrpName, Unit, Pg, Par_Group", "NEW|1|0.3|2"},
        {"CDB_TRANS_3WBAK", "ID_Name='T3NEW'",
         "GrpName, Unit, Valid, Name_N, Name_1, Name_2, Name_3, Break_2, R3, Tk2",
         "NEW|1|1|N7|N4|N8|N9|0|0.03|1.05"},
        {"CDB_SHIFTBAK", "ID_Name='PNEW'", "GrpName, Unit, Ang_Shift", "NEW|1|2"},
        {"CDB_TRANS_2WBAK", "ID_Name='TNEW'", "GrpName, Unit, Tk", "NEW|1|1.02"},
        {"CDB_PCAPREABAK", "ID_Name='CNEW'", "GrpName, Valid, Node_Name, X1", "NEW|0|N4|-2"},
        {"CDB_SCAPREABAK", "ID_Name='SNEW'", "GrpName, Unit, Owner, X1", "NEW|1|0|-0.3"},
        {"CDB_DATAGROUPBAK", "GrpName='NEW'", "COUNT(*)", "1"},
        {"CDB_NODEBAK", "Node_Name='NEWN'", "Bus_Name, Base_kV", "NEWB|110"},
        {"CDB_BUSBAK", "Bus_Name='NEWB'", "PS_Name, Base_kV, HasNode", "NEWS|110|1"},
        {"CDB_PSTATIONBAK", "PS_Name='NEWS'", "Zone_No", "9"},
        {"CDB_ZONEBAK", "Zone_No=9", "Area_No", "0"},
        {"CDB_BUSBAK", "1", "COUNT(*)", "15"}, // only the missing bus is added
    });
}

TEST_F(SaveBackRoad, MendedIntoANewGroupCopiesEveryFamilyAndLeavesTheBaseRowsAsAllOrNothingDoes)
{
    ChangeEveryFamily();
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    job.SetStatementMode(SaveStatementMode::Mended);
    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", true), 0);

    // Each changed element: its base row as it was, a copy with the new values in the group,
    // in the base row's unit, with the columns a job does not carry copied where the copy
    // lists them and left to their defaults where it does not (P1's Ang_Shift, GU's and DU's
    // PhyPos); T3A's two changed windings make one copy. L2 stayed within the tolerance.
    ExpectRows(
        {
            {"CDB_SCAPREABAK", "ID_Name='SC1'", "GrpName, Unit, ROUND(X1,9)",
             "G1|0|-12.1;NEW|0|-13.31"},
            {"CDB_TRANS_2WBAK", "ID_Name='TU'", "GrpName, Unit, PhyPos, ROUND(Gm,9), Bm, Rate_MVA",
             "G1|0|3|1|-5|90;NEW|0|3|2|-5|90"},
            {"CDB_SHIFTBAK", "ID_Name='P1'", "GrpName, ROUND(Bm,9), Tk, Ang_Shift",
             "G1|-10|1|5;NEW|-20|1|0"},
            {"CDB_TRANS_3WBAK", "ID_Name='T3A'",
             "GrpName, ROUND(R2,9), ROUND(Gm,9), Name_2, Rate_MVA1",
             "G1|2.42|3|N8|120;NEW|3.63|4|N8|120"},
            {"CDB_DCLINEBAK", "ID_Name='DC1'", "GrpName, Pd1_MW, Type_fadc", "G1|100|7;NEW|110|7"},
            {"CDB_GENERATBAK", "ID_Name='GU'", "GrpName, Unit, PhyPos, ROUND(Pg,9), Xdp",
             "G1|0|4|50|0.25;NEW|0|0|50.0002|0.25"},
            {"CDB_LOADBAK", "ID_Name='DU'", "GrpName, PhyPos, ROUND(Ql,9), Load_Model",
             "G1|6|5|2;NEW|0|5.0002|2"},
            {"CDB_LOADBAK", "ID_Name='D9'", "GrpName, Mode_Ctrl", "G1|0;NEW|1"},
            {"CDB_BREAKERBAK", "ID_Name='K1'", "GrpName, Lbreak", "G1|1;NEW|0"},
            {"CDB_ISOSWITCHBAK", "ID_Name='Q2'", "GrpName, Valid", "G1|1;NEW|0"},
            {"CDB_ACLINEBAK", "GrpName='NEW'", "GROUP_CONCAT(ID_Name ORDER BY ID_Name)", "L1,LNEW"},
        },
        " ORDER BY GrpName");

    // All-or-nothing on the same network and changes: the same rows and flags, the flags
    // raised after its COMMIT.
    const SaveBackOutcome ordinaryRun = Outcome(checker(), kWorkingCopies, m_base);
    SetUp();
    ChangeEveryFamily();
    CommitWatch watch(db());
    CLFCalDataTransfer whole(0, kScheme, db(), &watch);
    whole.SetStatementMode(SaveStatementMode::Mended);
    whole.SetAllOrNothing(true);
    EXPECT_EQ(whole.SaveLDataToBaseDB("NEW", true), 0);
    ExpectSameOutcomeFlaggedAfterCommit(Outcome(checker(), kWorkingCopies, watch),
                                        watch.inTransaction, ordinaryRun);
    EXPECT_EQ(TablesLeft(db(), kWorkTables), std::vector<std::string>{})
        << "the drops held back are sent";
}

TEST_F(SaveBackRoad, TheFaithfulDefaultStopsWhereTheServerRefusesTheDesignsTextAsItsPreviewSays)
{
    ChangeEveryFamily();
    const testsupport::Snapshot before = Take(checker(), kWorkingCopies);
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    const SaveBackPreview preview = job.PreviewLDataToBaseDB("NEW", false);
    EXPECT_EQ(preview.result, 1);
    ASSERT_FALSE(preview.messages.empty());
    EXPECT_FALSE(preview.messages.back().why.isEmpty()) << "the server's reason";

    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", false), 1);
    EXPECT_EQ(feedback().texts(1),
              (std::vector<std::string>{"回存交流线数目：1", "回存并联电容电抗器数目：1",
                                        "回存串联电容电抗器数目：1"}));
    EXPECT_EQ(m_base.ModifiedTableTypes(), (std::vector<int>{102, 103, 104}));
    const auto errors = feedback().texts(2);
    ASSERT_EQ(errors.size(), 5u) << "four orphan warnings, then the refusal";
    const auto warnings = OrphanWarnings("NEW");
    EXPECT_EQ(std::vector<std::string>(errors.begin(), errors.begin() + 4),
              std::vector<std::string>(warnings.begin(), warnings.begin() + 4));
    EXPECT_EQ(errors[4].rfind("Fail to execute SQL: insert into T2W(eleid,", 0), 0u);
    EXPECT_NE(errors[4].find("a.Gm*1.0e6*/(c.Base_kV*c.Base_kV/100.000000)"), std::string::npos)
        << "the design's stray operator";
    EXPECT_EQ(Count("CDB_TRANS_2WBAK WHERE ID_Name='TNEW'"), 1) << "saved before the refusal";
    EXPECT_EQ(Count("CDB_DATAGROUPBAK"), 3) << "no group row, no new node";
    EXPECT_EQ(Count("CDB_NODEBAK WHERE Node_Name='NEWN'"), 0);
    EXPECT_EQ(TablesLeft(db(), kWorkTables), std::vector<std::string>{"T2W"})
        << "the save-back's, as designed";
    std::vector<std::string> changes, added;
    testsupport::Diff(before, Take(checker(), kWorkingCopies), changes, added);
    EXPECT_EQ(testsupport::PreviewChanges(preview), changes) << "the three families before";
    EXPECT_EQ(testsupport::PreviewAdditions(preview), added);
    EXPECT_EQ(preview.flags, m_base.ModifiedTableTypes());
    EXPECT_EQ(Texts(preview.messages), Texts(feedback().messages()));
    DropTemporaryTables(db());

    // The shifters' statements and the new nodes' are never reached in this mode. Sent as
    // the design writes them through the save-back's exec point, the server refuses each:
    // the missing comma, and `a` named across the comma of a join.
    CSaveBackPattern& pattern = CLFCalDataTransferFamilies::Pattern(job);
    Exec("CREATE TABLE Tnode(node_name char(20) binary)");
    const struct
    {
        QByteArray sql;
        const char* why;
    } refused[] = {
        {FormatText(lfs::SQL_SHIFT_IN_GROUP, "CDB_SHIFT", "BAK", "NEW"), "syntax"},
        {FormatText(lfs::SQL_SHIFT_IN_PLACE, "CDB_SHIFT", "BAK"), "syntax"},
        {FormatText(lfs::SQL_NEW_BUSES, "CDB_BUS", "BAK", 0, "CDB_BUS", "BAK"),
         "Unknown column 'a.Bus_Name' in 'ON'"},
        {FormatText(lfs::SQL_NEW_STATIONS, "CDB_PSTATION", "BAK", 0, "CDB_PSTATION", "BAK"),
         "Unknown column 'a.PS_Name' in 'ON'"},
        {FormatText(lfs::SQL_NEW_ZONES, "CDB_ZONE", "BAK", 0, "CDB_ZONE", "BAK"),
         "Unknown column 'a.Zone_No' in 'ON'"},
    };
    for (const auto& r : refused) {
        QSqlQuery q(*db());
        EXPECT_FALSE(pattern.Exec(q, r.sql)) << r.sql.constData();
        EXPECT_NE(q.lastError().text().indexOf(r.why), -1) << q.lastError().text().toStdString();
    }
    Exec("DROP TABLE Tnode");
}

// A group's name holds 20 bytes as the design counted them: an eleventh Chinese character
// is refused before anything is written, by the save-back, its preview and all-or-nothing;
// ten save back whole (the copy, its update in the group, the orphans, the group's row).
// The orphans' nodes go through Tnode in batches of 200: 205 orphan loads on nodes the job
// does not know, one on a node it knows whose name holds a quote and a backslash among nine
// Chinese characters (20 bytes; written here on a session that reads escapes), and the
// orphan line's N1 and N2; of these only the job's node that the base lacks is added.
TEST_F(SaveBackRoad,
       AChineseGroupOfTenCharactersSavesWholeAnEleventhNothingAndTnodeAddsMissingNodesIn200s)
{
    const QString ten = "华北电网运行方式调整", eleven = ten + "甲";
    const QString node = "'节点''甲乙丙丁戊己庚\\\\'";
    Exec("UPDATE L2_0 SET R1=R1+0.01 WHERE ID_Name='L1'");
    Exec("INSERT INTO L2_0(Case_No, EleID, ID_Name, Valid, I_Name, J_Name, ID_No, I_Break, "
         "J_Break, R1, X1, B1_Half, Owner, Ntype) VALUES (0, 9999, 'LX', 1, 'N1', 'N2', 1, 1, 1, "
         "0.01, 0.1, 0.02, 1, 1)");
    Exec("INSERT INTO L1_0(Case_No, Node_Name, Bus_Name, Zone_No, PS_Name, Base_kV) VALUES "
         "(0, " + node + ", 'NEWB', 9, 'NEWS', 110), (0, 'NEWY', 'NEWB', 9, 'NEWS', 110)");
    Exec("INSERT INTO L6_0(Case_No, EleID, ID_Name, Valid, Node_Name, Pl) SELECT 0, 80000+seq, "
         "CONCAT('DX', seq), 1, CONCAT('X', LPAD(seq, 3, '0')), 0.01 FROM seq_1_to_205");
    Exec("INSERT INTO L6_0(Case_No, EleID, ID_Name, Valid, Node_Name, Pl) VALUES (0, 80999, 'DN', "
         "1, " + node + ", 0.02)");
    const auto checksums = Checksums();
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    job.SetStatementMode(SaveStatementMode::Mended);
    const std::string refused = "数据组名 " + eleven.toStdString() +
                                " 超过20字节（汉字按2字节计），数据组中存不下，回存未执行，基础"
                                "库未作任何修改。";
    EXPECT_EQ(job.SaveLDataToBaseDB(eleven, false), 1);
    EXPECT_EQ(Texts(job.PreviewLDataToBaseDB(eleven, true).messages),
              std::vector<std::string>{"2 " + refused});
    job.SetAllOrNothing(true);
    EXPECT_EQ(job.SaveLDataToBaseDB(eleven, true), 1);
    EXPECT_EQ(feedback().texts(2),
              (std::vector<std::string>{refused, refused, "回存失败，已全部撤销，基础库未保存任何修改。"}));
    EXPECT_EQ(Checksums(), checksums);

    job.SetAllOrNothing(false);
    StartStatementLog();
    EXPECT_EQ(job.SaveLDataToBaseDB(ten, true), 0);
    EXPECT_EQ(Rows("SELECT ID_Name, ROUND(R1, 6) FROM CDB_ACLINEBAK WHERE GrpName='" + ten +
                   "' ORDER BY ID"),
              (std::vector<std::string>{"LX|0.01", "L1|0.02938"}));
    EXPECT_EQ(Count("CDB_DATAGROUPBAK WHERE GrpName='" + ten + "'"), 1);
    EXPECT_EQ(Count("CDB_LOADBAK WHERE GrpName='" + ten + "'"), 206);
    std::vector<int> batches;
    for (const std::string& s : SentStatements()) {
        if (s.rfind("insert into Tnode(node_name) values", 0) == 0) {
            batches.push_back(static_cast<int>(std::count(s.begin(), s.end(), '\n')));
        }
    }
    EXPECT_EQ(batches, (std::vector<int>{200, 8}));
    EXPECT_EQ(Count("CDB_NODEBAK WHERE Node_Name=" + node), 1);
    EXPECT_EQ(Count("CDB_NODEBAK WHERE Node_Name LIKE 'X%'"), 0) << "not in the job's node table";

    // A server that holds another name than the one given (a host's GrpName narrower than
    // the design's): the update in the group finds no copy, and the run fails instead of
    // leaving the copies with the base values.
    Exec("ALTER TABLE CDB_ACLINEBAK MODIFY GrpName CHAR(4) BINARY");
    feedback().clear();
    EXPECT_EQ(job.SaveLDataToBaseDB("华北电网调度", true), 1);
    Exec("ALTER TABLE CDB_ACLINEBAK MODIFY GrpName CHAR(20) BINARY DEFAULT ''");
    EXPECT_EQ(feedback().texts(2).back(),
              "写入数据组的修改没有改动任何行（服务器中保存的数据组名与所给的不同），回存失败："
              "update CDB_ACLINEBAK a, Tac b set a.valid=b.valid, a.I_Break=b.I_Break, "
              "a.J_Break=b.J_Break, a.R1=b.R1, a.X1=b.X1, a.B1_Half=b.B1_Half where "
              "a.GrpName='华北电网调度' and a.ID_Name=b.ID_Name");
}
