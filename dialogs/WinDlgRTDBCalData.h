#pragma once
// An abstract dialog that shows calculation data in a table and lets the user edit it,
// each edit checked against the type of its column. This class gives the frame, the
// table, the buttons and the check; a derived class in a calculation module gives the
// data: it names its table (GetCalDBTableName), fills the field list and the cells.
// CFieldInfo describes one column of such a table.

#include "common/CalcObject.h"
#include "common/GbkWidth.h"

#include <QDialog>
#include <QList>
#include <QString>

class CDataTable;
class QGridLayout;
class QPushButton;

// One column of the grid's field list. The grid reads these two fields; the modules
// that derive from the grid settle what else a column carries.
struct CalDataFieldInfo
{
    int bNoCheck = 0; // non-zero: whatever is typed stands
    int nType = 0;    // 1 integer column, 2 real column, anything else unchecked
};

class WinDlgRTDBCalData : public QDialog
{
    Q_OBJECT
public:
    WinDlgRTDBCalData(const CHandleGraphInfo& info, QWidget* parent = nullptr,
                      const char* name = nullptr, bool modal = false, Qt::WindowFlags fl = {});
    ~WinDlgRTDBCalData() override;

    CDataTable* table_CalData;
    QPushButton* pushButton_OK;
    QPushButton* pushButton_Cancel;
    QGridLayout* CalDataGridLayout;

public slots:
    virtual void GetCalDBTableName(char* psTableName) = 0;
    virtual void pushButton_OK_clicked();
    virtual void pushButton_Cancel_clicked();
    // Takes back a value that does not convert to its column's type.
    virtual void table_CalData_valueChanged(int row, int col);
    // Remembers the text a cell had when it became current.
    virtual void table_CalData_currentChanged(int row, int col);

protected:
    // Does nothing here. The constructor calls it, which reaches only this version: a
    // derived class calls its own filling after construction.
    virtual void Init();

protected slots:
    virtual void languageChange();

protected:
    // One entry a column, by column index; empty after construction. The list is the
    // dialog's; its entries belong to whoever appended them.
    QList<CalDataFieldInfo*>* m_pFieldList;
    CHandleGraphInfo m_GraphInfo;
    QString m_strOldValue;
};

// One column of a calculation-data table: its database name, Chinese caption and width.
class CFieldInfo
{
public:
    explicit CFieldInfo(CDataTable* table);
    virtual ~CFieldInfo();

    CDataTable* GetParentTable() const { return m_pParentTable; }
    void SetIndexPos(int pos) { m_nIndexPos = pos; }
    int GetIndexPos() const { return m_nIndexPos; }
    void SetPriKey(bool on) { m_bPriKey = on; }
    bool IsPriKey() const { return m_bPriKey; }
    void SetVLGComponent(bool on) { m_bVLGComponent = on; }
    bool IsVLGComponent() const { return m_bVLGComponent; }
    const char* GetFieldName() const { return m_szFieldName; }
    const char* GetFieldName_CH() const { return m_szFieldName_CH; }
    int GetColumnWidth() const { return m_nColumnWidth; }
    void SetType(int type) { m_nType = type; }
    int GetType() const { return m_nType; }

    // A null or empty text zeroes the field. Names are meant to stay below 32 bytes as
    // the design counted them (a Chinese character 2); a longer one is cut to 31, between
    // characters, and the field holds it in UTF-8.
    void SetFieldName(const char* name);
    void SetFieldName_CH(const char* name);

    // Sets the width (at least 1) unless it is the stored one or the column is
    // read-only; bApply false only stores it.
    void SetColumnWidth(int nWidth, bool bApply);

private:
    static constexpr int kFieldNameBytes = 31;
    CDataTable* m_pParentTable; // not owned
    int m_nIndexPos = -1;
    bool m_bPriKey = false;
    bool m_bVLGComponent = false;
    char m_szFieldName[GbkBufferSize(kFieldNameBytes)] = {};
    char m_szFieldName_CH[GbkBufferSize(kFieldNameBytes)] = {};
    int m_nColumnWidth = 1;
    int m_nType = 0; // the design leaves it unset; 0 is "not checked"
};
