#pragma once
// Small services on names and numbers: checks of user-typed names, fixed-width
// number texts, copies into record text buffers, and the translation between branch
// type names and numbers.

#include <QString>

// Each returns true when the text holds none of the refused characters (an empty
// text is acceptable). A bus name may hold '$' and '%' but not '='; a note the
// reverse; a general string refuses only quotes and the backslash.
bool IsTheBusNameValid(const QString& text);
bool IsTheNoteStringValid(QString text);
bool IsTheStringValid(QString text);

// A value from 0 to 9999 (0 to 99) as four (two) digits with leading zeros, any other
// value as "0000" ("00"). The caller's buffer holds at least five (three) characters.
char* ConvertTo4String(int value, char* buffer);
char* ConvertTo2String(int value, char* buffer);

// Copy a text into a record's buffer; a null or empty source gives the empty string.
// Strncopy copies at most `length` bytes and, like strncpy, adds no terminator when
// the source fills them.
char* Strcopy(char* target, const char* source);
char* Strncopy(char* target, const char* source, unsigned length);

// Branch type names and numbers: "PCR" 4 (5 read alike), "AC" 6, "DC" 7,
// "SCR" 8 (9 read alike), "Tr2" 10, "SF" 11, "Tr3" 12.
QString GetBranchType(int type);
int GetIntBranchType(const QString& name);
// Calculation type 1 (DC line) gives 7, 2 (AC line) 6, 3 (two-winding transformer) 10,
// 4 (three-winding transformer) 12, any other -1.
int GetIntBranchTypeByCalType(int calType);

// The real-time id of an element: type 6 adds "_ac", 8 "_sc", 10 "_2w", 11 "_sf",
// 12 with sub 31/32/33 "_3w1"/"_3w2"/"_3w3", 13 "_brk", 14 "_sw"; any other type, and
// 12 with another sub, leave the name as it is.
QString GetNameInRealDB(const QString& name, int type, int sub);

// The type number (common/TableTypes.h) of a base-database table under its plain or
// its working-copy ("BAK") name, compared exactly; -1 for any other name.
int TableNameToType(const char* name);
