#pragma once
// The working table of an extraction, which holds the IDs a calculation scheme picks for one
// element family. Load flow and stability make it the same way.

class QSqlDatabase;

// Makes the table by `create`. When that is refused (a table of the name is left from a run
// before), drops it by `drop`, unchecked, and runs `create` once more; when that is refused
// too, shows `failure` at level 2 and returns false.
bool CreateWorkTable(QSqlDatabase* db, const char* create, const char* drop, const char* failure);
