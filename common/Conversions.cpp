#include "common/Conversions.h"

#include "common/TableTypes.h"

#include <cstdio>
#include <cstring>

namespace {
// True when none of `refused` occurs in `text` (case-sensitive, first hit decides).
bool holdsNoneOf(const QString& text, const char* refused)
{
    for (const char* c = refused; *c; ++c) {
        if (text.indexOf(QLatin1Char(*c)) >= 0) {
            return false;
        }
    }
    return true;
}
} // namespace

bool IsTheBusNameValid(const QString& text)
{
    return holdsNoneOf(text, "!'\"/:;~^&()=+|<>,?\\");
}

bool IsTheNoteStringValid(QString text)
{
    return holdsNoneOf(text, "!'\"/:;~$%^&()+|<>,?\\");
}

bool IsTheStringValid(QString text)
{
    return holdsNoneOf(text, "'\"\\");
}

char* ConvertTo4String(int value, char* buffer)
{
    std::memset(buffer, 0, 4);
    if (value >= 1000 && value <= 9999) {
        std::sprintf(buffer, "%d", value);
    } else if (value >= 100 && value <= 999) {
        std::sprintf(buffer, "0%d", value);
    } else if (value >= 10 && value <= 99) {
        std::sprintf(buffer, "00%d", value);
    } else if (value >= 0 && value <= 9) {
        std::sprintf(buffer, "000%d", value);
    } else {
        std::strcpy(buffer, "0000");
    }
    return buffer;
}

char* ConvertTo2String(int value, char* buffer)
{
    std::memset(buffer, 0, 4); // four bytes, as ConvertTo4String clears
    if (value >= 10 && value <= 99) {
        std::sprintf(buffer, "%d", value);
    } else if (value >= 0 && value <= 9) {
        std::sprintf(buffer, "0%d", value);
    } else {
        std::strcpy(buffer, "00");
    }
    return buffer;
}

char* Strcopy(char* target, const char* source)
{
    if (source && *source) {
        std::strcpy(target, source);
    } else {
        target[0] = '\0';
    }
    return target;
}

char* Strncopy(char* target, const char* source, unsigned length)
{
    if (source && *source) {
        std::strncpy(target, source, length);
    } else {
        target[0] = '\0';
    }
    return target;
}

QString GetBranchType(int type)
{
    switch (type) {
    case 4:
    case 5:
        return QStringLiteral("PCR");
    case 6:
        return QStringLiteral("AC");
    case 7:
        return QStringLiteral("DC");
    case 8:
    case 9:
        return QStringLiteral("SCR");
    case 10:
        return QStringLiteral("Tr2");
    case 11:
        return QStringLiteral("SF");
    case 12:
        return QStringLiteral("Tr3");
    default:
        return QString();
    }
}

int GetIntBranchType(const QString& name)
{
    static const struct
    {
        const char* name;
        int type;
    } table[] = {{"PCR", 4},  {"AC", 6},  {"DC", 7},  {"SCR", 8},
                 {"Tr2", 10}, {"SF", 11}, {"Tr3", 12}};
    for (const auto& entry : table) {
        if (name == QLatin1String(entry.name)) {
            return entry.type;
        }
    }
    return -1;
}

int GetIntBranchTypeByCalType(int calType)
{
    switch (calType) {
    case 1:
        return 7;
    case 2:
        return 6;
    case 3:
        return 10;
    case 4:
        return 12;
    default:
        return -1;
    }
}

QString GetNameInRealDB(const QString& name, int type, int sub)
{
    switch (type) {
    case 6:
        return name + "_ac";
    case 8:
        return name + "_sc";
    case 10:
        return name + "_2w";
    case 11:
        return name + "_sf";
    case 12:
        if (sub >= 31 && sub <= 33) {
            return name + "_3w" + QString::number(sub - 30);
        }
        return name;
    case 13:
        return name + "_brk";
    case 14:
        return name + "_sw";
    default:
        return name;
    }
}

int TableNameToType(const char* name)
{
    static const struct
    {
        const char* name;
        int type;
    } tables[] = {
        {"CDB_BUS", CDB_TYPE_BUS},           {"CDB_NODE", CDB_TYPE_NODE},
        {"CDB_ACLINE", CDB_TYPE_ACLINE},     {"CDB_PCAPREA", CDB_TYPE_PCAPREA},
        {"CDB_SCAPREA", CDB_TYPE_SCAPREA},   {"CDB_TRANS_2W", CDB_TYPE_TRANS_2W},
        {"CDB_TRANS_3W", CDB_TYPE_TRANS_3W}, {"CDB_SHIFT", CDB_TYPE_SHIFT},
        {"CDB_DCLINE", CDB_TYPE_DCLINE},     {"CDB_GENERAT", CDB_TYPE_GENERAT},
        {"CDB_LOAD", CDB_TYPE_LOAD},         {"CDB_SVC", CDB_TYPE_SVC},
        {"CDB_BREAKER", CDB_TYPE_BREAKER},   {"CDB_ISOSWITCH", CDB_TYPE_ISOSWITCH},
        {"CDB_MUTUAL", CDB_TYPE_MUTUAL},     {"CDB_AREAS", CDB_TYPE_AREAS},
        {"CDB_ZONE", CDB_TYPE_ZONE},         {"CDB_PSTATION", CDB_TYPE_PSTATION},
    };
    if (!name) {
        return -1;
    }
    for (const auto& t : tables) {
        const std::size_t n = std::strlen(t.name);
        if (std::strncmp(name, t.name, n) == 0 &&
            (name[n] == '\0' || std::strcmp(name + n, "BAK") == 0)) {
            return t.type;
        }
    }
    return -1;
}
