#include "dialogs/WinDlgCalDataSaveBack.h"

#include "common/Feedback.h"
#include "common/GbkWidth.h"
#include "common/ModalBox.h"
#include "dialogs/DialogStatements.h"
#include "dialogs/DialogKit.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSqlQuery>
#include <QVariant>

using namespace dlgsql::saveback;

WinDlgCalDataSaveBack::WinDlgCalDataSaveBack(QSqlDatabase* pDB, QWidget* parent,
                                             const char* name, bool modal, Qt::WindowFlags fl)
    : QDialog(parent, fl), m_pDB(pDB)
{
    setObjectName(QString::fromLatin1(name ? name : "WinDlgCalDataSaveBack"));
    setModal(modal);

    listBox_DataGroup = Place(new QListWidget(this), "listBox_DataGroup", 90, 70, 130, 90);
    lineEdit_NewDataGroup =
        Place(new QLineEdit(this), "lineEdit_NewDataGroup", 90, 40, 130, 21);
    pushButton_OK = Place(new QPushButton(this), "pushButton_OK", 60, 170, 71, 21);
    pushButton_Cancel = Place(new QPushButton(this), "pushButton_Cancel", 150, 170, 71, 21);
    textLabel_NewDataGroup = Place(new QLabel(this), "textLabel_NewDataGroup", 10, 40, 72, 20);
    textLabel_OldDataGroups = Place(new QLabel(this), "textLabel_OldDataGroups", 10, 70, 72, 20);
    checkBox_SaveAsNew = Place(new QCheckBox(this), "checkBox_SaveAsNew", 10, 10, 170, 20);
    // A group's name is a GrpName of 20 bytes: the edit takes no character beyond them.
    LimitToDesignBytes(lineEdit_NewDataGroup, kNameBytes);

    setTabOrder(checkBox_SaveAsNew, lineEdit_NewDataGroup);
    setTabOrder(lineEdit_NewDataGroup, listBox_DataGroup);
    setTabOrder(listBox_DataGroup, pushButton_OK);
    setTabOrder(pushButton_OK, pushButton_Cancel);

    languageChange();
    resize(QSize(242, 204).expandedTo(minimumSizeHint()));

    connect(pushButton_OK, &QPushButton::clicked, this,
            &WinDlgCalDataSaveBack::pushButton_OK_clicked);
    connect(pushButton_Cancel, &QPushButton::clicked, this,
            &WinDlgCalDataSaveBack::pushButton_Cancel_clicked);
    connect(checkBox_SaveAsNew, &QCheckBox::toggled, this,
            &WinDlgCalDataSaveBack::chechBox_SavaAsNew_toggled);

    // languageChange put in a placeholder item; the list is filled from the server.
    listBox_DataGroup->clear();
    const QByteArray sql = FormatText(SQL_GROUPS, GROUP_TABLE, dlgsql::WORKING_COPY);
    QSqlQuery q(ConnectionOrNone(m_pDB));
    if (!q.exec(QString::fromLocal8Bit(sql))) {
        ShowMessagef(MSG_ERROR, dlgsql::MSG_SQL_FAIL, sql.constData());
        return;
    }
    while (q.isActive() && q.next()) {
        listBox_DataGroup->addItem(q.value(0).toString());
    }
    // The check box and the line edit are left as made: the edit starts enabled.
}

void WinDlgCalDataSaveBack::languageChange()
{
    setWindowTitle(QString::fromUtf8(CAPTION));
    checkBox_SaveAsNew->setText(QStringLiteral("将改动数据保存至新数据组"));
    textLabel_NewDataGroup->setText(QStringLiteral("新数据组名："));
    textLabel_OldDataGroups->setText(QStringLiteral("原有数据组："));
    pushButton_OK->setText(QStringLiteral("确定"));
    pushButton_Cancel->setText(QStringLiteral("取消"));
    listBox_DataGroup->clear();
    listBox_DataGroup->addItem(QStringLiteral("New Item"));
}

bool WinDlgCalDataSaveBack::IsSaveAsNewDataGroup()
{
    return checkBox_SaveAsNew->isChecked();
}

QString WinDlgCalDataSaveBack::NewDataGroup() const
{
    return lineEdit_NewDataGroup->text();
}

void WinDlgCalDataSaveBack::pushButton_OK_clicked()
{
    // Checked whatever the box shows, so text left in a disabled edit can block too.
    if (IsNewDataGroupValid(lineEdit_NewDataGroup->text())) {
        accept();
    }
}

void WinDlgCalDataSaveBack::pushButton_Cancel_clicked()
{
    reject();
}

void WinDlgCalDataSaveBack::chechBox_SavaAsNew_toggled(bool on)
{
    lineEdit_NewDataGroup->setEnabled(on);
}

bool WinDlgCalDataSaveBack::IsNewDataGroupValid(const QString& name)
{
    if (FindItemExactMatch(listBox_DataGroup, name)) {
        ShowModalBox(ModalBoxKind::Warning, QString::fromUtf8(BOX_CAPTION),
                     QString::fromUtf8(BOX_EXISTS_HEAD) + name + QString::fromUtf8(BOX_EXISTS_TAIL));
        return false;
    }
    // What the edit refuses may still come in by code (setText is not validated).
    if (GbkWidth(name) > kNameBytes) {
        ShowMessage(MSG_TOO_LONG, MSG_ERROR);
        return false;
    }
    for (char c : FORBIDDEN) {
        if (name.contains(QLatin1Char(c))) {
            ShowMessage(MSG_FORBIDDEN, MSG_ERROR);
            return false;
        }
    }
    return true;
}

int WinDlgCalDataSaveBack::DelDBGroup(const QString& name)
{
    const QByteArray group = SqlText(m_pDB, name.toLocal8Bit());
    QSqlQuery q(ConnectionOrNone(m_pDB));
    int total = 0;
    // No transaction: the tables before a refused statement stay changed.
    for (const char* table : GROUP_TABLES) {
        const QByteArray sql =
            FormatText(SQL_DELETE_GROUP, table, dlgsql::WORKING_COPY, group.constData());
        if (!ExecStatement(q, sql)) {
            ShowMessagef(MSG_ERROR, dlgsql::MSG_SQL_FAIL, sql.constData());
            return -1;
        }
        if (q.isActive()) {
            total += q.numRowsAffected();
        }
    }
    return total;
}
