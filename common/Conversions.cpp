#include "common/Conversions.h"

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
    std::memset(buffer, 0, 2);
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
