#include "common/RowValues.h"

#include "common/Conversions.h"
#include "common/SqlRows.h"

#include <QSqlQuery>
#include <QVariant>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>

int TruncatedInt(double v)
{
    if (std::isnan(v)) {
        return 0;
    }
    if (v >= static_cast<double>(INT_MAX)) {
        return INT_MAX;
    }
    if (v <= static_cast<double>(INT_MIN)) {
        return INT_MIN;
    }
    return static_cast<int>(v);
}

float RowReal(const QSqlQuery& q, int column)
{
    return static_cast<float>(q.value(column).toDouble());
}

float RowReal(const CSqlRows& rows, int column)
{
    return static_cast<float>(rows.toDouble(column));
}

int RowInt(const QSqlQuery& q, int column)
{
    const QVariant v = q.value(column);
    const int type = v.typeId();
    if (type == QMetaType::Double || type == QMetaType::Float) {
        return TruncatedInt(v.toDouble());
    }
    return v.toInt();
}

int RowInt(const CSqlRows& rows, int column)
{
    // An INT column's value is exact as a double; a fraction is cut.
    return TruncatedInt(rows.toDouble(column));
}

void FormRecordId(char* id, const QByteArray& name, const char* format)
{
    char buf[kRecordIdSize];
    Strcopy(buf, name.left(kRecordIdSize - 8).constData());
    if (format[0] == '%' && format[1] == 's' && !std::strchr(format + 2, '%')) {
        const std::size_t n = std::strlen(buf);
        std::memcpy(id, buf, n);
        std::strcpy(id + n, format + 2);
    } else {
        std::snprintf(id, kRecordIdSize, format, buf);
    }
}
