// The branch chooser: BRANCHTEMP filled from each kind of source, batches of ten rows,
// the two lists and the name driven by mouse and keyboard, the stored orientation.

#include "DbTest.h"
#include "DialogDriver.h"
#include "dialogs/WinDlgCalBranchChoose.h"

#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QSqlQuery>
#include <QTest>
#include <QToolButton>

using namespace dialogtest;
using testsupport::DbTest;

namespace {

class BranchDialog : public WinDlgCalBranchChoose
{
public:
    using WinDlgCalBranchChoose::SetCurrentIDNo;
    using WinDlgCalBranchChoose::WinDlgCalBranchChoose;
    bool Read() const { return IsRead(); }
};

// The branch the dialog answers with: "ID_Name|I_Name|J_Name|ID_No|iEleType".
std::string Chosen(const WinDlgCalBranchChoose& dlg)
{
    const auto& b = dlg.m_Branch;
    return QString("%1|%2|%3|%4|%5").arg(b.ID_Name, b.I_Name, b.J_Name).arg(b.ID_No).arg(b.iEleType).toStdString();
}

// What the dialog shows: "first end|second end|branch name".
std::string Shown(const WinDlgCalBranchChoose& dlg)
{
    return QStringList{dlg.LineEdit_BusName1->text(), dlg.LineEdit_BusName2->text(),
                       dlg.ComboBox_BranchName->currentText()}.join('|').toStdString();
}

char noName[] = "";

} // namespace

class BranchChooser : public DbTest
{
protected:
    void SetUp() override
    {
        DbTest::SetUp();
        Truncate({"CDB_ACLINEBAK", "CDB_PCAPREABAK", "CDB_TRANS_3WBAK", "LFR_ACLINE_R",
                  "LFR_T3W_R", "LFR_PCR_R", "OPFR_T2W_R", "L2_1", "L3_1", "LK_1"});
    }
    static std::vector<std::string> Sent(const std::string& head)
    {
        std::vector<std::string> all = SentStatements(), out;
        std::copy_if(all.begin(), all.end(), std::back_inserter(out),
                     [&](const std::string& s) { return s.rfind(head, 0) == 0; });
        return out;
    }
    static std::vector<std::string> Temp()
    {
        return Rows("SELECT ID_Name,I_Name,J_Name,ID_No,iEleType FROM BRANCHTEMP "
                    "ORDER BY iEleType,ID_Name,I_Name,J_Name");
    }
};

TEST_F(BranchChooser, ChosenEitherWayRoundTheBranchKeepsItsStoredEnds)
{
    Exec("INSERT INTO CDB_ACLINEBAK(ID_Name,I_Name,J_Name,ID_No) "
         "VALUES ('L1','A','B',1),('L2','B','C',2)");
    Exec("INSERT INTO CDB_PCAPREABAK(ID_Name,Bus_Name,ID_No) VALUES ('C1','B',1)");
    StartStatementLog();
    {
        BranchDialog dlg(1, db(), {"CDB_ACLINEBAK", "CDB_PCAPREABAK"});
        EXPECT_EQ(dlg.windowTitle(), "支路选择");

        // B, then A in the other list: the user names the branch from its J side.
        WhenShown(&dlg, [&] {
            QTest::mouseClick(dlg.ToolButton_OK, Qt::LeftButton);
            ASSERT_EQ(boxes().boxes().size(), 1u);
            EXPECT_EQ(boxes().boxes()[0].caption, "选择支路");
            EXPECT_EQ(boxes().boxes()[0].text, "请选择支路名称和两侧节点！");

            // Every node once, C although it is never an I side.
            EXPECT_EQ(Texts(dlg.ListBox_Branch), QStringList({"A", "B", "C"}));
            ClickItem(dlg.ListBox_Branch, 1);
            // Other ends of B where it is the I side (the shunt's B once, C), then where
            // it is the J side (A).
            EXPECT_EQ(Texts(dlg.ListBox_AnotherBranch), QStringList({"B", "C", "A"}));
            EXPECT_EQ(Shown(dlg), "B|B|C1");
            ClickItem(dlg.ListBox_AnotherBranch, 2);
            EXPECT_EQ(Shown(dlg), "B|A|L1");
            SaveScreenshot(&dlg, "branch_chooser");
            QTest::mouseClick(dlg.ToolButton_OK, Qt::LeftButton);
        });
        ASSERT_EQ(dlg.ChooseBranch(noName, noName, noName), 0);
        EXPECT_EQ(Chosen(dlg), "L1|A|B|1|6");

        // A given end stands chosen (the tables read once per dialog); Cancel leaves the
        // choice as it was and answers 1.
        char a[] = "A";
        WhenShown(&dlg, [&] {
            EXPECT_EQ(Current(dlg.ListBox_Branch), "A");
            EXPECT_EQ(Texts(dlg.ListBox_AnotherBranch), QStringList({"B"}));
            EXPECT_EQ(dlg.ComboBox_BranchName->currentText(), "");
            QTest::mouseClick(dlg.ToolButton_Cancel, Qt::LeftButton);
        });
        EXPECT_EQ(dlg.ChooseBranch(0, a, noName), 1);

        // The statement that names sID_Name is refused by the server: its own error on the
        // library's session.
        dlg.SetCurrentIDNo("L1");
        QSqlQuery errors(*db());
        ASSERT_TRUE(errors.exec("SHOW ERRORS") && errors.next());
        EXPECT_EQ(errors.value(1).toString() + "|" + errors.value(2).toString(),
                  "1054|Unknown column 'sID_Name' in 'WHERE'");
    }
    EXPECT_EQ(Sent("D"),
              (std::vector<std::string>{"DELETE FROM BRANCHTEMP", "DROP TABLE BRANCHTEMP"}));
    EXPECT_EQ(Sent("SELECT ID_No FROM BRANCHTEMP WHERE sID_Name='L1' LIMIT 1").size(), 1u);
}

TEST_F(BranchChooser, RowsGoInTenToAStatementAndEachPassFlushesItsOwnRest)
{
    for (int k = 1; k <= 20; ++k) {
        Exec(QString("INSERT INTO CDB_ACLINEBAK(ID_Name,I_Name,J_Name,ID_No) "
                     "VALUES ('L%1','I%1','J%1',%1)")
                 .arg(k, 2, 10, QChar('0')));
    }
    Exec("INSERT INTO CDB_TRANS_3WBAK(ID_Name,Name_N,Name_1,Name_2,Name_3,ID_No1,ID_No2,ID_No3) "
         "VALUES ('T1','N1','W11','W12','W13',1,2,3),('T2','N2','W21','W22','W23',1,2,3)");
    StartStatementLog();
    BranchDialog dlg(1, db(), {"CDB_ACLINEBAK", "CDB_TRANS_3WBAK"});
    char i[21] = {}, j[21] = {};
    ASSERT_EQ(dlg.GetFirstBranch(const_cast<char*>("T1"), i, j), 0);
    EXPECT_EQ(std::string(i) + "-" + j + " " + Chosen(dlg), "N1-W11 T1|N1|W11|1|12");
    EXPECT_EQ(dlg.GetFirstBranch(const_cast<char*>("nothing"), i, j), 2);
    EXPECT_STREQ(i, "N1") << "no row leaves the outputs alone";

    // 20 lines fill exactly two statements, with no empty third; the three-winding table
    // takes three passes of two rows.
    const auto inserts = Sent("INSERT INTO BRANCHTEMP");
    ASSERT_EQ(inserts.size(), 5u);
    EXPECT_EQ(std::count(inserts[1].begin(), inserts[1].end(), '('), 11);
    EXPECT_EQ(inserts[3], "INSERT INTO BRANCHTEMP (ID_Name,I_Name,J_Name,ID_No,iEleType) "
                          "VALUES( 'T1','N1','W12',2,12 ),( 'T2','N2','W22',2,12 )");
    EXPECT_EQ(Count("BRANCHTEMP"), 26);
}

// The load-flow results of the case set (an unknown table skipped), in mode 4 the
// optimal-flow results only; the job tables with NType translated per family.
TEST_F(BranchChooser, EachKindOfSourceFillsTheTempTableAndAFilterMustNameEveryFamily)
{
    Exec("INSERT INTO LFR_ACLINE_R(Case_No,ID_Name,I_Name,J_Name,ID_No) "
         "VALUES (3,'R3','A','B',1),(4,'R4','A','B',1)");
    Exec("INSERT INTO LFR_T3W_R(Case_No,ID_Name,Name_N,Name_1,Name_2,Name_3,ID_No1,ID_No2,ID_No3) "
         "VALUES (3,'T','N','W1','W2','W3',1,2,3)");
    Exec("INSERT INTO LFR_PCR_R(Case_No,ID_Name,Bus_Name,ID_No) VALUES (3,'P','A',1)");
    Exec("INSERT INTO OPFR_T2W_R(Case_No,ID_Name,I_Name,J_Name,ID_No) VALUES (3,'X','A','C',1)");
    char i[21] = {}, j[21] = {};
    {
        BranchDialog dlg(2, db(), {"LFR_ACLINE_R", "LFR_T3W_R", "LFR_PCR_R", "NO_SUCH_TABLE"});
        dlg.SetLFCase_No(3);
        EXPECT_EQ(dlg.GetFirstBranch(const_cast<char*>("R3"), i, j), 0);
        EXPECT_TRUE(dlg.Read()) << "an unknown table is skipped";
        EXPECT_EQ(Temp(), (std::vector<std::string>{"P|A|A|1|4", "R3|A|B|1|6", "T|N|W1|1|12",
                                                    "T|N|W2|2|12", "T|N|W3|3|12"}));
    }
    BranchDialog opf(4, db(), {"OPFR_T2W_R", "LFR_ACLINE_R"});
    opf.SetCase_No(3);
    EXPECT_EQ(opf.GetFirstBranch(const_cast<char*>("X"), i, j), 0);
    EXPECT_EQ(Temp(), (std::vector<std::string>{"X|A|C|1|10"}));

    Exec("INSERT INTO L2_1(ID_Name,I_Name,J_Name,ID_No,Ntype) "
         "VALUES ('a1','A','B',1,1),('a2','A','B',2,2),('a3','A','A',1,3)");
    Exec("INSERT INTO L3_1(ID_Name,I_Name,J_Name,ID_No,Ntype) "
         "VALUES ('t1','A','C',1,1),('t2','A','C',2,2),('t3','N','C',1,3)");
    Exec("INSERT INTO LK_1(ID_Name,I_Name,J_Name,ID_No,Ntype) "
         "VALUES ('k1','B','D',1,1),('k2','B','D',2,2),('k5','B','D',3,5)");
    {
        BranchDialog all(3, db(), {"L2_1", "l3_1", "LK_1"});
        all.GetFirstBranch(const_cast<char*>("a1"), i, j);
        EXPECT_EQ(Temp(), (std::vector<std::string>{
                              "a3|A|A|1|4", "k5|B|D|3|5", "a1|A|B|1|6", "a2|A|B|2|8",
                              "t1|A|C|1|10", "t2|A|C|2|11", "t3|N|C|1|12", "k1|B|D|1|13",
                              "k2|B|D|2|14"}));
    }
    StartStatementLog();
    {
        BranchDialog some(3, db(), {"L2_1", "L3_1", "LK_1"}, {6, 12, 14, 4});
        some.GetFirstBranch(const_cast<char*>("a1"), i, j);
        EXPECT_EQ(Temp(), (std::vector<std::string>{"a3|A|A|1|4", "a1|A|B|1|6", "t3|N|C|1|12",
                                                    "k2|B|D|2|14"}));
        EXPECT_EQ(Sent("SELECT ID_Name,I_Name,J_Name,ID_No,NType FROM L2_1"),
                  (std::vector<std::string>{"SELECT ID_Name,I_Name,J_Name,ID_No,NType FROM L2_1 "
                                            "WHERE 1=1  AND (NType=1  OR NType=3 )"}));
    }
    // A filter naming lines only leaves a lone ")" for the transformer table: the read
    // ends there, and the next use reads again from the start.
    StartStatementLog();
    BranchDialog lines(3, db(), {"L2_1", "L3_1", "LK_1"}, {6});
    EXPECT_EQ(lines.GetFirstBranch(const_cast<char*>("a1"), i, j), 0);
    EXPECT_EQ(Temp(), (std::vector<std::string>{"a1|A|B|1|6"}));
    EXPECT_EQ(Sent("SELECT ID_Name,I_Name,J_Name,ID_No,Ntype FROM L"), // L3_1 and LK_1
              (std::vector<std::string>{
                  "SELECT ID_Name,I_Name,J_Name,ID_No,Ntype FROM L3_1 WHERE 1=1 )"}));
    lines.GetFirstBranch(const_cast<char*>("a1"), i, j);
    EXPECT_EQ(Sent("DELETE FROM BRANCHTEMP").size(), 2u);
}

// Names of up to 20 bytes as the design counted them (ten Chinese characters): a typed
// branch name fills its ends and Return keeps that branch chosen, also where another branch
// between the same ends comes first; a name of 11 characters is cut to 10, which no branch
// answers; a node of 11 comes back cut to 10.
TEST_F(BranchChooser, KeyboardDrivesTheListsAndTheNameAndChineseNamesOfTenCharactersAreKeptChosen)
{
    const QString a = "京西五百千伏变电站甲", b = "京东母线", c = "津南十一个字的母线名称";
    const QString n[] = {"甲", "华北六字线路", "华北七个字线路", "华北电网十个字的线路"};
    Exec("INSERT INTO CDB_ACLINEBAK(ID_Name,I_Name,J_Name,ID_No) VALUES ('" + n[0] + "','" + b +
         "','" + a + "',1),('" + n[1] + "','" + a + "','" + b + "',2),('" + n[2] + "','" + c +
         "','" + b + "',1),('" + n[3] + "','" + a + "','" + b + "',1),"
         "('L1','AB12','X1',1),('L2','AC3','X2',1),('L3','X1','Y',1)");
    BranchDialog dlg(1, db(), {"CDB_ACLINEBAK"});
    WhenShown(&dlg, [&] {
        QLineEdit* combo = dlg.ComboBox_BranchName->lineEdit();

        // Typing moves the left list by a prefix that ignores case.
        QTest::keyClicks(dlg.LineEdit_BusName1, "ab");
        EXPECT_EQ(Current(dlg.ListBox_Branch), "AB12");
        QTest::keyClicks(dlg.LineEdit_BusName2, "zz");
        // Return completes the first edit and fills the other list; the second edit
        // keeps what the user typed.
        QTest::keyClick(dlg.LineEdit_BusName1, Qt::Key_Return);
        EXPECT_EQ(Shown(dlg), "AB12|zz|L1");
        EXPECT_EQ(Texts(dlg.ListBox_AnotherBranch), QStringList({"X1"}));
        // An end the other list lacks empties the second edit and the name.
        QTest::keyClick(dlg.LineEdit_BusName2, Qt::Key_Return);
        EXPECT_EQ(Shown(dlg), "AB12||");

        // A typed branch name fills both ends; Return inserts nothing into the box.
        QTest::keyClicks(combo, "L3");
        QTest::keyClick(combo, Qt::Key_Return);
        EXPECT_EQ(Shown(dlg), "X1|Y|L3");
        EXPECT_EQ(Texts(dlg.ListBox_AnotherBranch), QStringList({"Y", "AB12"}));
        EXPECT_EQ(dlg.ComboBox_BranchName->count(), 8) << "the seven names and one empty";
        // Choosing a name with the arrow keys fills the ends too.
        QTest::keyClick(dlg.ComboBox_BranchName, Qt::Key_Up);
        EXPECT_EQ(Shown(dlg), "AC3|X2|L2");

        // The name typed; the ends, the name and the other list shown after Return. The cut
        // node is no stored I side, so its list is empty; a name not found clears it all.
        const QString typed[][2] = {{n[2], c.left(10) + "|" + b + "|" + n[2] + "|"},
                                    {n[1], a + "|" + b + "|" + n[1] + "|" + b},
                                    {"十一个字的支路名称之乙", "|||"},
                                    {n[3], a + "|" + b + "|" + n[3] + "|" + b}};
        for (const auto& t : typed) {
            combo->selectAll();
            CommitText(combo, t[0]);
            QTest::keyClick(combo, Qt::Key_Return);
            EXPECT_EQ(Shown(dlg) + "|" + Texts(dlg.ListBox_AnotherBranch).join(',').toStdString(),
                      t[1].toStdString()) << t[0].toStdString();
        }
        SaveScreenshot(&dlg, "branch_chooser_chinese");
        QTest::mouseClick(dlg.ToolButton_OK, Qt::LeftButton);
    });
    ASSERT_EQ(dlg.ChooseBranch(noName, noName, noName), 0);
    EXPECT_EQ(Chosen(dlg), (n[3] + "|" + a + "|" + b + "|1|6").toStdString());
}

TEST(BranchChooserWithoutConnection, ListsStayEmptyAndOutputsUntouched)
{
    testsupport::InstallRecorders();
    BranchDialog dlg(1, nullptr, {"CDB_ACLINEBAK"}, {6});
    char i[21] = "keep", j[21] = "keep";
    EXPECT_EQ(dlg.GetFirstBranch(const_cast<char*>("L1"), i, j), 0);
    EXPECT_EQ(std::string(i) + "-" + j, "keep-keep");
    EXPECT_TRUE(dlg.Read());
    // Not even the empty name is listed; the dialog is closed unanswered.
    WhenShown(&dlg, [&] { EXPECT_EQ(dlg.ComboBox_BranchName->count(), 0); });
    EXPECT_EQ(dlg.ChooseBranch(noName, noName, noName), 1);
}
