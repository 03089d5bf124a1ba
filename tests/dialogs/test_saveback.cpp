// The data save-back dialog: the group list, the name check whatever the box shows,
// and the deletion of a group that stops at the first refused table.

#include "DbTest.h"
#include "DialogDriver.h"
#include "dialogs/WinDlgCalDataSaveBack.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

using namespace dialogtest;
using testsupport::DbTest;

namespace {
class SaveBackDialog : public WinDlgCalDataSaveBack
{
public:
    using WinDlgCalDataSaveBack::DelDBGroup;
    using WinDlgCalDataSaveBack::IsNewDataGroupValid;
    using WinDlgCalDataSaveBack::WinDlgCalDataSaveBack;
};

// Types `name` into the emptied edit and presses OK; true when the dialog closed.
bool OkWith(WinDlgCalDataSaveBack& dlg, const QString& name)
{
    dlg.lineEdit_NewDataGroup->setEnabled(true);
    dlg.lineEdit_NewDataGroup->clear();
    QTest::keyClicks(dlg.lineEdit_NewDataGroup, name);
    dlg.lineEdit_NewDataGroup->setEnabled(dlg.checkBox_SaveAsNew->isChecked());
    QTest::mouseClick(dlg.pushButton_OK, Qt::LeftButton);
    return !dlg.isVisible();
}
} // namespace

class SaveBack : public DbTest
{
protected:
    void SetUp() override
    {
        DbTest::SetUp();
        Truncate({"CDB_DATAGROUPBAK", "CDB_ACLINEBAK", "CDB_TRANS_3WBAK", "CDB_LOADBAK",
                  "CDB_SVCBAK"});
        Exec("INSERT INTO CDB_DATAGROUPBAK(GrpName) "
             "VALUES ('G1'),('组二'),('华北电网二零二五冬季')");
    }
};

// A group's name holds 20 bytes as the design counted them (ten Chinese characters).
TEST_F(SaveBack, ListsTheGroupsAndChecksTheNameOfTwentyBytesWhateverTheBoxShows)
{
    SaveBackDialog dlg(db());
    EXPECT_EQ(dlg.windowTitle(), "数据回存");
    EXPECT_EQ(Texts(dlg.listBox_DataGroup), QStringList({"G1", "华北电网二零二五冬季", "组二"}))
        << "the placeholder item is gone";
    EXPECT_TRUE(dlg.lineEdit_NewDataGroup->isEnabled()) << "enabled before the box is touched";

    ShowAndWait(&dlg);
    QTest::mouseClick(dlg.checkBox_SaveAsNew, Qt::LeftButton);
    EXPECT_TRUE(dlg.IsSaveAsNewDataGroup());
    QTest::mouseClick(dlg.checkBox_SaveAsNew, Qt::LeftButton);
    EXPECT_FALSE(dlg.lineEdit_NewDataGroup->isEnabled());

    // With the box off and the edit disabled, its text still blocks the dialog.
    EXPECT_FALSE(OkWith(dlg, "a\\b"));
    EXPECT_EQ(feedback().texts(2), (std::vector<std::string>{"新数据组名含有不合法的字符。"}));
    // An existing name in another case is refused by a warning box.
    QTest::mouseClick(dlg.checkBox_SaveAsNew, Qt::LeftButton);
    EXPECT_FALSE(OkWith(dlg, "g1"));
    ASSERT_EQ(boxes().boxes().size(), 1u);
    EXPECT_TRUE(boxes().boxes()[0].warning);
    EXPECT_EQ(boxes().boxes()[0].caption, "计算数据回存");
    EXPECT_EQ(boxes().boxes()[0].text, "给定数据组(g1)已经存在，请重新指定数据组名称!");
    for (const char* bad : {"x'", "x\"", "x/", "x;", "x%"}) {
        EXPECT_FALSE(dlg.IsNewDataGroupValid(bad)) << bad;
    }
    EXPECT_EQ(feedback().texts(2).size(), 6u);
    // The edit takes no eleventh Chinese character, typed or committed; one that gets in by
    // code is refused at OK.
    dlg.lineEdit_NewDataGroup->clear();
    CommitText(dlg.lineEdit_NewDataGroup, "华北电网运行方式调整");
    CommitText(dlg.lineEdit_NewDataGroup, "甲");
    QTest::keyClicks(dlg.lineEdit_NewDataGroup, "A");
    EXPECT_EQ(dlg.NewDataGroup(), "华北电网运行方式调整");
    SaveScreenshot(&dlg, "saveback");
    dlg.lineEdit_NewDataGroup->setText("华北电网运行方式调整甲");
    QTest::mouseClick(dlg.pushButton_OK, Qt::LeftButton);
    EXPECT_TRUE(dlg.isVisible());
    EXPECT_EQ(feedback().texts(2).back(), "新数据组名超过20字节（汉字按2字节计）。");
    // A blank is allowed; so is an empty name, even when saving to a new group.
    EXPECT_TRUE(OkWith(dlg, "new group"));
    EXPECT_EQ(dlg.NewDataGroup(), "new group");
    ShowAndWait(&dlg);
    EXPECT_TRUE(OkWith(dlg, ""));
    EXPECT_EQ(dlg.result(), QDialog::Accepted);
}

TEST_F(SaveBack, AFailedGroupQueryLetsEveryNamePassAndADeletionStopsAtTheFirstRefusedTable)
{
    Exec("RENAME TABLE CDB_DATAGROUPBAK TO groups_away");
    SaveBackDialog dlg(db());
    Exec("RENAME TABLE groups_away TO CDB_DATAGROUPBAK");
    EXPECT_EQ(feedback().texts(2),
              (std::vector<std::string>{"Fail to execute SQL: SELECT GrpName FROM CDB_DATAGROUPBAK "}));
    EXPECT_EQ(dlg.listBox_DataGroup->count(), 0);
    EXPECT_TRUE(dlg.IsNewDataGroupValid("G1"));
    feedback().clear();

    Exec("INSERT INTO CDB_ACLINEBAK(GrpName,ID_Name) VALUES ('G1','L1'),('G1','L2'),('G9','L3')");
    Exec("INSERT INTO CDB_LOADBAK(GrpName,ID_Name) VALUES ('G1','D1')");
    Exec("INSERT INTO CDB_SVCBAK(GrpName,ID_Name) VALUES ('G1','S1')");
    Exec("INSERT INTO CDB_TRANS_3WBAK(GrpName,ID_Name) VALUES ('组二','T1')");
    Exec("INSERT INTO CDB_ACLINEBAK(GrpName,ID_Name) VALUES ('组二','L4')");
    StartStatementLog();
    // Not every table with groups is among those emptied: CDB_SVCBAK keeps S1.
    EXPECT_EQ(dlg.DelDBGroup("G1"), 4) << "the group row, two lines and a load";
    const auto sent = SentStatements();
    ASSERT_EQ(sent.size(), 12u);
    EXPECT_EQ(sent[0], "delete from CDB_DATAGROUPBAK where GrpName='G1'");
    EXPECT_EQ(sent[11], "delete from CDB_ISOSWITCHBAK where GrpName='G1'");
    EXPECT_EQ(dlg.DelDBGroup("nowhere"), 0);

    // No transaction: the tables before the refused one stay emptied of the group.
    Exec("RENAME TABLE CDB_TRANS_2WBAK TO t2w_away");
    EXPECT_EQ(dlg.DelDBGroup("组二"), -1);
    Exec("RENAME TABLE t2w_away TO CDB_TRANS_2WBAK");
    EXPECT_EQ(Count("CDB_DATAGROUPBAK WHERE GrpName='组二'"), 0);
    EXPECT_EQ(Count("CDB_TRANS_3WBAK WHERE GrpName='组二'"), 1) << "after the refusal";
    EXPECT_EQ(feedback().texts(2), (std::vector<std::string>{
                                       "Fail to execute SQL: delete from CDB_TRANS_2WBAK where "
                                       "GrpName='组二'"}));

    // A name with a quote or a backslash deletes that group only.
    Exec("DELETE FROM CDB_ACLINEBAK");
    Exec("INSERT INTO CDB_ACLINEBAK(GrpName,ID_Name) VALUES ('G1','L1'),('x','L2'),"
         "('x'' OR ''1''=''1','L3'),('a\\\\','L4'),('a','L5')");
    EXPECT_EQ(dlg.DelDBGroup("x' OR '1'='1"), 1);
    EXPECT_EQ(dlg.DelDBGroup("a\\"), 1);
    EXPECT_EQ(Rows("SELECT GrpName FROM CDB_ACLINEBAK ORDER BY ID_Name"),
              (std::vector<std::string>{"G1", "x", "a"}));
}
