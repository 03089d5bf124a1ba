#include "loadflow/realtime/LFCalDataToRTDB.h"

#include "common/BulkLoad.h"
#include "common/Conversions.h"
#include "common/Feedback.h"
#include "common/GbkWidth.h"
#include "common/ModalBox.h"
#include "common/RowValues.h"
#include "common/SqlRows.h"
#include "loadflow/realtime/LFRealtimeStatements.h"
#include "records/NetworkRecords.h"
#include "records/RecordFlags.h"

#include <QObject>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

using namespace dtsdb;
using namespace lfrt;

namespace {

// Bus_Ctrl holds at most 20 bytes as the design counted them (GbkWidth.h), in UTF-8 here.
constexpr std::size_t kBusCtrlSize = GbkBufferSize(kNameBytes);

// Runs a job-table SELECT forward only; false when the server refused it.
bool runSelect(CSqlRows& rows, QSqlQuery& q, const QByteArray& sql)
{
    return rows.exec(q, QString::fromLocal8Bit(sql));
}

// The way back sends one statement per record. One query object serves a whole family
// and one buffer takes each statement's text, so that a record costs its formatting and
// the server's round trip and little else (no query object, result and text copies of
// its own).
class JobTableUpdate
{
public:
    explicit JobTableUpdate(QSqlDatabase* db) : m_query(*db), m_text(512) {}

    // Formats the statement and runs it; false when the server refused it.
    bool run(const char* format, ...) __attribute__((format(printf, 2, 3)))
    {
        va_list args;
        va_start(args, format);
        int n = FormatTextInto(m_text.data(), m_text.size(), format, args);
        va_end(args);
        if (n >= static_cast<int>(m_text.size())) {
            m_text.resize(static_cast<std::size_t>(n) + 1);
            va_start(args, format);
            n = FormatTextInto(m_text.data(), m_text.size(), format, args);
            va_end(args);
        }
        return n > 0 && ExecStatement(m_query, QByteArray::fromRawData(m_text.data(), n));
    }

private:
    QSqlQuery m_query;
    std::vector<char> m_text;
};

// A real-time id on the way back, less its family's suffix once chop() has cut it.
class RecordName
{
public:
    explicit RecordName(const char* id) : m_text(id) {}
    const char* text() const { return m_text.c_str(); }
    // Whether the id ends in `suffix`, compared on the tail lower-cased (ASCII letters).
    bool endsWith(const char* suffix) const
    {
        const std::size_t n = std::strlen(suffix);
        if (m_text.size() < n) {
            return false;
        }
        for (std::size_t i = 0; i < n; ++i) {
            const char c = m_text[m_text.size() - n + i];
            if ((c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c) != suffix[i]) {
                return false;
            }
        }
        return true;
    }
    // Cuts the last n characters (all of them when shorter).
    void chop(std::size_t n) { m_text.resize(n < m_text.size() ? m_text.size() - n : 0); }

private:
    std::string m_text;
};

void warn(const char* text)
{
    ShowModalBox(ModalBoxKind::Warning, BOX_CAPTION, QObject::tr(text));
}

// A row's Bus_Ctrl into its buffer, cut to 20 bytes between characters and terminated.
void copyBusCtrl(char (&buf)[kBusCtrlSize], const QByteArray& value)
{
    GbkCopy(buf, value, kNameBytes);
}

// The frame of the import families with one record class: the job table's SELECT (a
// refusal shows `queryMessage` and fails the family), then for each row the record of
// class T whose id `nameRow` writes into the id buffer (which keeps the id of the row
// before when it writes nothing), given the row by `apply` and updated. A row without its
// record shows `missing` and the rest goes on.
template <class T, class NameRow, class Apply>
int importRows(QSqlDatabase* db, const QByteArray& sql, const char* queryMessage,
               const char* missing, NameRow nameRow, Apply apply)
{
    dbCursor<T> cursor(dbCursorForUpdate);
    QSqlQuery q(*db);
    CSqlRows rows;
    if (!runSelect(rows, q, sql)) {
        ShowMessage(queryMessage, MSG_ERROR);
        return CALC_FAIL;
    }
    char id[kRecordIdSize] = "";
    while (rows.next()) {
        nameRow(id, rows);
        if (!FindRecord(cursor, "id =", id, missing, id)) {
            continue;
        }
        apply(*cursor, rows);
        cursor.update();
    }
    return CALC_OK;
}

// The row's first column with a fixed suffix.
auto plainName(const char* format)
{
    return [format](char* id, const CSqlRows& r) { FormRecordId(id, r.toLocal8Bit(0), format); };
}

} // namespace

CLFCalDataToRTDB::CLFCalDataToRTDB(int jobNumber, QSqlDatabase* db)
    : m_pDB(db), m_nJobNumber(jobNumber)
{}

int CLFCalDataToRTDB::ImportLDataToRTDB()
{
    int failed = 0;
    failed |= ImportLKDataToRTDB();
    failed |= ImportL6DataToRTDB();
    failed |= ImportL5DataToRTDB();
    failed |= ImportL4DataToRTDB();
    failed |= ImportL3DataToRTDB();
    failed |= ImportL2DataToRTDB();
    failed |= ImportL1DataToRTDB();
    return failed ? CALC_FAIL : CALC_OK;
}

int CLFCalDataToRTDB::ImportL1DataToRTDB()
{
    const QByteArray table = FormatText(L1_TABLE, m_nJobNumber);
    return importRows<nd>(m_pDB, FormatText(SQL_L1_SELECT, table.constData()), MSG_L1_QUERY,
                          MSG_ND_MISSING, plainName(ID_PLAIN), [](nd& r, const CSqlRows&) {
                              SetFlagBit(r.q, ND_INJOB, true);
                              SetFlagBit(r.q, ND_OUTSERVICE, false);
                          });
}

int CLFCalDataToRTDB::ImportL2DataToRTDB()
{
    const QByteArray table = FormatText(L2_TABLE, m_nJobNumber);
    dbCursor<ln> lines(dbCursorForUpdate);
    dbCursor<cp> shunts(dbCursorForUpdate);
    QSqlQuery query(*m_pDB);
    CSqlRows q;
    if (!runSelect(q, query, FormatText(SQL_L2_SELECT, table.constData()))) {
        ShowMessage(MSG_L2_QUERY, MSG_ERROR);
        return CALC_FAIL;
    }
    char id[kRecordIdSize] = "";
    char busCtrl[kBusCtrlSize];
    char type[kRecordIdSize];
    while (q.next()) {
        const int ntype = q.toInt(19);
        const QByteArray typeText = q.toLocal8Bit(18).left(kRecordIdSize - 1);
        copyBusCtrl(busCtrl, q.toLocal8Bit(14));
        Strcopy(type, typeText.constData());
        if (ntype == 1 || ntype == 2) {
            FormRecordId(id, q.toLocal8Bit(0), ntype == 1 ? ID_AC : ID_SC);
            if (!FindRecord(lines, "id =", id, ntype == 1 ? MSG_AC_MISSING : MSG_SC_MISSING, id)) {
                continue;
            }
            ln& r = *lines;
            SetFlagBit(r.q, LN_INJOB, true);
            SetFlagBit(r.q, LN_OUTSERVICE, q.toInt(1) == 0);
            r.ID_No = q.toInt(4);
            SetFlagBit(r.q, LN_IOPEN, q.toInt(5) == 0);
            SetFlagBit(r.q, LN_JOPEN, q.toInt(6) == 0);
            r.R1 = RowReal(q, 7);
            r.X1 = RowReal(q, 8);
            r.B1_Half = RowReal(q, 9);
            r.Rate_Ka = RowReal(q, 10);
            r.Up_Limit = RowReal(q, 11);
            r.Mode_Ctrl = q.toInt(12);
            r.Par_No = q.toInt(13);
            r.Bus_Ctrl = busCtrl;
            r.Line_Ctrl = q.toInt(15);
            r.Value_Ctrl = RowReal(q, 16);
            r.Length_Km = RowReal(q, 17);
            r.Type = type;
            lines.update();
        } else {
            FormRecordId(id, q.toLocal8Bit(0), ID_PLAIN);
            if (!FindRecord(shunts, "id =", id, MSG_CP_MISSING, id)) {
                continue;
            }
            cp& r = *shunts;
            SetFlagBit(r.q, CP_INJOB, true);
            SetFlagBit(r.q, CP_OUTSERVICE, q.toInt(1) == 0);
            r.ID_No = q.toInt(4);
            // The open I end takes the same bit: it decides the shunt's state.
            SetFlagBit(r.q, CP_OUTSERVICE, q.toInt(5) == 0);
            // J_Break has no effect on a shunt: it is not read.
            r.R1 = RowReal(q, 7);
            r.X1 = RowReal(q, 8);
            r.Mode_Ctrl = q.toInt(12);
            r.Par_No = q.toInt(13);
            r.Bus_Ctrl = busCtrl;
            r.Line_Ctrl = q.toInt(15);
            r.Value_Ctrl = RowReal(q, 16);
            r.Type = type;
            shunts.update();
        }
    }
    return CALC_OK;
}

int CLFCalDataToRTDB::ImportL3DataToRTDB()
{
    const QByteArray table = FormatText(L3_TABLE, m_nJobNumber);
    char busCtrl[kBusCtrlSize];
    // A row of an unknown NType names no id: it keeps the id of the row before it, and so
    // overwrites that record again.
    auto nameRow = [](char* id, const CSqlRows& q) {
        switch (q.toInt(18)) {
        case 1:
            FormRecordId(id, q.toLocal8Bit(0), ID_2W);
            break;
        case 2:
            FormRecordId(id, q.toLocal8Bit(0), ID_SF);
            break;
        case 31:
            FormRecordId(id, q.toLocal8Bit(0), ID_3W1);
            break;
        case 32:
            FormRecordId(id, q.toLocal8Bit(0), ID_3W2);
            break;
        case 33:
            FormRecordId(id, q.toLocal8Bit(0), ID_3W3);
            break;
        default:
            break;
        }
    };
    return importRows<xf>(m_pDB, FormatText(SQL_L3_SELECT, table.constData()), MSG_L3_QUERY,
                          MSG_XF_MISSING, nameRow, [&](xf& r, const CSqlRows& q) {
                              SetFlagBit(r.q, XF_INJOB, true);
                              SetFlagBit(r.q, XF_OUTSERVICE, q.toInt(1) == 0);
                              r.ID_No = q.toInt(4);
                              r.R1 = RowReal(q, 5);
                              r.X1 = RowReal(q, 6);
                              const double gm = q.toDouble(7);
                              const double bm = q.toDouble(8);
                              if (gm > -1e-08 && gm < 1e-08 && bm > -1e-08 && bm < 1e-08) {
                                  r.Rm = 0;
                                  r.Xm = 0;
                              } else {
                                  const double d = gm * gm + bm * bm;
                                  r.Rm = static_cast<float>(gm / d);
                                  r.Xm = static_cast<float>(bm / d);
                              }
                              r.Tk = RowReal(q, 9);
                              r.Ang_Shift = RowReal(q, 10);
                              r.Rate_MVA = RowReal(q, 11);
                              r.Up_Limit = RowReal(q, 12);
                              r.Mode_Ctrl = q.toInt(13);
                              r.Par_No = q.toInt(14);
                              copyBusCtrl(busCtrl, q.toLocal8Bit(15));
                              r.Bus_Ctrl = busCtrl;
                              r.Line_Ctrl = q.toInt(16);
                              r.Value_Ctrl = RowReal(q, 17);
                              r.TapMax1 = q.toInt(19);
                              r.TapMin1 = q.toInt(20);
                              r.Vstep_Tap1 = RowReal(q, 21);
                              r.V0_Tap1 = RowReal(q, 22);
                              r.P0_Tap1 = q.toInt(23);
                              r.Vpos_Tap1 = q.toInt(24);
                              r.TapMax2 = q.toInt(25);
                              r.TapMin2 = q.toInt(26);
                              r.Vstep_Tap2 = RowReal(q, 27);
                              r.V0_Tap2 = RowReal(q, 28);
                              r.P0_Tap2 = q.toInt(29);
                              r.Vpos_Tap2 = q.toInt(30);
                          });
}

int CLFCalDataToRTDB::ImportL4DataToRTDB()
{
    const QByteArray table = FormatText(L4_TABLE, m_nJobNumber);
    const QByteArray sql = QByteArray(SQL_L4_SELECT) + FormatText(SQL_L4_FROM, table.constData());
    // Columns Rpi_Ohm (3) to J_Tap (46) fill the dln fields of the same names, which
    // stand in the same order: integers where the record has an int, else reals.
    const auto& fields = dln::dbDescriptor.fields();
    std::size_t first = 0;
    while (first < fields.size() && std::strcmp(fields[first].name, "Rpi_Ohm") != 0) {
        ++first;
    }
    constexpr int kFirstColumn = 3, kLastColumn = 46;
    return importRows<dln>(m_pDB, sql, MSG_L4_QUERY, MSG_DLN_MISSING, plainName(ID_PLAIN),
                           [&](dln& r, const CSqlRows& q) {
                               SetFlagBit(r.q, DLN_INJOB, true);
                               SetFlagBit(r.q, DLN_OUTSERVICE, q.toInt(1) == 0);
                               char* base = reinterpret_cast<char*>(&r);
                               for (int c = kFirstColumn; c <= kLastColumn; ++c) {
                                   const dbFieldDescriptor& f = fields[first + (c - kFirstColumn)];
                                   if (f.type == dbFieldInt) {
                                       const int v = q.toInt(c);
                                       std::memcpy(base + f.offset, &v, sizeof v);
                                   } else {
                                       const float v = RowReal(q, c);
                                       std::memcpy(base + f.offset, &v, sizeof v);
                                   }
                               }
                           });
}

int CLFCalDataToRTDB::ImportL5DataToRTDB()
{
    const QByteArray table = FormatText(L5_TABLE, m_nJobNumber);
    char busCtrl[kBusCtrlSize];
    return importRows<un>(m_pDB, FormatText(SQL_L5_SELECT, table.constData()), MSG_L5_QUERY,
                          MSG_UN_MISSING, plainName(ID_PLAIN), [&](un& r, const CSqlRows& q) {
                              SetFlagBit(r.q, UN_INJOB, true);
                              SetFlagBit(r.q, UN_OUTSERVICE, q.toInt(1) == 0);
                              r.Mode_Ctrl = q.toInt(3);
                              r.Pg = RowReal(q, 4);
                              r.Qg = RowReal(q, 5);
                              r.V0 = RowReal(q, 6);
                              r.Angle = RowReal(q, 7);
                              r.Qmax = RowReal(q, 8);
                              r.Qmin = RowReal(q, 9);
                              r.Pmax = RowReal(q, 10);
                              r.Pmin = RowReal(q, 11);
                              r.Par_Group = q.toInt(12);
                              copyBusCtrl(busCtrl, q.toLocal8Bit(13));
                              r.Bus_Ctrl = busCtrl;
                              r.Line_Ctrl = q.toInt(14);
                              r.Value_Ctrl = RowReal(q, 15);
                          });
}

int CLFCalDataToRTDB::ImportL6DataToRTDB()
{
    const QByteArray table = FormatText(L6_TABLE, m_nJobNumber);
    char busCtrl[kBusCtrlSize];
    return importRows<ld>(m_pDB, FormatText(SQL_L6_SELECT, table.constData()), MSG_L6_QUERY,
                          MSG_LD_MISSING, plainName(ID_PLAIN), [&](ld& r, const CSqlRows& q) {
                              SetFlagBit(r.q, LD_INJOB, true);
                              SetFlagBit(r.q, LD_OUTSERVICE, q.toInt(1) == 0);
                              r.No_Load = q.toInt(3);
                              r.Mode_Ctrl = q.toInt(4);
                              r.Pl = RowReal(q, 5);
                              r.Ql = RowReal(q, 6);
                              r.V0 = RowReal(q, 7);
                              r.Angle = RowReal(q, 8);
                              r.Qmax = RowReal(q, 9);
                              r.Qmin = RowReal(q, 10);
                              r.Pmax = RowReal(q, 11);
                              r.Pmin = RowReal(q, 12);
                              r.Par_Group = q.toInt(13);
                              copyBusCtrl(busCtrl, q.toLocal8Bit(14));
                              r.Bus_Ctrl = busCtrl;
                              r.Line_Ctrl = q.toInt(15);
                              r.Value_Ctrl = RowReal(q, 16);
                          });
}

int CLFCalDataToRTDB::ImportLKDataToRTDB()
{
    const QByteArray table = FormatText(LK_TABLE, m_nJobNumber);
    return importRows<cb>(
        m_pDB, FormatText(SQL_LK_SELECT, table.constData()), MSG_LK_QUERY, MSG_CB_MISSING,
        [](char* id, const CSqlRows& q) {
            FormRecordId(id, q.toLocal8Bit(0), q.toInt(6) == 1 ? ID_BRK : ID_SW);
        },
        [](cb& r, const CSqlRows& q) {
            SetFlagBit(r.q, CB_INJOB, true);
            SetFlagBit(r.q, CB_OUTSERVICE, q.toInt(1) == 0);
            SetFlagBit(r.q, CB_OPEN, q.toInt(2) == 0);
            r.ID_No = q.toInt(5);
        });
}

// ---- The way back ----

namespace {

// What the statements of one family's batched way back are (LFRealtimeStatements.h).
struct BatchShape
{
    const char* create; // with the collation of the job table's ID_Name, and the job table
    const char* fields;
    const char* row;    // the fields of one record: the name first
    const char* update; // with the job table
};

// The batched way back of one family: the records' rows into the work table, then the one
// update that leaves the job table as the blanket statement and the records' statements do.
class BatchedJobUpdate
{
public:
    BatchedJobUpdate(QSqlDatabase* db, const QByteArray& table, const BatchShape& shape)
        : m_db(db), m_table(table), m_shape(shape), m_load(db, BATCH_TABLE, shape.fields)
    {}

    // The records of class T: `values(record, send)` passes a record over or gives `send`
    // its name and values, in the order of the family's row.
    template <class T, class Values> void addRecords(Values values)
    {
        dbCursor<T> cursor(dbCursorViewOnly);
        if (cursor.select() < 1) {
            return;
        }
        do {
            values(*cursor, [&](const char* name, auto... v) {
                m_fits = m_fits && (std::strlen(name) <= std::size_t(BATCH_NAME_CHARS) ||
                                    QString::fromLocal8Bit(name).size() <= BATCH_NAME_CHARS);
                m_load.AddRow(m_fields(m_shape.row, name, v...));
                return true;
            });
        } while (m_fits && m_fields.ok() && cursor.next());
    }

    // True when the job table got every row; false leaves it as it stood.
    bool run()
    {
        if (!m_fits || !m_fields.ok() || !m_load.ok()) {
            return false;
        }
        QSqlQuery q(*m_db);
        QByteArray collation;
        if (ExecStatement(q, FormatText(SQL_NAME_COLLATION, m_table.constData()))) {
            while (collation.isEmpty() && q.next()) {
                if (q.value(0).toString().compare(QLatin1String("ID_Name"), Qt::CaseInsensitive) ==
                    0) {
                    collation = q.value(2).toByteArray();
                }
            }
        }
        if (collation.isEmpty()) {
            return false;
        }
        // The size of a memory table is fixed when it is made: the session allows it for
        // that statement and is given back its own limit right after.
        const long long heap = ExecStatement(q, SQL_HEAP_SIZE) && q.next()
                                   ? q.value(0).toLongLong()
                                   : 0;
        const long long needed = (m_load.RowCount() + 1024) * BATCH_ROW_BYTES;
        ExecStatement(q, SQL_BATCH_DROP);
        if (heap > 0 && needed > heap) {
            ExecStatement(q, FormatText(SQL_SET_HEAP_SIZE, needed));
        }
        const bool made = ExecStatement(q, FormatText(m_shape.create, SqlWord(collation).constData(),
                                                      m_table.constData()));
        if (heap > 0 && needed > heap) {
            ExecStatement(q, FormatText(SQL_SET_HEAP_SIZE, heap));
        }
        const bool ok = made && m_load.Load(true) &&
                        ExecStatement(q, FormatText(m_shape.update, m_table.constData()));
        ExecStatement(q, SQL_BATCH_DROP);
        return ok;
    }

private:
    QSqlDatabase* m_db;
    QByteArray m_table;
    BatchShape m_shape;
    BulkFields m_fields;
    CBulkLoad m_load;
    bool m_fits = true;
};

// The design's way back of the records of class T, after the family's blanket statement:
// `values(record, statement)` passes a record over (true) or runs statement(name,
// values...) for it. False at the first statement that fails: the records after it are
// not handled.
template <class T, class Values, class Statement>
bool eachRecord(Values values, Statement statement)
{
    dbCursor<T> cursor(dbCursorViewOnly);
    if (cursor.select() < 1) {
        return true;
    }
    do {
        if (!values(*cursor, statement)) {
            return false;
        }
    } while (cursor.next());
    return true;
}

} // namespace

int CLFCalDataToRTDB::UpdateLDataFromRTDB()
{
    int failed = 0;
    failed |= UpdateLKDataFromRTDB();
    failed |= UpdateL6DataFromRTDB();
    failed |= UpdateL5DataFromRTDB();
    failed |= UpdateL4DataFromRTDB();
    failed |= UpdateL3DataFromRTDB();
    failed |= UpdateL2DataFromRTDB();
    return failed ? CALC_FAIL : CALC_OK;
}

int CLFCalDataToRTDB::UpdateL1DataFromRTDB()
{
    return CALC_OK; // nodes have nothing to give back
}

// Each family: in the batched mode its records in bulk; where they cannot go so, and in the
// per-record mode, the blanket statement and a statement per record, from the first.

int CLFCalDataToRTDB::UpdateL2DataFromRTDB()
{
    const QByteArray table = FormatText(L2_TABLE, m_nJobNumber);
    auto lineValues = [](const ln& r, auto&& send) {
        if (r.q & LN_OUTSERVICE) {
            return true;
        }
        RecordName name(r.id);
        int ntype = 0;
        if (name.endsWith("_ac")) {
            ntype = 1;
        } else if (name.endsWith("_sc")) {
            ntype = 2;
        }
        if (ntype) {
            name.chop(3);
        }
        const int iBreak = (r.q & LN_IOPEN) ? 0 : 1;
        const int jBreak = (r.q & LN_JOPEN) ? 0 : 1;
        return send(name.text(), ntype, 1, iBreak, jBreak);
    };
    auto shuntValues = [](const cp& r, auto&& send) {
        if (r.q & CP_OUTSERVICE) {
            return true;
        }
        // Both ends follow the one bit, clear here: always 1.
        const int brk = (r.q & CP_OUTSERVICE) ? 0 : 1;
        return send(r.id, 3, 1, brk, brk);
    };
    if (m_writeMode == RecordWriteMode::Batched) {
        // The shunts' NType 3 is no line's: the two classes share the work table.
        BatchedJobUpdate batch(
            m_pDB, table, {SQL_BATCH_L2_CREATE, FLD_BATCH_L2, ROW_BATCH_L2, SQL_BATCH_L2_UPDATE});
        batch.addRecords<ln>(lineValues);
        batch.addRecords<cp>(shuntValues);
        if (batch.run()) {
            return CALC_OK;
        }
    }
    JobTableUpdate update(m_pDB);
    if (!update.run(SQL_ALL_OUT, table.constData())) {
        warn(MSG_LN_UPDATE);
        return CALC_FAIL;
    }
    if (!eachRecord<ln>(lineValues, [&](const char* name, int ntype, int valid, int iBreak,
                                        int jBreak) {
            return update.run(SQL_LN_UPDATE, table.constData(), valid, iBreak, jBreak,
                              SqlText(m_pDB, name).constData(), ntype);
        })) {
        warn(MSG_LN_UPDATE);
        return CALC_FAIL;
    }
    if (!eachRecord<cp>(shuntValues, [&](const char* name, int ntype, int valid, int iBreak,
                                         int jBreak) {
            return update.run(SQL_CP_UPDATE, table.constData(), valid, iBreak, jBreak,
                              SqlText(m_pDB, name).constData(), ntype);
        })) {
        warn(MSG_CP_UPDATE);
        return CALC_FAIL;
    }
    return CALC_OK;
}

int CLFCalDataToRTDB::UpdateL3DataFromRTDB()
{
    const QByteArray table = FormatText(L3_TABLE, m_nJobNumber);
    auto values = [](const xf& r, auto&& send) {
        static const struct
        {
            const char* suffix;
            int ntype;
        } suffixes[] = {{"_2w", 1}, {"_sf", 2}, {"_3w1", 31}, {"_3w2", 32}, {"_3w3", 33}};
        if (r.q & XF_OUTSERVICE) {
            return true;
        }
        RecordName name(r.id);
        int ntype = 0;
        for (const auto& s : suffixes) {
            if (name.endsWith(s.suffix)) {
                ntype = s.ntype;
                name.chop(std::strlen(s.suffix));
                break;
            }
        }
        return send(name.text(), ntype, 1);
    };
    if (m_writeMode == RecordWriteMode::Batched) {
        BatchedJobUpdate batch(
            m_pDB, table, {SQL_BATCH_L3_CREATE, FLD_BATCH_L3, ROW_BATCH_L3, SQL_BATCH_L3_UPDATE});
        batch.addRecords<xf>(values);
        if (batch.run()) {
            return CALC_OK;
        }
    }
    JobTableUpdate update(m_pDB);
    if (!update.run(SQL_ALL_OUT, table.constData()) ||
        !eachRecord<xf>(values, [&](const char* name, int ntype, int valid) {
            return update.run(SQL_XF_UPDATE, table.constData(), valid,
                              SqlText(m_pDB, name).constData(), ntype);
        })) {
        warn(MSG_XF_UPDATE);
        return CALC_FAIL;
    }
    return CALC_OK;
}

int CLFCalDataToRTDB::UpdateL4DataFromRTDB()
{
    const QByteArray table = FormatText(L4_TABLE, m_nJobNumber);
    auto values = [](const dln& r, auto&& send) {
        return (r.q & DLN_OUTSERVICE) ? true : send(r.id, 1);
    };
    if (m_writeMode == RecordWriteMode::Batched) {
        BatchedJobUpdate batch(
            m_pDB, table, {SQL_BATCH_L4_CREATE, FLD_BATCH_L4, ROW_BATCH_L4, SQL_BATCH_L4_UPDATE});
        batch.addRecords<dln>(values);
        if (batch.run()) {
            return CALC_OK;
        }
    }
    JobTableUpdate update(m_pDB);
    if (!update.run(SQL_ALL_OUT, table.constData()) ||
        !eachRecord<dln>(values, [&](const char* name, int valid) {
            return update.run(SQL_DLN_UPDATE, table.constData(), valid,
                              SqlText(m_pDB, name).constData());
        })) {
        warn(MSG_DLN_UPDATE);
        return CALC_FAIL;
    }
    return CALC_OK;
}

int CLFCalDataToRTDB::UpdateL5DataFromRTDB()
{
    const QByteArray table = FormatText(L5_TABLE, m_nJobNumber);
    auto values = [](const un& r, auto&& send) {
        return (r.q & UN_OUTSERVICE) ? true : send(r.id, 1, r.Pg, r.Qg, r.V0, r.Angle);
    };
    if (m_writeMode == RecordWriteMode::Batched) {
        BatchedJobUpdate batch(
            m_pDB, table, {SQL_BATCH_L5_CREATE, FLD_BATCH_L5, ROW_BATCH_L56, SQL_BATCH_L5_UPDATE});
        batch.addRecords<un>(values);
        if (batch.run()) {
            return CALC_OK;
        }
    }
    JobTableUpdate update(m_pDB);
    if (!update.run(SQL_ALL_OUT, table.constData()) ||
        !eachRecord<un>(values, [&](const char* name, int valid, float pg, float qg, float v0,
                                    float angle) {
            return update.run(SQL_UN_UPDATE, table.constData(), valid, pg, qg, v0, angle,
                              SqlText(m_pDB, name).constData());
        })) {
        warn(MSG_UN_UPDATE);
        return CALC_FAIL;
    }
    return CALC_OK;
}

int CLFCalDataToRTDB::UpdateL6DataFromRTDB()
{
    const QByteArray table = FormatText(L6_TABLE, m_nJobNumber);
    auto values = [](const ld& r, auto&& send) {
        return (r.q & LD_OUTSERVICE) ? true : send(r.id, 1, r.Pl, r.Ql, r.V0, r.Angle);
    };
    if (m_writeMode == RecordWriteMode::Batched) {
        BatchedJobUpdate batch(
            m_pDB, table, {SQL_BATCH_L6_CREATE, FLD_BATCH_L6, ROW_BATCH_L56, SQL_BATCH_L6_UPDATE});
        batch.addRecords<ld>(values);
        if (batch.run()) {
            return CALC_OK;
        }
    }
    JobTableUpdate update(m_pDB);
    if (!update.run(SQL_ALL_OUT, table.constData()) ||
        !eachRecord<ld>(values, [&](const char* name, int valid, float pl, float ql, float v0,
                                    float angle) {
            return update.run(SQL_LD_UPDATE, table.constData(), valid, pl, ql, v0, angle,
                              SqlText(m_pDB, name).constData());
        })) {
        warn(MSG_LD_UPDATE);
        return CALC_FAIL;
    }
    return CALC_OK;
}

int CLFCalDataToRTDB::UpdateLKDataFromRTDB()
{
    const QByteArray table = FormatText(LK_TABLE, m_nJobNumber);
    auto values = [](const cb& r, auto&& send) {
        if (r.q & CB_OUTSERVICE) {
            return true;
        }
        RecordName name(r.id);
        int ntype = 2;
        if (name.endsWith("_brk")) {
            ntype = 1;
            name.chop(4);
        } else {
            name.chop(3); // "_sw" or whatever else stands there
        }
        const int lbreak = (r.q & CB_OPEN) ? 0 : 1;
        return send(name.text(), ntype, 1, lbreak);
    };
    if (m_writeMode == RecordWriteMode::Batched) {
        BatchedJobUpdate batch(
            m_pDB, table, {SQL_BATCH_LK_CREATE, FLD_BATCH_LK, ROW_BATCH_LK, SQL_BATCH_LK_UPDATE});
        batch.addRecords<cb>(values);
        if (batch.run()) {
            return CALC_OK;
        }
    }
    JobTableUpdate update(m_pDB);
    if (!update.run(SQL_ALL_OUT, table.constData()) ||
        !eachRecord<cb>(values, [&](const char* name, int ntype, int valid, int lbreak) {
            return update.run(SQL_CB_UPDATE, table.constData(), valid, lbreak,
                              SqlText(m_pDB, name).constData(), ntype);
        })) {
        warn(MSG_CB_UPDATE);
        return CALC_FAIL;
    }
    return CALC_OK;
}

// ---- Invalidation ----

namespace {

template <class T>
void invalidate(dbCursor<T>& cursor, unsigned int injob, unsigned int out, unsigned int top,
                bool force)
{
    if (cursor.select() < 1) {
        return;
    }
    do {
        T& r = *cursor;
        r.q &= ~injob;
        r.q |= out;
        if (force) {
            r.topflags |= top;
        }
        cursor.update();
    } while (cursor.next());
}

} // namespace

int CLFCalDataToRTDB::InValidateLFCalDataInRTDB(bool bForce)
{
    dbCursor<ln> lines(dbCursorForUpdate);
    dbCursor<cp> shunts(dbCursorForUpdate);
    dbCursor<xf> transformers(dbCursorForUpdate);
    dbCursor<dln> dcLines(dbCursorForUpdate);
    dbCursor<un> generators(dbCursorForUpdate);
    dbCursor<ld> loads(dbCursorForUpdate);
    dbCursor<cb> switches(dbCursorForUpdate);
    dbCursor<nd> nodes(dbCursorForUpdate);
    invalidate(lines, LN_INJOB, LN_OUTSERVICE, LN_TOP_INVALID, bForce);
    invalidate(shunts, CP_INJOB, CP_OUTSERVICE, CP_TOP_INVALID, bForce);
    invalidate(transformers, XF_INJOB, XF_OUTSERVICE, XF_TOP_INVALID, bForce);
    invalidate(dcLines, DLN_INJOB, DLN_OUTSERVICE, DLN_TOP_INVALID, bForce);
    invalidate(generators, UN_INJOB, UN_OUTSERVICE, UN_TOP_INVALID, bForce);
    invalidate(loads, LD_INJOB, LD_OUTSERVICE, LD_TOP_INVALID, bForce);
    invalidate(switches, CB_INJOB, CB_OUTSERVICE, CB_TOP_INVALID, bForce);
    if (nodes.select() > 0) { // a node has no topology flag to force
        do {
            nodes->q &= ~ND_INJOB;
            nodes->q |= ND_OUTSERVICE;
            nodes.update();
        } while (nodes.next());
    }
    return CALC_OK;
}
