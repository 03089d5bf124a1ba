#include "dialogs/WinDlgRTDBCalData.h"

#include "dialogs/DataTable.h"
#include "dialogs/DialogKit.h"

#include <QGridLayout>
#include <QPushButton>
#include <cstring>

WinDlgRTDBCalData::WinDlgRTDBCalData(const CHandleGraphInfo& info, QWidget* parent,
                                     const char* name, bool modal, Qt::WindowFlags fl)
    : QDialog(parent, fl), m_GraphInfo(info)
{
    setObjectName(QString::fromLatin1(name ? name : "WinDlgRTDBCalData"));
    setModal(modal);

    CalDataGridLayout = new QGridLayout(this);
    CalDataGridLayout->setObjectName(QStringLiteral("CalDataGridLayout"));
    CalDataGridLayout->setContentsMargins(5, 5, 5, 5);
    CalDataGridLayout->setSpacing(6);

    // The layout places them; the rectangles are where they start.
    table_CalData = Place(new CDataTable(3, 3, this), "table_CalData", 0, 0, 340, 210);
    CalDataGridLayout->addWidget(table_CalData, 0, 0, 3, 3);

    pushButton_OK = Place(new QPushButton(this), "pushButton_OK", 160, 220, 80, 21);
    CalDataGridLayout->addWidget(pushButton_OK, 3, 1);

    pushButton_Cancel = Place(new QPushButton(this), "pushButton_Cancel", 250, 220, 80, 21);
    CalDataGridLayout->addWidget(pushButton_Cancel, 3, 2);
    // The empty first cell of the button row takes the extra width, so the buttons keep
    // their size at the right as the dialog grows.
    CalDataGridLayout->setColumnStretch(0, 1);

    languageChange();
    resize(QSize(335, 245).expandedTo(minimumSizeHint()));
    m_pFieldList = new QList<CalDataFieldInfo*>();
    Init();

    connect(pushButton_OK, &QPushButton::clicked, this, &WinDlgRTDBCalData::pushButton_OK_clicked);
    connect(pushButton_Cancel, &QPushButton::clicked, this,
            &WinDlgRTDBCalData::pushButton_Cancel_clicked);
    connect(table_CalData, &QTableWidget::currentCellChanged, this,
            &WinDlgRTDBCalData::table_CalData_currentChanged);
    connect(table_CalData, &CDataTable::valueChanged, this,
            &WinDlgRTDBCalData::table_CalData_valueChanged);
}

WinDlgRTDBCalData::~WinDlgRTDBCalData()
{
    delete m_pFieldList;
}

void WinDlgRTDBCalData::Init() {}

void WinDlgRTDBCalData::languageChange()
{
    setWindowTitle(QStringLiteral("计算数据修改"));
    pushButton_OK->setText(QStringLiteral("确定"));
    pushButton_Cancel->setText(QStringLiteral("取消"));
}

void WinDlgRTDBCalData::pushButton_OK_clicked()
{
    accept();
}

void WinDlgRTDBCalData::pushButton_Cancel_clicked()
{
    reject();
}

void WinDlgRTDBCalData::table_CalData_currentChanged(int row, int col)
{
    m_strOldValue = table_CalData->text(row, col);
}

void WinDlgRTDBCalData::table_CalData_valueChanged(int row, int col)
{
    const QString text = table_CalData->text(row, col);
    if (col < 0 || col >= m_pFieldList->size() || !m_pFieldList->at(col)) {
        return; // a column without an entry takes any text
    }
    const CalDataFieldInfo* field = m_pFieldList->at(col);
    if (field->bNoCheck) {
        return;
    }
    // No message: a bad entry silently goes back to the text it had when the cell
    // became current. An empty text converts to neither type.
    bool ok = true;
    if (field->nType == 1) {
        text.toInt(&ok, 10);
    } else if (field->nType == 2) {
        text.toDouble(&ok);
    }
    if (!ok) {
        table_CalData->setText(row, col, m_strOldValue);
    }
}

CFieldInfo::CFieldInfo(CDataTable* table) : m_pParentTable(table) {}

CFieldInfo::~CFieldInfo() = default;

namespace {
template <std::size_t N> void setName(char (&field)[N], const char* name, int bytes)
{
    std::memset(field, 0, sizeof field);
    if (name && *name) {
        GbkCopy(field, QByteArray(name), bytes);
    }
}
} // namespace

void CFieldInfo::SetFieldName(const char* name)
{
    setName(m_szFieldName, name, kFieldNameBytes);
}

void CFieldInfo::SetFieldName_CH(const char* name)
{
    setName(m_szFieldName_CH, name, kFieldNameBytes);
}

void CFieldInfo::SetColumnWidth(int nWidth, bool bApply)
{
    if (nWidth == m_nColumnWidth) {
        return;
    }
    const int width = nWidth > 1 ? nWidth : 1; // 1 is the floor: as good as hidden
    if (m_pParentTable->isColumnReadOnly(m_nIndexPos)) {
        return; // the width of a read-only column never changes
    }
    if (bApply) {
        m_pParentTable->setColumnWidth(m_nIndexPos, width);
    }
    m_nColumnWidth = width;
}
