#include "dialogs/WinDlgFindText.h"

#include "common/ModalBox.h"
#include "dialogs/DataTable.h"
#include "dialogs/DialogKit.h"
#include "dialogs/DialogStatements.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>

using namespace dlgsql::find;

WinDlgFindText::WinDlgFindText(QWidget* parent, const char* name, bool modal, Qt::WindowFlags fl)
    : QDialog(parent, fl)
{
    setObjectName(QString::fromLatin1(name ? name : "WinDlgFindText"));
    setModal(modal);

    // The check boxes are placed inside the group box.
    groupBox_Option = Place(new QGroupBox(this), "groupBox_Option", 20, 40, 280, 90);
    checkBox_DiffUpAndLow =
        Place(new QCheckBox(groupBox_Option), "checkBox_DiffUpAndLow", 10, 20, 90, 21);
    checkBox_Rotate = Place(new QCheckBox(groupBox_Option), "checkBox_Rotate", 10, 50, 80, 21);
    checkBox_WholeWord =
        Place(new QCheckBox(groupBox_Option), "checkBox_WholeWord", 140, 20, 100, 21);
    checkBox_BackForward =
        Place(new QCheckBox(groupBox_Option), "checkBox_BackForward", 140, 50, 81, 20);
    textLabel_Find = Place(new QLabel(this), "textLabel_Find", 20, 10, 40, 24);
    pushButton_FindNext = Place(new QPushButton(this), "pushButton_FindNext", 320, 50, 80, 24);
    comboBox_Text = Place(new QComboBox(this), "comboBox_Text", 60, 10, 241, 23);
    comboBox_Text->setEditable(true);
    // No completion, as the box always had. Return keeps Qt's own insertion into the
    // history (without duplicates) and activates the text, which is what the
    // connection below is there to hear.
    comboBox_Text->setCompleter(nullptr);
    pushButton_Cancel = Place(new QPushButton(this), "pushButton_Cancel", 320, 100, 80, 24);

    setTabOrder(comboBox_Text, checkBox_DiffUpAndLow);
    setTabOrder(checkBox_DiffUpAndLow, checkBox_Rotate);
    setTabOrder(checkBox_Rotate, checkBox_WholeWord);
    setTabOrder(checkBox_WholeWord, checkBox_BackForward);
    setTabOrder(checkBox_BackForward, pushButton_FindNext);
    setTabOrder(pushButton_FindNext, pushButton_Cancel);
    comboBox_Text->setFocus();

    languageChange();
    resize(412, 148);

    connect(pushButton_Cancel, &QPushButton::clicked, this, &WinDlgFindText::Cancel_Clicked);
    connect(pushButton_FindNext, &QPushButton::clicked, this,
            &WinDlgFindText::ButtonFindNext_Clicked);
    connect(comboBox_Text, &QComboBox::textActivated, this,
            &WinDlgFindText::ComboBox_Text_Activated);
}

void WinDlgFindText::languageChange()
{
    setWindowTitle(QStringLiteral("查找"));
    textLabel_Find->setText(QStringLiteral("查找:"));
    comboBox_Text->setToolTip(QStringLiteral("查找的文字内容"));
    groupBox_Option->setTitle(QStringLiteral("选项"));
    // A button's text resets its shortcut, so each shortcut is set after its text.
    const struct
    {
        QAbstractButton* button;
        const char* text;
        const char* shortcut;
        const char* tip;
    } buttons[] = {
        {checkBox_DiffUpAndLow, "区分大小写", "Ctrl+D", "区分大小写 Ctrl+D"},
        {checkBox_Rotate, "回绕", "Ctrl+R", "回绕 Ctrl+R"},
        {checkBox_WholeWord, "全字匹配", "Ctrl+W", "全字匹配 Ctrl+W"},
        {checkBox_BackForward, "向后搜索", "Ctrl+B", "向后搜索 Ctrl+B"},
        {pushButton_FindNext, "查找下一个", "Ctrl+N", "查找下一个匹配项"},
        {pushButton_Cancel, "取消", nullptr, "退出本对话框"},
    };
    for (const auto& b : buttons) {
        b.button->setText(QString::fromUtf8(b.text));
        if (b.shortcut) {
            b.button->setShortcut(QKeySequence(QString::fromLatin1(b.shortcut)));
        }
        b.button->setToolTip(QString::fromUtf8(b.tip));
    }
}

void WinDlgFindText::Cancel_Clicked()
{
    hide();
}

void WinDlgFindText::ComboBox_Text_Activated()
{
    m_strFind = comboBox_Text->currentText();
}

void WinDlgFindText::NotFound()
{
    ShowModalBox(ModalBoxKind::Information, QString::fromUtf8(BOX_CAPTION),
                 QString::fromUtf8(BOX_NOT_FOUND));
}

void WinDlgFindText::ButtonFindNext_Clicked()
{
    if (!m_pTable) {
        return; // setTable has not been called: there is nothing to search
    }
    m_pTable->setFocus();
    m_strFind = comboBox_Text->currentText();

    const bool caseSensitive = checkBox_DiffUpAndLow->isChecked();
    const bool wrap = checkBox_Rotate->isChecked();
    const bool wholeCell = checkBox_WholeWord->isChecked();
    const bool backward = checkBox_BackForward->isChecked();

    int startRow = m_pTable->currentRow();
    int startCol = m_pTable->currentColumn();
    if (wrap) {
        startRow = qMax(startRow, 0);
        startCol = qMax(startCol, 0);
    }
    const int numRows = m_pTable->rowCount();
    const int numCols = m_pTable->columnCount();
    int r = startRow, c = startCol;

    // A new search text joins the history once. Qt's insertItem(-1, ...) would put it
    // first; the history has always had it appended.
    bool known = false;
    for (int k = 0; k < comboBox_Text->count() && !known; ++k) {
        known = comboBox_Text->itemText(k) == m_strFind;
    }
    if (!known) {
        comboBox_Text->setInsertPolicy(QComboBox::InsertAtTop);
        comboBox_Text->addItem(m_strFind);
    }
    if (!caseSensitive) {
        m_strFind = m_strFind.toUpper();
    }
    // A table without cells has nothing to find; with wrapping on, stepping through
    // it would never come back to the start cell.
    if (numRows <= 0 || numCols <= 0) {
        NotFound();
        return;
    }

    // The start cell itself is tested last, when wrapping brings the search back to it.
    for (;;) {
        if (!backward) {
            if (++c >= numCols) {
                ++r;
                c = 0;
            }
            if (r >= numRows) {
                if (!wrap) {
                    NotFound();
                    return;
                }
                r = 0;
            }
        } else {
            if (--c < 0) {
                --r;
                c = numCols - 1;
            }
            if (r < 0) {
                if (!wrap) {
                    NotFound();
                    return;
                }
                r = numRows - 1;
            }
        }
        // A hidden read-only column is passed over; a hidden editable column and a
        // visible read-only one are searched.
        if (!(m_pTable->isColumnReadOnly(c) && m_pTable->isColumnHidden(c))) {
            QString cell = m_pTable->text(r, c);
            if (!caseSensitive) {
                cell = cell.toUpper();
            }
            const bool match = wholeCell ? cell.trimmed() == m_strFind.trimmed()
                                         : cell.contains(m_strFind, Qt::CaseSensitive);
            if (match) {
                m_pTable->setCurrentCell(r, c);
                hide();
                return;
            }
        }
        if (r == startRow && c == startCol) {
            NotFound();
            return;
        }
    }
}
