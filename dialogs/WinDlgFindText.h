#pragma once
// Searches the cells of a table for a text, cell by cell from the current cell, and
// makes the first match current. Not modal by nature: it hides on a match and on
// cancel, so that its owner can show it again and go on searching from there.

#include <QDialog>
#include <QString>

class CDataTable;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QPushButton;

class WinDlgFindText : public QDialog
{
    Q_OBJECT
public:
    explicit WinDlgFindText(QWidget* parent = nullptr, const char* name = nullptr,
                            bool modal = false, Qt::WindowFlags fl = {});

    // The table to search, not owned; without one, Find Next does nothing.
    void setTable(CDataTable* table) { m_pTable = table; }

    QGroupBox* groupBox_Option;
    QCheckBox* checkBox_DiffUpAndLow; // case-sensitive
    QCheckBox* checkBox_Rotate;       // wrap round the table's ends
    QCheckBox* checkBox_WholeWord;    // the whole cell must match
    QCheckBox* checkBox_BackForward;  // search towards the start of the table
    QLabel* textLabel_Find;
    QPushButton* pushButton_FindNext;
    QComboBox* comboBox_Text;
    QPushButton* pushButton_Cancel;

public slots:
    virtual void Cancel_Clicked();
    virtual void ButtonFindNext_Clicked();
    virtual void ComboBox_Text_Activated();

protected slots:
    virtual void languageChange();

protected:
    CDataTable* m_pTable = nullptr;
    // The text searched for; after a search that ignores case it stays in upper case
    // until the next search sets it.
    QString m_strFind;

private:
    void NotFound();
};
