#include "dialogs/WinDlgCalBusChoose.h"

#include "common/Conversions.h"
#include "common/Feedback.h"
#include "common/GbkWidth.h"
#include "common/ModalBox.h"
#include "dialogs/DialogStatements.h"
#include "dialogs/DialogKit.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSqlError>
#include <QSqlQuery>
#include <QToolButton>
#include <QVariant>

using namespace dlgsql::bus;

// ---- What both dialogs share ----

NameChooseDialog::NameChooseDialog(const Texts& texts, QSqlDatabase* pDB, QWidget* parent,
                                   const char* name, bool modal, Qt::WindowFlags fl)
    : QDialog(parent, fl), m_pDB(pDB)
{
    setObjectName(QString::fromLatin1(name ? name : texts.objectName));
    setModal(modal);
    setFixedSize(202, 225);
    setWindowTitle(QString::fromUtf8(texts.caption));

    // The two buttons overlap by one pixel, as they always have.
    ToolButton_Cancel = Place(new QToolButton(this), "ToolButton_Cancel", 100, 190, 91, 31);
    ToolButton_Cancel->setText(QStringLiteral("取消"));
    ToolButton_Cancel->setToolTip(QStringLiteral("取消按钮"));
    ToolButton_OK = Place(new QToolButton(this), "ToolButton_OK", 10, 190, 91, 31);
    ToolButton_OK->setText(QStringLiteral("确定"));
    ToolButton_OK->setToolTip(QStringLiteral("确定按钮"));
    ListBox_BusName = Place(new QListWidget(this), "ListBox_BusName", 10, 40, 181, 140);
    LineEdit_BusName = Place(new QLineEdit(this), "LineEdit_BusName", 70, 10, 121, 26);
    LineEdit_BusName->setMaxLength(20);
    LineEdit_BusName->setToolTip(QString::fromUtf8(texts.editTip));
    TextLabel_BusName = Place(new QLabel(QString::fromUtf8(texts.label), this),
                              "TextLabel_BusName", 10, 10, 60, 26);

    // The widgets are made in the order of the members; typing starts in the edit.
    setTabOrder(LineEdit_BusName, ListBox_BusName);
    setTabOrder(ListBox_BusName, ToolButton_OK);
    setTabOrder(ToolButton_OK, ToolButton_Cancel);
    LineEdit_BusName->setFocus();
}

QString NameChooseDialog::GetName() const
{
    return LineEdit_BusName->text().trimmed();
}

bool NameChooseDialog::AppendQueryToList(const QByteArray& sql)
{
    QSqlQuery q(ConnectionOrNone(m_pDB));
    if (!ExecStatement(q, sql)) {
        return false;
    }
    while (q.next()) {
        ListBox_BusName->addItem(q.value(0).toString());
    }
    return true;
}

void NameChooseDialog::Connect()
{
    connect(ToolButton_OK, &QToolButton::clicked, this, &NameChooseDialog::ToolButton_OK_clicked);
    connect(ToolButton_Cancel, &QToolButton::clicked, this,
            &NameChooseDialog::ToolButton_Cancel_clicked);
    connect(LineEdit_BusName, &QLineEdit::returnPressed, this,
            &NameChooseDialog::LineEdit_BusName_returnPressed);
    connect(ListBox_BusName, &QListWidget::itemClicked, this,
            &NameChooseDialog::ListBox_BusName_clicked);
    m_textChanged = connect(LineEdit_BusName, &QLineEdit::textChanged, this,
                            &NameChooseDialog::LineEdit_BusName_textChanged);
}

void NameChooseDialog::SetEditTextQuietly(const QString& text)
{
    disconnect(m_textChanged);
    LineEdit_BusName->setText(text);
    m_textChanged = connect(LineEdit_BusName, &QLineEdit::textChanged, this,
                            &NameChooseDialog::LineEdit_BusName_textChanged);
}

void NameChooseDialog::Preselect(const QString& name)
{
    if (name.isEmpty()) {
        return;
    }
    if (QListWidgetItem* hit = FindItemExactMatch(ListBox_BusName, name)) {
        ListBox_BusName->setCurrentItem(hit);
        SetEditTextQuietly(name);
    }
}

bool NameChooseDialog::CheckTypedText(const QString& text, const char* tooLong,
                                      const char* restored, QString* stripped)
{
    *stripped = text.trimmed();
    if (*stripped != text) {
        SetEditTextQuietly(*stripped); // a blank at either end vanishes as it is typed
    }
    if (stripped->isEmpty()) {
        m_strLastName.clear();
        return false;
    }
    // The limit is in bytes as the design counted them (two for a Chinese character),
    // which the edit's 20-character limit does not enforce.
    if (GbkWidth(*stripped) > kNameBytes) {
        ShowMessage(tooLong, MSG_ERROR);
        ShowMessage(restored, MSG_ERROR);
        SetEditTextQuietly(m_strLastName);
        return false;
    }
    return true;
}

void NameChooseDialog::MoveListTo(const QString& text)
{
    if (ListBox_BusName->count() > 0) {
        if (QListWidgetItem* hit = FindItemBeginsWith(ListBox_BusName, text)) {
            ListBox_BusName->setCurrentItem(hit);
        }
    }
}

bool NameChooseDialog::IsChosenNameListed(const char* empty, const char* unknown)
{
    const QString name = GetName();
    if (name.isEmpty()) {
        ShowMessage(empty, MSG_ERROR);
        return false;
    }
    // A prefix of a listed name passes, and GetName then gives the prefix.
    if (!FindItemBeginsWith(ListBox_BusName, name)) {
        ShowMessage(unknown, MSG_ERROR);
        return false;
    }
    return true;
}

void NameChooseDialog::ToolButton_Cancel_clicked()
{
    reject();
}

void NameChooseDialog::LineEdit_BusName_returnPressed() {}

void NameChooseDialog::ListBox_BusName_clicked(QListWidgetItem* item)
{
    if (item) {
        LineEdit_BusName->setText(item->text()); // through the typing checks
    }
}

// ---- The bus chooser ----

WinDlgCalBusChoose::WinDlgCalBusChoose(int nSource, int nCase_No, QSqlDatabase* pDB,
                                       QString strName, bool bBusOnly, QWidget* parent,
                                       const char* name, bool modal, Qt::WindowFlags fl)
    : NameChooseDialog({"WinDlgCalBusChoose", "母线名称", "母线名:", "母线名编辑框"}, pDB, parent,
                       name, modal, fl)
{
    QByteArray sql;
    if (nSource == 1) {
        sql = FormatText(bBusOnly ? SQL_JOB_BUSES : SQL_JOB_NODES, nCase_No);
    } else {
        sql = FormatText(bBusOnly ? SQL_BASE_BUSES : SQL_BASE_NODES, NODE_TABLE,
                         dlgsql::WORKING_COPY);
    }
    // A failed statement leaves the list empty and is not reported.
    AppendQueryToList(sql);
    SortItems(ListBox_BusName);
    Connect();
    Preselect(strName);
}

void WinDlgCalBusChoose::LineEdit_BusName_textChanged(const QString& text)
{
    QString name;
    if (!CheckTypedText(text, MSG_BUS_TOO_LONG, MSG_BUS_RESTORED, &name)) {
        return;
    }
    const bool valid = IsTheBusNameValid(name);
    if (!valid && !m_strLastName.isEmpty() && name != m_strLastName) {
        ShowMessage(MSG_BUS_INVALID, MSG_ERROR);
        ShowMessage(MSG_BUS_INVALID_LIST, MSG_ERROR);
        ShowMessage(MSG_BUS_RESTORED, MSG_ERROR);
        SetEditTextQuietly(m_strLastName);
        return;
    }
    if (valid) {
        m_strLastName = name;
    } else if (m_strLastName.isEmpty()) {
        // Nothing to go back to: the edit is emptied instead.
        ShowMessage(MSG_BUS_INVALID, MSG_ERROR);
        ShowMessage(MSG_BUS_INVALID_LIST, MSG_ERROR);
        SetEditTextQuietly(QString());
        return;
    }
    MoveListTo(name);
}

void WinDlgCalBusChoose::ToolButton_OK_clicked()
{
    if (IsChosenNameListed(MSG_BUS_EMPTY, MSG_BUS_UNKNOWN)) {
        accept();
    }
}

// ---- The element chooser ----

WinDlgCalEleTerm1Choose::WinDlgCalEleTerm1Choose(QSqlDatabase* pDB, QString strTable,
                                                 QString strField, QString strName,
                                                 QWidget* parent, const char* name, bool modal,
                                                 Qt::WindowFlags fl)
    : NameChooseDialog({"WinDlgCalEleTerm1Choose", "名称", "名称:", "名称编辑框"}, pDB, parent,
                       name, modal, fl),
      m_strTable(strTable), m_strField(strField)
{
    InitData();
    SortItems(ListBox_BusName);
    Connect();
    Preselect(strName);
}

void WinDlgCalEleTerm1Choose::InitData()
{
    const QByteArray field = m_strField.toLocal8Bit(), table = m_strTable.toLocal8Bit();
    AppendQueryToList(
        FormatText(SQL_ELEMENTS, field.constData(), table.constData(), field.constData()));
}

void WinDlgCalEleTerm1Choose::LineEdit_BusName_textChanged(const QString& text)
{
    // No name rule here, and m_strLastName is never given a name in this dialog: a text
    // of more than 20 bytes empties the edit.
    QString name;
    if (CheckTypedText(text, MSG_NAME_TOO_LONG, MSG_NAME_RESTORED, &name)) {
        MoveListTo(name);
    }
}

void WinDlgCalEleTerm1Choose::LineEdit_BusName_returnPressed()
{
    if (QListWidgetItem* current = ListBox_BusName->currentItem()) {
        LineEdit_BusName->setText(current->text());
    }
}

void WinDlgCalEleTerm1Choose::ToolButton_OK_clicked()
{
    if (!IsChosenNameListed(MSG_NAME_EMPTY, MSG_NAME_UNKNOWN)) {
        return;
    }
    const QString name = GetName();
    if (m_strField.toUpper() == QLatin1String("ID_NAME")) {
        QSqlQuery q(ConnectionOrNone(m_pDB));
        const QByteArray sql = FormatText(SQL_ELEMENT_NODE, m_strTable.toLocal8Bit().constData(),
                                          SqlText(m_pDB, name.toLocal8Bit()).constData());
        if (!ExecStatement(q, sql)) {
            // The dialog still closes: the name was chosen, only its node is unknown.
            ShowModalBox(ModalBoxKind::Warning, QString::fromUtf8(BOX_LOOKUP_CAPTION),
                         q.lastError().text());
        } else if (q.next()) {
            m_strNodeName = q.value(0).toString();
        }
    } else {
        m_strNodeName = name;
    }
    accept();
}
