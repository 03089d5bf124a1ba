#pragma once
// Asks where edited calculation data goes when it is written back to the base
// database: into the existing data groups, or into a new group whose name the user
// types. It lists the groups and refuses a name that exists or holds a character unsafe
// in SQL; the caller reads the two answers and does the save-back.

#include <QDialog>
#include <QString>

class QCheckBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QSqlDatabase;

class WinDlgCalDataSaveBack : public QDialog
{
    Q_OBJECT
public:
    WinDlgCalDataSaveBack(QSqlDatabase* pDB, QWidget* parent = nullptr,
                          const char* name = nullptr, bool modal = false,
                          Qt::WindowFlags fl = {});

    bool IsSaveAsNewDataGroup();
    QString NewDataGroup() const;

    QListWidget* listBox_DataGroup;
    QLineEdit* lineEdit_NewDataGroup;
    QPushButton* pushButton_OK;
    QPushButton* pushButton_Cancel;
    QLabel* textLabel_NewDataGroup;
    QLabel* textLabel_OldDataGroups;
    QCheckBox* checkBox_SaveAsNew;

public slots:
    virtual void pushButton_OK_clicked();
    virtual void pushButton_Cancel_clicked();
    // The slot's spelling differs from the check box's on purpose; both stay.
    virtual void chechBox_SavaAsNew_toggled(bool on);

protected:
    // False, with a box or a message, for a name that is listed already (case ignored)
    // or that holds ' " / ; % or \. An empty name passes.
    bool IsNewDataGroupValid(const QString& name);
    // Deletes a group from the working copies of the element tables, in a fixed order.
    // The rows deleted, or -1 at the first refused statement, whose predecessors stay
    // done. Nothing in the dialog calls it; it is protected rather than private so
    // that a module's derived dialog can reach it.
    int DelDBGroup(const QString& name);

protected slots:
    virtual void languageChange();

private:
    QSqlDatabase* m_pDB;
};
