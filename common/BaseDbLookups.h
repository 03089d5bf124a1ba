#pragma once
// Lookups in the base database (always its working copies), in the case tables and in
// the job tables. Each gives a neutral value when it finds nothing: 1.0 for a base
// voltage or power, -1 for a number, an empty text for a name. The base-voltage
// lookups report to the message window; the case lookups and GetTransNType only to
// the debug channel (qWarning).

#include <QString>

class QSqlDatabase;

// The system base power from CDB_SBBAK; 1.0 when the table gives no row.
double GetSB_FromDB(QSqlDatabase* db);

// The base voltage of a bus (bBus true) or of a node's bus (bBus false).
double GetBasekV_FromDB(QSqlDatabase* db, const char* name, bool bBus);

// The case number of a named case in `table` (LF_CASE or ST_CASE); -1 when none.
int GetCase_NoByCase_Name(char* table, QSqlDatabase* db, const QString& name);
// The name of a case; a null text for numbers of 0 and below, "" when none is found.
QString GetCase_NameByCase_No(char* table, QSqlDatabase* db, int caseNo);

// The job-data number of a stability case: caseNo / 5 + 1, truncated towards zero.
int GetSDataCase_No(int caseNo);

// The Ntype of a transformer row of job `job`; -1 when there is none.
int GetTransNType(int job, QSqlDatabase* db, char* idName, char* iName, char* jName);

// Output flags of a stability case in ST_OUT: true when the flag is set (nonzero).
bool IsSTVarOut(QSqlDatabase* db, int caseNo);
bool IsSTAnaOut(QSqlDatabase* db, int caseNo);
bool IsSTABC120Out(QSqlDatabase* db, int caseNo);
