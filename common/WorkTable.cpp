#include "common/WorkTable.h"

#include "common/Feedback.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>

bool CreateWorkTable(QSqlDatabase* db, const char* create, const char* drop, const char* failure)
{
    QSqlQuery q(*db);
    if (q.exec(QString::fromLocal8Bit(create))) {
        return true;
    }
    q.exec(QString::fromLocal8Bit(drop));
    if (q.exec(QString::fromLocal8Bit(create))) {
        return true;
    }
    ShowMessage(failure, MSG_ERROR);
    return false;
}
