// The find dialog over a table (shortcuts, directions, wrapping, case, whole cells,
// hidden read-only columns, history) and the calculation-data grid (the type check of
// user edits, CFieldInfo).

#include "DialogDriver.h"
#include "Recorders.h"
#include "dialogs/DataTable.h"
#include "dialogs/WinDlgFindText.h"
#include "dialogs/WinDlgRTDBCalData.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>
#include <tuple>

using namespace dialogtest;
using testsupport::BoxRecorder;

namespace {

class FindDialog : public WinDlgFindText
{
public:
    QString Find() const { return m_strFind; }
};

// A 3 x 3 table:  a0 xABCy  c0 / ABC  b1  abcd / c2  z  abc
struct FindFixture : ::testing::Test
{
    CDataTable table{3, 3};
    FindDialog dlg;

    void SetUp() override
    {
        testsupport::InstallRecorders();
        const char* cells[] = {"a0", "xABCy", "c0", "ABC", "b1", "abcd", "c2", "z", "abc"};
        for (int k = 0; k < 9; ++k) {
            table.setText(k / 3, k % 3, cells[k]);
        }
        dlg.setTable(&table);
    }
    // Types `text` as the search text, starts at (row, col) and presses Find Next;
    // gives the cell made current, or (-9, -9) when the search found nothing.
    QPoint FindFrom(const QString& text, int row, int col)
    {
        table.setCurrentCell(row, col);
        dlg.comboBox_Text->lineEdit()->clear();
        QTest::keyClicks(dlg.comboBox_Text->lineEdit(), text);
        const size_t boxes = BoxRecorder::instance().boxes().size();
        dlg.show();
        QTest::mouseClick(dlg.pushButton_FindNext, Qt::LeftButton);
        if (BoxRecorder::instance().boxes().size() > boxes) {
            EXPECT_EQ(BoxRecorder::instance().boxes().back().text, "没有找到匹配项！");
            EXPECT_EQ(BoxRecorder::instance().boxes().back().caption, "提示");
            EXPECT_TRUE(dlg.isVisible()) << "not found: the dialog stays";
            return {-9, -9};
        }
        EXPECT_FALSE(dlg.isVisible()) << "a match hides the dialog";
        return {table.currentRow(), table.currentColumn()};
    }
};

} // namespace

TEST_F(FindFixture, SearchesEitherWayWholeCellsHiddenColumnsHistoryAndShortcuts)
{
    // Case ignored by default: the text is kept in upper case afterwards.
    EXPECT_EQ(FindFrom("abc", 0, 0), QPoint(0, 1));
    EXPECT_EQ(dlg.Find(), "ABC");
    dlg.checkBox_DiffUpAndLow->setChecked(true);
    EXPECT_EQ(FindFrom("abc", 0, 0), QPoint(1, 2));
    EXPECT_EQ(dlg.Find(), "abc");
    dlg.checkBox_DiffUpAndLow->setChecked(false);
    dlg.checkBox_BackForward->setChecked(true);
    EXPECT_EQ(FindFrom("abc", 1, 0), QPoint(0, 1));
    EXPECT_EQ(FindFrom("abc", 0, 1), QPoint(-9, -9)) << "no wrap: the start is not reached";
    dlg.checkBox_BackForward->setChecked(false);
    // From the last cell without wrapping: nothing, at once.
    EXPECT_EQ(FindFrom("a0", 2, 2), QPoint(-9, -9));
    // With wrapping, a single match in the start cell is found last.
    dlg.checkBox_Rotate->setChecked(true);
    EXPECT_EQ(FindFrom("z", 2, 1), QPoint(2, 1));
    EXPECT_EQ(FindFrom("a0", 2, 2), QPoint(0, 0));
    EXPECT_EQ(FindFrom("nowhere", 1, 1), QPoint(-9, -9));

    dlg.checkBox_WholeWord->setChecked(true);
    EXPECT_EQ(FindFrom(" abc ", 0, 0), QPoint(1, 0)) << "ABC, not xABCy or abcd";
    // A hidden read-only column is passed over; hidden editable and visible read-only
    // columns are searched.
    table.setColumnReadOnly(0, true);
    table.setColumnHidden(0, true);
    EXPECT_EQ(FindFrom("abc", 0, 0), QPoint(2, 2));
    table.setColumnReadOnly(0, false);
    EXPECT_EQ(FindFrom("abc", 0, 0), QPoint(1, 0));
    table.setColumnHidden(0, false);
    table.setColumnReadOnly(0, true);
    EXPECT_EQ(FindFrom("abc", 0, 0), QPoint(1, 0));

    // Each text joins the history once, appended; an empty text matches the next cell.
    dlg.checkBox_WholeWord->setChecked(false);
    EXPECT_EQ(FindFrom("", 1, 1), QPoint(1, 2));
    QStringList history;
    for (int k = 0; k < dlg.comboBox_Text->count(); ++k) {
        history << dlg.comboBox_Text->itemText(k);
    }
    EXPECT_EQ(history, QStringList({"abc", "a0", "z", "nowhere", " abc ", ""}));
    // Return in the box takes its text as the search text, and keeps it in the history.
    dlg.comboBox_Text->lineEdit()->clear();
    QTest::keyClicks(dlg.comboBox_Text->lineEdit(), "b1");
    QTest::keyClick(dlg.comboBox_Text->lineEdit(), Qt::Key_Return);
    EXPECT_EQ(dlg.Find(), "b1");
    EXPECT_EQ(dlg.comboBox_Text->findText("b1", Qt::MatchFixedString | Qt::MatchCaseSensitive), 0)
        << "after the first search, new texts go to the top";
    // With no current cell and no wrapping the search starts in row -1, which has no
    // text, and runs on into the table.
    dlg.checkBox_Rotate->setChecked(false);
    table.setCurrentCell(-1, -1);
    dlg.comboBox_Text->setEditText("c2");
    dlg.ButtonFindNext_Clicked();
    EXPECT_EQ(QPoint(table.currentRow(), table.currentColumn()), QPoint(2, 0));

    EXPECT_EQ(dlg.windowTitle(), "查找");
    ShowAndWait(&dlg);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dlg));
    for (auto [key, box] : {std::pair{Qt::Key_D, dlg.checkBox_DiffUpAndLow},
                            std::pair{Qt::Key_R, dlg.checkBox_Rotate},
                            std::pair{Qt::Key_W, dlg.checkBox_WholeWord},
                            std::pair{Qt::Key_B, dlg.checkBox_BackForward}}) {
        QTest::keyClick(&dlg, key, Qt::ControlModifier);
        EXPECT_TRUE(QTest::qWaitFor([box = box] { return box->isChecked(); }, 1000))
            << box->objectName().toStdString();
    }
    SaveScreenshot(&dlg, "find_text");
    // Ctrl+N searches: backward, case-sensitive, whole cell, wrapping from (0, 0).
    table.setCurrentCell(0, 0);
    dlg.comboBox_Text->setEditText("abc");
    QTest::keyClick(&dlg, Qt::Key_N, Qt::ControlModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !dlg.isVisible(); }, 1000));
    EXPECT_EQ(QPoint(table.currentRow(), table.currentColumn()), QPoint(2, 2));
}

namespace {

// A grid the way a module makes one: its own table name, column types and cells.
class TestGrid : public WinDlgRTDBCalData
{
public:
    explicit TestGrid(const CHandleGraphInfo& info) : WinDlgRTDBCalData(info) {}
    void GetCalDBTableName(char* name) override { std::strcpy(name, "L2_0"); }
    void Init() override
    {
        table_CalData->setColumnCount(5);
        table_CalData->setHorizontalHeaderLabels({"整数", "实数", "不检查", "名称", "只读"});
        table_CalData->setColumnReadOnly(4, true);
        for (CalDataFieldInfo* f : fields) {
            m_pFieldList->append(f);
        }
        for (int c = 0; c < 5; ++c) {
            table_CalData->setText(0, c, QStringList({"12", "1.5", "7", "L1", "RO"})[c]);
            table_CalData->setColumnWidth(c, 56);
        }
    }
    CalDataFieldInfo integer{0, 1}, real{0, 2}, unchecked{1, 1};
    QList<CalDataFieldInfo*> fields{&integer, &real, &unchecked};
    const CHandleGraphInfo& Info() const { return m_GraphInfo; }
};

void Edit(CDataTable* table, int row, int col, const QString& text)
{
    ClickCell(table, row, col);
    QTest::keyClick(table, Qt::Key_F2);
    auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    ASSERT_TRUE(editor) << "no editor opened";
    editor->selectAll();
    QTest::keyClick(editor, Qt::Key_Backspace);
    QTest::keyClicks(editor, text);
    // The delegate commits and closes its editor from the event loop.
    QPointer<QWidget> open(editor);
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&] { return open.isNull(); }, 2000));
}

} // namespace

TEST(CalDataGrid, UserEditsAreCheckedByColumnTypeCodeFillsAreNotAndFieldInfoKeepsWidthsAndNames)
{
    CHandleGraphInfo info;
    info.m_nNumber = 7;
    TestGrid grid(info);
    EXPECT_EQ(grid.Info().m_nNumber, 7);
    EXPECT_EQ(grid.windowTitle(), "计算数据修改");

    QSignalSpy edits(grid.table_CalData, &CDataTable::valueChanged);
    grid.Init();
    grid.table_CalData->setText(2, 0, "filled by code");
    EXPECT_EQ(edits.count(), 0) << "code fills are no edits, and are not checked";
    EXPECT_EQ(grid.table_CalData->text(2, 0), "filled by code");

    ShowAndWait(&grid);
    // Column, typed text, text kept, in this order. An empty text goes back to the text the
    // cell had when it became current, not to the last good one; column 2's entry has no
    // check and column 3 no entry.
    const std::tuple<int, QString, QString> typed[] = {
        {0, "1x", "12"}, {0, "-40", "-40"}, {1, "1e3", "1e3"},
        {1, "", "1.5"},  {2, "abc", "abc"}, {3, "any text", "any text"}};
    for (const auto& [col, text, kept] : typed) {
        Edit(grid.table_CalData, 0, col, text);
        EXPECT_EQ(grid.table_CalData->text(0, col), kept) << col << " " << text.toStdString();
    }
    EXPECT_EQ(edits.count(), 6) << "the two reverts are no edits of their own";
    ClickCell(grid.table_CalData, 0, 4);
    QTest::keyClick(grid.table_CalData, Qt::Key_F2);
    QTest::keyClicks(grid.table_CalData, "x");
    EXPECT_EQ(grid.table_CalData->text(0, 4), "RO") << "a read-only column takes no edit";
    SaveScreenshot(&grid, "caldata_grid");
    QTest::mouseClick(grid.pushButton_OK, Qt::LeftButton);
    EXPECT_EQ(grid.result(), QDialog::Accepted);

    CDataTable table(2, 3);
    CFieldInfo field(&table);
    EXPECT_EQ(std::make_tuple(field.GetIndexPos(), field.GetColumnWidth(), field.IsPriKey()),
              std::make_tuple(-1, 1, false));
    field.SetIndexPos(1);
    field.SetColumnWidth(0, true);
    EXPECT_EQ(table.columnWidth(1), 1) << "1 is the floor";
    field.SetColumnWidth(50, false);
    EXPECT_EQ(field.GetColumnWidth(), 50);
    EXPECT_EQ(table.columnWidth(1), 1) << "stored only";
    field.SetColumnWidth(50, true);
    EXPECT_EQ(table.columnWidth(1), 1) << "equal to the stored width: nothing happens";
    table.setColumnReadOnly(1, true);
    field.SetColumnWidth(80, true);
    EXPECT_EQ(table.columnWidth(1), 1);
    EXPECT_EQ(field.GetColumnWidth(), 50) << "a read-only column's width never changes";

    field.SetFieldName("a_name_of_forty_bytes_that_is_far_too_long");
    EXPECT_EQ(std::string(field.GetFieldName()), "a_name_of_forty_bytes_that_is_f");
    field.SetFieldName_CH("有功出力");
    EXPECT_STREQ(field.GetFieldName_CH(), "有功出力");
    field.SetFieldName("");
    field.SetFieldName_CH(nullptr);
    EXPECT_EQ(std::string(field.GetFieldName(), 32), std::string(32, '\0'));
    EXPECT_EQ(std::string(field.GetFieldName_CH(), 32), std::string(32, '\0'));
}
