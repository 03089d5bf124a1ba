#pragma once
// Two widgets through which a user names a case: a read-only combo box with two
// signals of its own, which the calling modules fill and emit, and a small modal
// dialog that lists the case names of a case table and finds one by prefix.

#include <QComboBox>
#include <QDialog>
#include <QString>

class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QSqlDatabase;
class QToolButton;

class CComboBoxCaseNo : public QComboBox
{
    Q_OBJECT
public:
    explicit CComboBoxCaseNo(QWidget* parent = nullptr, const char* name = nullptr);

    // The box never emits its two signals by itself: owners call these after changing it.
    void EmitcurrentTextChanged(const QString& text);
    void EmititemsChanged();

signals:
    // Shadows QComboBox's signal of the same name: connections made through this class
    // hear only EmitcurrentTextChanged, never the base class's own emissions.
    void currentTextChanged(const QString& text);
    void itemsChanged();
};

class WinDlgCaseNoSearch : public QDialog
{
    Q_OBJECT
public:
    // strTable: a case table such as LF_CASE or ST_CASE. Cases numbered 0 and below are
    // not listed.
    WinDlgCaseNoSearch(QSqlDatabase* pDB, const QString& strTable, QWidget* parent = nullptr,
                       const char* name = nullptr, bool modal = false,
                       Qt::WindowFlags fl = {});

    // The whole name of the case found (the edit's text once OK has accepted).
    QString GetCaseName() const;

    QToolButton* ToolButton_Cancel;
    QToolButton* ToolButton_OK;
    QListWidget* ListBox_ParNo;
    QLineEdit* LineEdit_ParNo;
    QLabel* TextLabel_ParNo;

public slots:
    // The widgets are named ParNo and the slots CaseNo; both stay as they are.
    virtual void ToolButton_OK_clicked();
    virtual void ToolButton_Cancel_clicked();
    virtual void LineEdit_CaseNo_returnPressed();
    virtual void ListBox_CaseNo_clicked(QListWidgetItem* item);
    virtual void LineEdit_CaseNo_textChanged(const QString& text);
};
