#include "dialogs/DataTable.h"

#include <QHeaderView>

CDataTable::CDataTable(int rows, int columns, QWidget* parent)
    : QTableWidget(rows, columns, parent)
{
    // A column may be made as narrow as one pixel, which all but hides it.
    horizontalHeader()->setMinimumSectionSize(1);
    connect(this, &QTableWidget::cellChanged, this, [this](int row, int column) {
        // Only the first change inside a commit is the user's: a slot that resets the
        // cell in answer causes a second one, which must not count as an edit.
        if (m_committing) {
            m_committing = false;
            emit valueChanged(row, column);
        }
    });
}

void CDataTable::setColumnReadOnly(int column, bool readOnly)
{
    if (readOnly) {
        m_readOnlyColumns.insert(column);
    } else {
        m_readOnlyColumns.remove(column);
    }
}

bool CDataTable::isColumnReadOnly(int column) const
{
    return m_readOnlyColumns.contains(column);
}

QString CDataTable::text(int row, int column) const
{
    const QTableWidgetItem* cell = item(row, column);
    return cell ? cell->text() : QString();
}

void CDataTable::setText(int row, int column, const QString& text)
{
    if (QTableWidgetItem* cell = item(row, column)) {
        cell->setText(text);
    } else {
        setItem(row, column, new QTableWidgetItem(text));
    }
}

bool CDataTable::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event)
{
    if (index.isValid() && isColumnReadOnly(index.column())) {
        return false;
    }
    return QTableWidget::edit(index, trigger, event);
}

void CDataTable::commitData(QWidget* editor)
{
    m_committing = true;
    QTableWidget::commitData(editor);
    m_committing = false; // an unchanged value commits nothing and emits nothing
}
