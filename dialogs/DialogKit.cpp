#include "dialogs/DialogKit.h"

#include "common/GbkWidth.h"

#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QValidator>
#include <algorithm>

QCollator NameCollator()
{
    QCollator collator{QLocale()};
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    return collator;
}

namespace {

// Whether `text` begins with `prefix` as the collator compares.
bool beginsWith(const QCollator& collator, const QString& text, const QString& prefix)
{
    return collator.compare(QStringView(text).left(prefix.size()), prefix) == 0;
}

template <class Count, class TextAt>
int firstOf(const QString& text, bool prefix, Count count, TextAt textAt)
{
    if (text.isEmpty()) {
        return -1;
    }
    const QCollator collator = NameCollator();
    for (int row = 0; row < count; ++row) {
        const QString item = textAt(row);
        if (prefix ? beginsWith(collator, item, text) : collator.compare(item, text) == 0) {
            return row; // hits come in row order
        }
    }
    return -1;
}

QListWidgetItem* firstItem(const QListWidget* list, const QString& text, bool prefix)
{
    const int row = firstOf(text, prefix, list->count(),
                            [list](int r) { return list->item(r)->text(); });
    return row < 0 ? nullptr : list->item(row);
}

QStringList sorted(QStringList texts)
{
    const QCollator collator = NameCollator();
    std::stable_sort(texts.begin(), texts.end(), collator);
    return texts;
}

} // namespace

QListWidgetItem* FindItemBeginsWith(const QListWidget* list, const QString& text)
{
    return firstItem(list, text, true);
}

QListWidgetItem* FindItemExactMatch(const QListWidget* list, const QString& text)
{
    return firstItem(list, text, false);
}

int FindComboItemBeginsWith(const QComboBox* combo, const QString& text)
{
    return firstOf(text, true, combo->count(), [combo](int r) { return combo->itemText(r); });
}

void SortItems(QListWidget* list)
{
    QStringList texts;
    for (int r = 0; r < list->count(); ++r) {
        texts << list->item(r)->text();
    }
    list->clear();
    list->addItems(sorted(texts));
}

void SortItems(QComboBox* combo)
{
    QStringList texts;
    for (int r = 0; r < combo->count(); ++r) {
        texts << combo->itemText(r);
    }
    const QString current = combo->currentText();
    combo->clear();
    combo->addItems(sorted(texts));
    combo->setEditText(current);
}

namespace {
class DesignBytesValidator : public QValidator
{
public:
    DesignBytesValidator(int bytes, QObject* parent) : QValidator(parent), m_bytes(bytes) {}
    State validate(QString& input, int&) const override
    {
        return GbkWidth(input) <= m_bytes ? Acceptable : Invalid;
    }

private:
    int m_bytes;
};
} // namespace

void LimitToDesignBytes(QLineEdit* edit, int bytes)
{
    edit->setValidator(new DesignBytesValidator(bytes, edit));
}

void MakePlainEditableCombo(QComboBox* combo)
{
    combo->setEditable(true);
    combo->setCompleter(nullptr);
    combo->setInsertPolicy(QComboBox::NoInsert);
}

QSqlDatabase ConnectionOrNone(QSqlDatabase* db)
{
    return db ? *db : QSqlDatabase();
}
