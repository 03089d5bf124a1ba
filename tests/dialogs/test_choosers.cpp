// The bus, terminal and case choosers: typing rules with their messages, the prefix
// look-ups that ignore case, OK's checks; the case combo box's own signals.

#include "DbTest.h"
#include "DialogDriver.h"
#include "dialogs/CaseChoosers.h"
#include "dialogs/WinDlgCalBusChoose.h"

#include <QLineEdit>
#include <QListWidget>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

using namespace dialogtest;
using testsupport::DbTest;

namespace {

void ClearByKeys(QLineEdit* edit)
{
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(edit, Qt::Key_Delete);
}

const std::string RESTORED = "自动恢复上一次合法的母线名！";
const std::string INVALID = "母线名中含有不合法的字符或空格！";
const std::string INVALID_LIST = "不合法的字符有：! ' \" / : ; ~ ^ ( ) | < > , ? \\ ";

} // namespace

class Choosers : public DbTest
{
protected:
    void SetUp() override
    {
        DbTest::SetUp();
        Truncate({"CDB_NODEBAK", "L1_1", "CDB_GENERATBAK", "LF_CASE", "ST_CASE"});
        Exec("INSERT INTO CDB_NODEBAK(Node_Name,ISPhyBus) VALUES ('AB2',1),('AB1',1),"
             "('B3',0),('X(1)',1),('母线一',1)");
    }
    std::vector<std::string> Errors() { return feedback().texts(2); }
};

TEST_F(Choosers, BusNameTypingIsCheckedAndTakenBackAndOkAcceptsAPrefixOnly)
{
    WinDlgCalBusChoose dlg(0, 1, db(), "", false);
    ShowAndWait(&dlg);
    EXPECT_EQ(dlg.windowTitle(), "母线名称");
    ASSERT_EQ(Texts(dlg.ListBox_BusName), QStringList({"AB1", "AB2", "B3", "X(1)", "母线一"}));

    // A trailing blank vanishes; the list follows a prefix that ignores case.
    QTest::keyClicks(dlg.LineEdit_BusName, "ab ");
    EXPECT_EQ(dlg.LineEdit_BusName->text() + "|" + Current(dlg.ListBox_BusName), "ab|AB1");

    // A forbidden character goes back to the last valid name, with three messages.
    QTest::keyClicks(dlg.LineEdit_BusName, "!");
    EXPECT_EQ(dlg.LineEdit_BusName->text(), "ab");
    EXPECT_EQ(Errors(), (std::vector<std::string>{INVALID, INVALID_LIST, RESTORED}));

    // Into an empty edit there is nothing to go back to: two messages, an empty edit.
    ClearByKeys(dlg.LineEdit_BusName);
    feedback().clear();
    QTest::keyClicks(dlg.LineEdit_BusName, "!");
    EXPECT_EQ(dlg.LineEdit_BusName->text(), "");
    EXPECT_EQ(Errors(), (std::vector<std::string>{INVALID, INVALID_LIST}));

    // A click puts the item's name through the same rules.
    QTest::keyClicks(dlg.LineEdit_BusName, "B3");
    feedback().clear();
    ClickItem(dlg.ListBox_BusName, 3);
    EXPECT_EQ(dlg.LineEdit_BusName->text(), "B3");
    EXPECT_EQ(Errors(), (std::vector<std::string>{INVALID, INVALID_LIST, RESTORED}));

    // 20 bytes as the design counted them: ten Chinese characters pass, the eleventh is
    // taken back.
    ClearByKeys(dlg.LineEdit_BusName);
    feedback().clear();
    for (const QChar c : QString("一二三四五六七八九十甲")) {
        CommitText(dlg.LineEdit_BusName, c);
    }
    EXPECT_EQ(dlg.LineEdit_BusName->text(), "一二三四五六七八九十");
    EXPECT_EQ(Errors(), (std::vector<std::string>{"母线名字符串超过20位！", RESTORED}));
    SaveScreenshot(&dlg, "bus_chooser");

    // OK accepts a prefix and refuses an empty or unknown name.
    feedback().clear();
    Exec("INSERT INTO L1_1(Node_Name,ISBus) VALUES ('N2',1),('N1',1),('M',0)");
    StartStatementLog();
    // The preselected name is found whatever its case and shown as given.
    WinDlgCalBusChoose job(1, 1, db(), "n2", true);
    EXPECT_EQ(Current(job.ListBox_BusName) + "|" + job.LineEdit_BusName->text(), "N2|n2");
    // All three fill their lists as the chooser above does, from the statements below.
    WinDlgCalBusChoose jobNodes(1, 1, db(), "", false);
    WinDlgCalBusChoose unknown(0, 1, db(), "zz", true);
    EXPECT_EQ(unknown.LineEdit_BusName->text(), "");
    EXPECT_EQ(SentStatements(), (std::vector<std::string>{
                                    "SELECT Node_Name FROM L1_1 WHERE IsBus=1 ORDER BY Node_Name",
                                    "SELECT Node_Name FROM L1_1 ORDER BY Node_Name",
                                    "SELECT Node_Name FROM CDB_NODEBAK WHERE IsPhyBus=1 ORDER "
                                    "BY Node_Name"}));

    WhenShown(&unknown, [&] {
        QTest::mouseClick(unknown.ToolButton_OK, Qt::LeftButton);
        QTest::keyClicks(unknown.LineEdit_BusName, "zz");
        QTest::mouseClick(unknown.ToolButton_OK, Qt::LeftButton);
        ClearByKeys(unknown.LineEdit_BusName);
        QTest::keyClicks(unknown.LineEdit_BusName, "ab");
        QTest::keyClick(unknown.LineEdit_BusName, Qt::Key_Return); // does nothing here
        QTest::mouseClick(unknown.ToolButton_OK, Qt::LeftButton);
    });
    EXPECT_EQ(unknown.exec(), QDialog::Accepted);
    EXPECT_EQ(unknown.GetName(), "ab") << "the prefix, not the listed name";
    EXPECT_EQ(Errors(), (std::vector<std::string>{"母线名不能为空或只含空格！", "请选择正确的母线名！"}));
}

TEST_F(Choosers, ElementChooserLooksUpTheNodeAndStillClosesWhenTheLookupFails)
{
    Exec("INSERT INTO CDB_GENERATBAK(ID_Name,Node_Name) VALUES ('G2','N7'),('G1','N5')");
    WinDlgCalEleTerm1Choose dlg(db(), "CDB_GENERATBAK", "id_name", "");
    WhenShown(&dlg, [&] {
        SaveScreenshot(&dlg, "element_chooser");
        // No name rule here, and no last name to go back to: too long empties the edit.
        CommitText(dlg.LineEdit_BusName, "一二三四五六七八九十");
        CommitText(dlg.LineEdit_BusName, "甲");
        EXPECT_EQ(dlg.LineEdit_BusName->text(), "");
        EXPECT_EQ(Errors(), (std::vector<std::string>{"名称字符串超过20位！",
                                                      "自动恢复上一次合法的名称！"}));
        QTest::keyClicks(dlg.LineEdit_BusName, "g");
        QTest::keyClick(dlg.LineEdit_BusName, Qt::Key_Return);
        EXPECT_EQ(dlg.LineEdit_BusName->text(), "G1") << "Return takes the current item";
        QTest::mouseClick(dlg.ToolButton_OK, Qt::LeftButton);
    });
    ASSERT_EQ(dlg.exec(), QDialog::Accepted);
    EXPECT_EQ(dlg.GetNodeName(), "N5");

    // Any other column gives the chosen name itself.
    WinDlgCalEleTerm1Choose nodes(db(), "CDB_NODEBAK", "Node_Name", "ab1");
    nodes.ToolButton_OK_clicked();
    EXPECT_EQ(nodes.GetNodeName(), "ab1");

    // A refused lookup: the warning box carries the server's text, and the dialog
    // closes all the same.
    WinDlgCalEleTerm1Choose noNode(db(), "CDB_GENERATBAK", "ID_Name", "G2");
    Exec("ALTER TABLE CDB_GENERATBAK CHANGE Node_Name Node_Gone CHAR(20) BINARY");
    boxes().clear();
    noNode.ToolButton_OK_clicked();
    Exec("ALTER TABLE CDB_GENERATBAK CHANGE Node_Gone Node_Name CHAR(20) BINARY");
    ASSERT_EQ(boxes().boxes().size(), 1u);
    EXPECT_TRUE(boxes().boxes()[0].warning);
    EXPECT_EQ(boxes().boxes()[0].caption, "warning");
    EXPECT_TRUE(boxes().boxes()[0].text.contains("Node_Name")) << boxes().boxes()[0].text.toStdString();
    EXPECT_EQ(noNode.result(), QDialog::Accepted);
    EXPECT_EQ(noNode.GetNodeName(), "");
}

TEST_F(Choosers, CaseSearchFindsByPrefixInTheLocalesOrderAndGivesTheWholeName)
{
    Exec("INSERT INTO LF_CASE(Case_No,Case_Name) VALUES (0,'Aa0'),(1,'b1'),(2,'Abd'),(3,'Abc')");
    WinDlgCaseNoSearch dlg(db(), "LF_CASE");
    EXPECT_EQ(dlg.windowTitle(), "查找");
    WhenShown(&dlg, [&] {
        // Case 0 is not listed; name order, not number order.
        EXPECT_EQ(Texts(dlg.ListBox_ParNo), QStringList({"Abc", "Abd", "b1"}));
        // Return with no current item empties the edit.
        QTest::keyClicks(dlg.LineEdit_ParNo, "zz");
        QTest::keyClick(dlg.LineEdit_ParNo, Qt::Key_Return);
        EXPECT_EQ(dlg.LineEdit_ParNo->text(), "");
        QTest::keyClicks(dlg.LineEdit_ParNo, "zz");
        QTest::mouseClick(dlg.ToolButton_OK, Qt::LeftButton);
        ASSERT_EQ(boxes().boxes().size(), 1u);
        EXPECT_EQ(boxes().boxes()[0].caption, "warning");
        EXPECT_EQ(boxes().boxes()[0].text, "请指定要查找的作业名!");
        ClearByKeys(dlg.LineEdit_ParNo);
        QTest::keyClicks(dlg.LineEdit_ParNo, "ab");
        EXPECT_EQ(Current(dlg.ListBox_ParNo), "Abc");
        SaveScreenshot(&dlg, "case_search");
        QTest::mouseClick(dlg.ToolButton_OK, Qt::LeftButton);
    });
    ASSERT_EQ(dlg.exec(), QDialog::Accepted);
    EXPECT_EQ(dlg.GetCaseName(), "Abc");

    // Under zh_CN the cases stand as that locale sorts them: Chinese first, in pinyin order,
    // then Latin letters with case ignored (Qt 6's own sort: upper case first, Chinese by code
    // point), and a typed prefix finds the first in that order.
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::Chinese, QLocale::China));
    // By code point 上 < 北 < 安; in pinyin 安 (an) < 北 (bei) < 上 (shang).
    Exec("INSERT INTO ST_CASE(Case_No,Case_Name) VALUES (1,'上海'),(2,'北京南'),(3,'ABE'),"
         "(6,'安庆'),(7,'Abd'),(10,'abc'),(12,'北京')");
    WinDlgCaseNoSearch cn(db(), "ST_CASE");
    EXPECT_EQ(Texts(cn.ListBox_ParNo), QStringList({"安庆", "北京", "北京南", "上海", "abc", "Abd", "ABE"}));
    CommitText(cn.LineEdit_ParNo, "北");
    EXPECT_EQ(Current(cn.ListBox_ParNo), "北京");
    QLocale::setDefault(before);
}

TEST(CaseComboBox, IsReadOnlyAndEmitsItsSignalsOnlyWhenAsked)
{
    CComboBoxCaseNo box(nullptr, "cases");
    EXPECT_FALSE(box.isEditable());
    QSignalSpy own(&box, &CComboBoxCaseNo::currentTextChanged);
    QSignalSpy items(&box, &CComboBoxCaseNo::itemsChanged);
    box.addItems({"a", "b"});
    box.setCurrentIndex(1);
    box.EmitcurrentTextChanged("b");
    box.EmititemsChanged();
    ASSERT_EQ(own.count(), 1) << "a change of the box is not its own signal";
    EXPECT_EQ(own.at(0).at(0).toString(), "b");
    EXPECT_EQ(items.count(), 1);
}
