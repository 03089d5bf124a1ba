#pragma once
// Two small modal dialogs that pick one name from a list while the user types it: a
// bus or node (WinDlgCalBusChoose), and an element of any table with the node it
// stands at (WinDlgCalEleTerm1Choose). Typing moves the list, a click fills the edit,
// and a name that breaks a rule is taken back at once.

#include <QDialog>
#include <QString>

class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QSqlDatabase;
class QToolButton;

// What the two dialogs share: the widgets (with the bus dialog's object names in both),
// the list, the click into the edit and the preselection.
class NameChooseDialog : public QDialog
{
    Q_OBJECT
public:
    // The line edit's text without white space at either end.
    QString GetName() const;

    QToolButton* ToolButton_Cancel;
    QToolButton* ToolButton_OK;
    QListWidget* ListBox_BusName;
    QLineEdit* LineEdit_BusName;
    QLabel* TextLabel_BusName;

public slots:
    virtual void ToolButton_OK_clicked() = 0;
    virtual void ToolButton_Cancel_clicked();
    virtual void LineEdit_BusName_returnPressed();
    virtual void ListBox_BusName_clicked(QListWidgetItem* item);
    virtual void LineEdit_BusName_textChanged(const QString& text) = 0;

protected:
    struct Texts
    {
        const char* objectName;
        const char* caption;
        const char* label;
        const char* editTip;
    };
    NameChooseDialog(const Texts& texts, QSqlDatabase* pDB, QWidget* parent, const char* name,
                     bool modal, Qt::WindowFlags fl);

    // Runs `sql` and appends each value to the list; false when the statement failed.
    bool AppendQueryToList(const QByteArray& sql);
    void Connect();
    // Selects `name` (a whole name, case ignored) and puts it into the edit without
    // going through the typing checks; a name not in the list leaves the dialog blank.
    void Preselect(const QString& name);
    // Changes the edit's text with the typing checks disconnected, so that they never
    // call themselves.
    void SetEditTextQuietly(const QString& text);
    // The first steps of the typing checks, shared by both dialogs: strips the text (and
    // puts it back), clears m_strLastName on an empty text, and restores m_strLastName
    // on a text of more than 20 bytes. False when the check ended there.
    bool CheckTypedText(const QString& text, const char* tooLong, const char* restored,
                        QString* stripped);
    // The check at OK: false, with the message `empty` or `unknown`, when the stripped
    // name is empty or begins no listed name.
    bool IsChosenNameListed(const char* empty, const char* unknown);
    // Moves the list to the first name that begins with `text`, case ignored.
    void MoveListTo(const QString& text);

    QSqlDatabase* m_pDB;
    QString m_strLastName;

private:
    QMetaObject::Connection m_textChanged;
};

class WinDlgCalBusChoose : public NameChooseDialog
{
    Q_OBJECT
public:
    // nSource 1 lists the nodes of the job table L1 of case nCase_No; any other value
    // the base database's nodes. bBusOnly keeps physical buses only. strName is
    // preselected when the list holds it.
    WinDlgCalBusChoose(int nSource, int nCase_No, QSqlDatabase* pDB, QString strName,
                       bool bBusOnly, QWidget* parent = nullptr, const char* name = nullptr,
                       bool modal = false, Qt::WindowFlags fl = {});

public slots:
    void ToolButton_OK_clicked() override;
    void LineEdit_BusName_textChanged(const QString& text) override;
};

class WinDlgCalEleTerm1Choose : public NameChooseDialog
{
    Q_OBJECT
public:
    // Lists column strField of table strTable; strName is preselected when listed.
    WinDlgCalEleTerm1Choose(QSqlDatabase* pDB, QString strTable, QString strField,
                            QString strName, QWidget* parent = nullptr,
                            const char* name = nullptr, bool modal = false,
                            Qt::WindowFlags fl = {});

    // The node of the chosen element (for the column ID_Name), or the chosen name.
    QString GetNodeName() const { return m_strNodeName; }

public slots:
    void ToolButton_OK_clicked() override;
    void LineEdit_BusName_returnPressed() override;
    void LineEdit_BusName_textChanged(const QString& text) override;

private:
    void InitData();

    QString m_strTable;
    QString m_strField;
    QString m_strNodeName;
};
