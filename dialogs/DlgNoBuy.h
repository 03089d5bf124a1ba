#pragma once
// A small notice that a module of the suite was not purchased, shown by a module in
// place of its own dialog. The library's only licence-related piece.

#include <QDialog>
#include <QString>

class QLabel;
class QPushButton;

class DlgNoBuy : public QDialog
{
    Q_OBJECT
public:
    // moduleName, when given, is named in the notice.
    explicit DlgNoBuy(const QString& moduleName = QString(), QWidget* parent = nullptr,
                      const char* name = nullptr, bool modal = true, Qt::WindowFlags fl = {});

    QLabel* textLabel_Notice;
    QPushButton* pushButton_OK;
};
