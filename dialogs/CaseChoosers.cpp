#include "dialogs/CaseChoosers.h"

#include "common/Feedback.h"
#include "common/ModalBox.h"
#include "dialogs/DialogStatements.h"
#include "dialogs/DialogKit.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSqlQuery>
#include <QToolButton>
#include <QVariant>

using namespace dlgsql::caseno;

CComboBoxCaseNo::CComboBoxCaseNo(QWidget* parent, const char* name) : QComboBox(parent)
{
    if (name) {
        setObjectName(QString::fromLatin1(name));
    }
    setEditable(false);
}

void CComboBoxCaseNo::EmitcurrentTextChanged(const QString& text)
{
    emit currentTextChanged(text);
}

void CComboBoxCaseNo::EmititemsChanged()
{
    emit itemsChanged();
}

WinDlgCaseNoSearch::WinDlgCaseNoSearch(QSqlDatabase* pDB, const QString& strTable,
                                       QWidget* parent, const char* name, bool modal,
                                       Qt::WindowFlags fl)
    : QDialog(parent, fl)
{
    setObjectName(QString::fromLatin1(name ? name : "WinDlgCaseNoSearch"));
    setModal(modal);
    setFixedSize(202, 215);
    setWindowTitle(QStringLiteral("查找"));

    ToolButton_Cancel = Place(new QToolButton(this), "ToolButton_Cancel", 100, 190, 91, 21);
    ToolButton_Cancel->setText(QStringLiteral("返回"));
    ToolButton_Cancel->setToolTip(QStringLiteral("取消按钮"));
    ToolButton_OK = Place(new QToolButton(this), "ToolButton_OK", 10, 190, 91, 21);
    ToolButton_OK->setText(QStringLiteral("查找"));
    ToolButton_OK->setToolTip(QStringLiteral("匹配查找按钮"));
    ListBox_ParNo = Place(new QListWidget(this), "ListBox_ParNo", 10, 40, 181, 140);
    LineEdit_ParNo = Place(new QLineEdit(this), "LineEdit_ParNo", 70, 10, 121, 26);
    LineEdit_ParNo->setToolTip(QStringLiteral("下面是待选作业名"));
    TextLabel_ParNo = Place(new QLabel(QStringLiteral("作业名:"), this), "TextLabel_ParNo", 10,
                            10, 60, 26);

    setTabOrder(LineEdit_ParNo, ListBox_ParNo);
    setTabOrder(ListBox_ParNo, ToolButton_OK);
    setTabOrder(ToolButton_OK, ToolButton_Cancel);
    LineEdit_ParNo->setFocus();

    connect(ToolButton_OK, &QToolButton::clicked, this, &WinDlgCaseNoSearch::ToolButton_OK_clicked);
    connect(ToolButton_Cancel, &QToolButton::clicked, this,
            &WinDlgCaseNoSearch::ToolButton_Cancel_clicked);
    connect(LineEdit_ParNo, &QLineEdit::returnPressed, this,
            &WinDlgCaseNoSearch::LineEdit_CaseNo_returnPressed);
    connect(ListBox_ParNo, &QListWidget::itemClicked, this,
            &WinDlgCaseNoSearch::ListBox_CaseNo_clicked);
    connect(LineEdit_ParNo, &QLineEdit::textChanged, this,
            &WinDlgCaseNoSearch::LineEdit_CaseNo_textChanged);

    QSqlQuery q(ConnectionOrNone(pDB));
    if (!q.exec(QString::fromLocal8Bit(FormatText(SQL_CASES, strTable.toLocal8Bit().constData())))) {
        return; // an empty list, and no message
    }
    while (q.next()) {
        ListBox_ParNo->addItem(q.value(0).toString());
    }
    // The list stands in name order, not in the order of the case numbers.
    SortItems(ListBox_ParNo);
}

QString WinDlgCaseNoSearch::GetCaseName() const
{
    return LineEdit_ParNo->text();
}

void WinDlgCaseNoSearch::LineEdit_CaseNo_textChanged(const QString& text)
{
    if (ListBox_ParNo->count() == 0) {
        return;
    }
    // A text that begins no name (or an emptied edit) leaves the list where it is.
    if (QListWidgetItem* hit = FindItemBeginsWith(ListBox_ParNo, text)) {
        ListBox_ParNo->scrollToItem(hit, QAbstractItemView::PositionAtTop);
        ListBox_ParNo->setCurrentItem(hit);
    }
}

void WinDlgCaseNoSearch::ListBox_CaseNo_clicked(QListWidgetItem* item)
{
    if (item) {
        LineEdit_ParNo->setText(item->text());
    }
}

void WinDlgCaseNoSearch::LineEdit_CaseNo_returnPressed()
{
    QListWidgetItem* current = ListBox_ParNo->currentItem();
    LineEdit_ParNo->setText(current ? current->text() : QString());
}

void WinDlgCaseNoSearch::ToolButton_OK_clicked()
{
    QListWidgetItem* hit = FindItemBeginsWith(ListBox_ParNo, LineEdit_ParNo->text());
    if (!hit) {
        ShowModalBox(ModalBoxKind::Warning, QString::fromUtf8(BOX_CAPTION),
                     QString::fromUtf8(BOX_NO_NAME));
        return;
    }
    // A prefix becomes the whole name; of two names sharing it, the first listed.
    LineEdit_ParNo->setText(hit->text());
    accept();
}

void WinDlgCaseNoSearch::ToolButton_Cancel_clicked()
{
    reject();
}
