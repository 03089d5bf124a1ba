#pragma once
// The modal dialog through which a user picks one branch: by name, by its two end
// nodes, or by a mix of both. The branches of the caller's tables are copied once into
// the table BRANCHTEMP, and every question after that is SQL on that table, so a
// branch is found from either end, whichever way round its ends are stored.

#include "common/GbkWidth.h"

#include <QDialog>
#include <QList>
#include <QString>

class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QSqlDatabase;
class QToolButton;

// The chosen branch. Name buffers hold at most 20 bytes as the design counted them (a
// Chinese character 2) in UTF-8, and a terminator.
struct SBranch
{
    int ID_No = 0;      // parallel-circuit number
    char I_Name[GbkBufferSize(kNameBytes)] = {};
    char J_Name[GbkBufferSize(kNameBytes)] = {};
    char ID_Name[GbkBufferSize(kNameBytes)] = {};
    int iEleType = 0;   // element type code: 4, 6, 7, 8, 10, 11, 12, 13 or 14
};

class WinDlgCalBranchChoose : public QDialog
{
    Q_OBJECT
public:
    // nMode: 1 and 2 read base tables and load-flow result tables, 3 job tables, 4
    // optimal-flow result tables. pDB may be null: the lists then stay empty.
    WinDlgCalBranchChoose(int nMode, QSqlDatabase* pDB, QList<QString> tables,
                          QWidget* parent = nullptr, const char* name = nullptr,
                          bool modal = false, Qt::WindowFlags fl = {});
    // eleTypes filters the job tables of mode 3 by element type code.
    WinDlgCalBranchChoose(int nMode, QSqlDatabase* pDB, QList<QString> tables,
                          QList<int> eleTypes, QWidget* parent = nullptr,
                          const char* name = nullptr, bool modal = false,
                          Qt::WindowFlags fl = {});
    // Drops BRANCHTEMP.
    ~WinDlgCalBranchChoose() override;

    // The Case_No read from result tables; call before the first read.
    void SetCase_No(int caseNo) { m_nCase_No = caseNo; }
    void SetLFCase_No(int caseNo) { m_nCase_No = caseNo; }

    // Runs the dialog with the branch between i and j preselected. 0 when the user
    // confirmed (the choice is then in m_Branch), 1 otherwise. The first argument is
    // not used.
    int ChooseBranch(char* name, char* i, char* j);
    int ChooseBranch(int no, char* i, char* j);

    // The ends of the first branch called `name`, without a dialog: 0 found (i, j and
    // m_Branch filled), 1 statement failed, 2 no such branch. Without a connection 0,
    // with the outputs untouched. i and j hold GbkBufferSize(kNameBytes) bytes each.
    int GetFirstBranch(char* name, char* i, char* j);

    SBranch m_Branch;

    QLabel* TextLabel_BranchName;
    QComboBox* ComboBox_BranchName;
    QLabel* TextLabel_Branch;
    QLineEdit* LineEdit_BusName1;
    QListWidget* ListBox_Branch;
    QLabel* TextLabel_AnotherBranch;
    QLineEdit* LineEdit_BusName2;
    QListWidget* ListBox_AnotherBranch;
    QToolButton* ToolButton_OK;
    QToolButton* ToolButton_Cancel;

public slots:
    virtual void ToolButton_OK_clicked();
    virtual void ToolButton_Cancel_clicked();
    virtual void ListBox_Branch_clicked(QListWidgetItem* item);
    virtual void ListBox_AnotherBranch_clicked(QListWidgetItem* item);
    virtual void OnUserInputName();
    virtual void LineEdit_BusName1_textChanged(const QString& text);
    virtual void LineEdit_BusName2_textChanged(const QString& text);
    virtual void LineEdit_BusName1_returnPressed();
    virtual void LineEdit_BusName2_returnPressed();
    virtual void ComboBox_BranchName_activated(int index);

protected:
    void ReadAllBranches();
    void AddAllI_Names();
    void AddJ_Names(const QString& name);
    void AddID_Names();
    void AddOneNameToComboBox(const QString& name);
    void SetCurrentID_Name(const QString& i, const QString& j);
    void SetCurrentBranchName(const QString& name);
    void SetI_Name(const QString& name);
    void SetJ_Name(const QString& name);
    // Kept although nothing calls it: its statement names the column sID_Name, which
    // BRANCHTEMP lacks, so the server refuses it and nothing changes.
    void SetCurrentIDNo(const QString& name);

    bool IsRead() const { return m_bRead; }

private:
    void InitDlg();
    bool ReadTable(const QString& table);
    bool ReadSourceTable(const QString& table);
    bool ReadJobTable(const QString& table);
    // Copies the rows of one query into BRANCHTEMP, INSERT_BATCH rows to a statement,
    // each query flushing its own rest. eleType < 0: the type comes from column 4
    // through typeOfRow.
    bool CopyRows(const QByteArray& select, int eleType, int (*typeOfRow)(int) = nullptr);
    void LookUpTypedName(bool selectBranchName);

    QList<QString>* m_pTables;
    int m_nMode;
    bool m_bRead = false;
    // Left open by the design; a dialog that was never told a case reads case 0.
    int m_nCase_No = 0;
    QSqlDatabase* m_pDB;
    // Never deleted by the dialog: owned by nobody, as the design has it.
    QList<int>* m_pEleTypes = nullptr;
};
