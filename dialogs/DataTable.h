#pragma once
// The table under the find dialog and the calculation-data grid: a QTableWidget with
// what the grid needs beyond it. Columns can be made read-only, and valueChanged is
// emitted only when the user commits an edit of a cell, never when code fills or
// resets one (cellChanged fires for both).

#include <QSet>
#include <QTableWidget>

class CDataTable : public QTableWidget
{
    Q_OBJECT
public:
    CDataTable(int rows, int columns, QWidget* parent = nullptr);

    void setColumnReadOnly(int column, bool readOnly);
    bool isColumnReadOnly(int column) const;
    // The cell's text; empty for a cell without an item or outside the table.
    QString text(int row, int column) const;
    // Sets a cell's text, making its item when it has none.
    void setText(int row, int column, const QString& text);

signals:
    // The user changed the cell's value through its editor.
    void valueChanged(int row, int column);

protected:
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;

protected slots:
    void commitData(QWidget* editor) override;

private:
    QSet<int> m_readOnlyColumns;
    bool m_committing = false;
};
