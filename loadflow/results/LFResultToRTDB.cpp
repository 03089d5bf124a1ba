// Stored load-flow results into the real-time records.

#include "common/Conversions.h"
#include "common/Feedback.h"
#include "common/RunTimeLog.h"
#include "loadflow/results/LFResultDataTransfer.h"
#include "loadflow/results/LFResultStatements.h"
#include "records/NetworkRecords.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>
#include <cstdio>
#include <cstring>

using namespace dtsdb;
using namespace lfr;

namespace {

constexpr int kNameSize = 256;

// A row's name with the family's suffix, as the record's id.
void recordId(char* id, const QVariant& name, const char* suffix)
{
    char buf[kNameSize];
    Strcopy(buf, name.toString().toLocal8Bit().left(kNameSize - 8).constData());
    std::snprintf(id, kNameSize, "%s%s", buf, suffix);
}

float real(const QSqlQuery& q, int c)
{
    return static_cast<float>(q.value(c).toDouble());
}

QByteArray bytes(const QVariant& v)
{
    return v.toString().toLocal8Bit();
}

} // namespace

CLFResultDataTransfer::CLFResultDataTransfer(int caseNo, QSqlDatabase* db, dbDatabase* rtdb,
                                             bool bOptimal, int mode)
    : m_pDB(db), m_mode(mode), m_bOptimal(bOptimal), m_caseNo(caseNo), m_pKVList(nullptr),
      m_pRTDB(rtdb)
{}

CLFResultDataTransfer::~CLFResultDataTransfer()
{
    delete m_pKVList;
}

QByteArray CLFResultDataTransfer::table(const char* family) const
{
    return FormatText(m_bOptimal ? "OPFR_%s_R" : "LFR_%s_R", family);
}

int CLFResultDataTransfer::ImportLFResultDataToRTDB()
{
    CRunTimeLog frame("ImportLFResultDataToRTDB");
    int ok = 1;
    auto family = [&](int rc) {
        if (rc != 0) {
            ok = 0;
        }
    };
    family(ImportBus_RDataToRTDB());
    family(ImportBs_RDataToRTDB());
    family(ImportACLine_RDataToRTDB());
    family(ImportSCR_RDataToRTDB());
    family(ImportPCR_RDataToRTDB());
    family(ImportDCLine_RDataToRTDB());
    family(ImportGen_RDataToRTDB());
    family(ImportLoad_RDataToRTDB());
    family(ImportT2W_RDataToRTDB());
    family(ImportShift_RDataToRTDB());
    family(ImportT3W_RDataToRTDB());
    family(ImportBreaker_RDataToRTDB());
    ok = 0; // cleared whatever the families did: their failures are told by messages only
    return ok ? 1 : 0;
}

void CLFResultDataTransfer::UpdateNdBsNo(char* name, int ibs)
{
    if (!name || !*name || ibs < 1) {
        return; // a node of bus 0 keeps the number it had
    }
    dbCursor<nd> cursor(dbCursorForUpdate);
    dbQuery q;
    q = "id=", static_cast<const char*>(name);
    if (cursor.select(q) > 0) {
        cursor->ibs = ibs;
        cursor.update();
    }
}

namespace {

// Runs a result SELECT; shows `message` when the server refuses it.
bool runSelect(QSqlDatabase* db, QSqlQuery& q, const QByteArray& sql, const char* message)
{
    q.setForwardOnly(true);
    if (!q.exec(QString::fromLocal8Bit(sql))) {
        ShowMessage(message, MSG_ERROR);
        return false;
    }
    (void)db;
    return true;
}

} // namespace

// Lines and series elements share one routine: the record is ln, the suffix differs.
static int importLines(CLFResultDataTransfer* self, QSqlDatabase* db, const QByteArray& table,
                       int caseNo, bool optimal, bool topology, const char* suffix,
                       void (*updateNode)(CLFResultDataTransfer*, char*, int))
{
    QSqlQuery q(*db);
    if (!runSelect(
            db, q,
            FormatText(optimal ? SQL_ACLINE_OPFR : SQL_ACLINE_LFR, table.constData(), caseNo),
            MSG_Q_ACLINE)) {
        return CALC_FAIL;
    }
    char id[kNameSize];
    while (q.next()) {
        dbCursor<ln> cursor(dbCursorForUpdate);
        dbQuery query;
        recordId(id, q.value(0), suffix);
        query = "id=", static_cast<const char*>(id);
        if (cursor.select(query) < 1) {
            continue;
        }
        ln& r = *cursor;
        r.Pi = real(q, 1);
        r.Qi = real(q, 2);
        r.Pj = real(q, 3);
        r.Qj = real(q, 4);
        r.Qci = real(q, 5);
        r.Qcj = real(q, 6);
        if (topology) {
            r.ibs = q.value(7).toInt();
            r.zbs = q.value(8).toInt();
            r.q = q.value(9).toUInt();
            r.topflags = q.value(10).toUInt();
            QByteArray iName = bytes(q.value(11)), jName = bytes(q.value(12));
            updateNode(self, iName.data(), r.ibs);
            updateNode(self, jName.data(), r.zbs);
        }
        cursor.update();
    }
    return CALC_OK;
}

int CLFResultDataTransfer::ImportACLine_RDataToRTDB()
{
    CRunTimeLog frame("ImportACLine_RDataToRTDB");
    return importLines(this, m_pDB, table("ACLINE"), m_caseNo, m_bOptimal, topology(), "_ac",
                       [](CLFResultDataTransfer* t, char* n, int b) { t->UpdateNdBsNo(n, b); });
}

int CLFResultDataTransfer::ImportSCR_RDataToRTDB()
{
    CRunTimeLog frame("ImportSCR_RDataToRTDB");
    return importLines(this, m_pDB, table("SCR"), m_caseNo, m_bOptimal, topology(), "_sc",
                       [](CLFResultDataTransfer* t, char* n, int b) { t->UpdateNdBsNo(n, b); });
}

// Shunts, generators and loads: one node each, and the same topology columns after their
// two values.
template <class T, class Values>
static int importOneEnded(CLFResultDataTransfer* self, QSqlDatabase* db, const QByteArray& sql,
                          const char* message, bool topology, Values values,
                          void (*updateNode)(CLFResultDataTransfer*, char*, int))
{
    QSqlQuery q(*db);
    if (!runSelect(db, q, sql, message)) {
        return CALC_FAIL;
    }
    char id[kNameSize];
    while (q.next()) {
        dbCursor<T> cursor(dbCursorForUpdate);
        dbQuery query;
        recordId(id, q.value(0), "");
        query = "id=", static_cast<const char*>(id);
        if (cursor.select(query) < 1) {
            continue;
        }
        values(*cursor, q);
        if (topology) {
            cursor->ibs = q.value(3).toInt();
            cursor->q = q.value(4).toUInt();
            cursor->topflags = q.value(5).toUInt();
            QByteArray node = bytes(q.value(6));
            updateNode(self, node.data(), cursor->ibs);
        }
        cursor.update();
    }
    return CALC_OK;
}

int CLFResultDataTransfer::ImportPCR_RDataToRTDB()
{
    CRunTimeLog frame("ImportPCR_RDataToRTDB");
    return importOneEnded<cp>(
        this, m_pDB,
        FormatText(m_bOptimal ? SQL_PCR_OPFR : SQL_PCR_LFR, table("PCR").constData(), m_caseNo),
        MSG_Q_PCR, topology(),
        [](cp& r, const QSqlQuery& q) {
            r.Pi = real(q, 1);
            r.Qi = real(q, 2);
        },
        [](CLFResultDataTransfer* t, char* n, int b) { t->UpdateNdBsNo(n, b); });
}

int CLFResultDataTransfer::ImportGen_RDataToRTDB()
{
    CRunTimeLog frame("ImportGen_RDataToRTDB");
    return importOneEnded<un>(
        this, m_pDB,
        FormatText(m_bOptimal ? SQL_GEN_OPFR : SQL_GEN_LFR, table("GEN").constData(), m_caseNo),
        MSG_Q_GEN, topology(),
        [](un& r, const QSqlQuery& q) {
            r.Pg = real(q, 1);
            r.Qg = real(q, 2);
        },
        [](CLFResultDataTransfer* t, char* n, int b) { t->UpdateNdBsNo(n, b); });
}

int CLFResultDataTransfer::ImportLoad_RDataToRTDB()
{
    CRunTimeLog frame("ImportLoad_RDataToRTDB");
    return importOneEnded<ld>(
        this, m_pDB,
        FormatText(m_bOptimal ? SQL_LOAD_OPFR : SQL_LOAD_LFR, table("LOAD").constData(),
                   m_caseNo),
        MSG_Q_LOAD, topology(),
        [](ld& r, const QSqlQuery& q) {
            r.Pl = real(q, 1);
            r.Ql = real(q, 2);
        },
        [](CLFResultDataTransfer* t, char* n, int b) { t->UpdateNdBsNo(n, b); });
}

// Two-winding transformers and phase shifters: the record is xf, the suffix differs.
static int importTransformers(CLFResultDataTransfer* self, QSqlDatabase* db,
                              const QByteArray& table, int caseNo, bool optimal, bool topology,
                              const char* suffix, const char* message,
                              void (*updateNode)(CLFResultDataTransfer*, char*, int))
{
    QSqlQuery q(*db);
    if (!runSelect(db, q,
                   FormatText(optimal ? SQL_T2W_OPFR : SQL_T2W_LFR, table.constData(), caseNo),
                   message)) {
        return CALC_FAIL;
    }
    char id[kNameSize];
    while (q.next()) {
        dbCursor<xf> cursor(dbCursorForUpdate);
        dbQuery query;
        recordId(id, q.value(0), suffix);
        query = "id=", static_cast<const char*>(id);
        if (cursor.select(query) < 1) {
            continue;
        }
        xf& r = *cursor;
        r.Pi = real(q, 1);
        r.Qi = real(q, 2);
        r.Pj = real(q, 3);
        r.Qj = real(q, 4);
        r.Pm = real(q, 5);
        r.Qm = real(q, 6);
        if (topology) {
            r.ibs = q.value(7).toInt();
            r.zbs = q.value(8).toInt();
            r.q = q.value(9).toUInt();
            r.topflags = q.value(10).toUInt();
            QByteArray iName = bytes(q.value(11)), jName = bytes(q.value(12));
            updateNode(self, iName.data(), r.ibs);
            updateNode(self, jName.data(), r.zbs);
        }
        cursor.update();
    }
    return CALC_OK;
}

int CLFResultDataTransfer::ImportT2W_RDataToRTDB()
{
    CRunTimeLog frame("ImportT2W_RDataToRTDB");
    return importTransformers(
        this, m_pDB, table("T2W"), m_caseNo, m_bOptimal, topology(), "_2w", MSG_Q_T2W,
        [](CLFResultDataTransfer* t, char* n, int b) { t->UpdateNdBsNo(n, b); });
}

int CLFResultDataTransfer::ImportShift_RDataToRTDB()
{
    CRunTimeLog frame("ImportShift_RDataToRTDB");
    return importTransformers(
        this, m_pDB, table("SHIFT"), m_caseNo, m_bOptimal, topology(), "_sf", MSG_Q_SHIFT,
        [](CLFResultDataTransfer* t, char* n, int b) { t->UpdateNdBsNo(n, b); });
}

int CLFResultDataTransfer::ImportT3W_RDataToRTDB()
{
    CRunTimeLog frame("ImportT3w_RDataToRTDB");
    QSqlQuery q(*m_pDB);
    if (!runSelect(
            m_pDB, q,
            FormatText(m_bOptimal ? SQL_T3W_OPFR : SQL_T3W_LFR, table("T3W").constData(), m_caseNo),
            MSG_Q_T3W)) {
        return CALC_FAIL;
    }
    char name[kNameSize];
    char id[kNameSize + 8];
    while (q.next()) {
        dbCursor<xf> cursor(dbCursorForUpdate);
        Strcopy(name, q.value(0).toString().toLocal8Bit().left(kNameSize - 1).constData());
        for (int w = 1; w <= 3; ++w) {
            dbQuery query;
            std::snprintf(id, sizeof id, "%s_3w%d", name, w);
            query = "id=", static_cast<const char*>(id);
            if (cursor.select(query) < 1) {
                continue;
            }
            xf& r = *cursor;
            // Columns counted from 1: the winding's P and Q are 2w-1 and 2w after the name.
            r.Pj = real(q, 2 * w - 1);
            r.Qj = real(q, 2 * w);
            if (w == 1) {
                r.Pm = real(q, 7);
                r.Qm = real(q, 8);
            }
            if (topology()) {
                r.ibs = q.value(2 * w + 7).toInt();
                r.zbs = q.value(2 * w + 8).toInt();
                r.q = q.value(2 * w + 13).toUInt();
                r.topflags = q.value(2 * w + 14).toUInt();
                QByteArray star = bytes(q.value(2 * w + 19)), end = bytes(q.value(2 * w + 20));
                UpdateNdBsNo(star.data(), r.ibs);
                UpdateNdBsNo(end.data(), r.zbs);
            }
            cursor.update();
        }
    }
    return CALC_OK;
}

int CLFResultDataTransfer::ImportBreaker_RDataToRTDB()
{
    CRunTimeLog frame("ImportBreaker_RDataToRTDB");
    QSqlQuery q(*m_pDB);
    if (!runSelect(m_pDB, q, FormatText(SQL_BREAKER, table("BREAKER").constData(), m_caseNo),
                   MSG_Q_BREAKER)) {
        return CALC_FAIL;
    }
    char id[kNameSize];
    while (q.next()) {
        dbCursor<cb> cursor(dbCursorForUpdate);
        dbQuery query;
        recordId(id, q.value(0), "_brk"); // a switch's row meets no record
        query = "id=", static_cast<const char*>(id);
        if (cursor.select(query) < 1) {
            continue;
        }
        cursor->P = real(q, 1);
        cursor->Q = real(q, 2);
        cursor.update();
    }
    return CALC_OK;
}

int CLFResultDataTransfer::ImportBus_RDataToRTDB()
{
    CRunTimeLog frame("ImportBus_RDataToRTDB");
    QSqlQuery q(*m_pDB);
    if (!runSelect(
            m_pDB, q,
            FormatText(m_bOptimal ? SQL_BUS_OPFR : SQL_BUS_LFR, table("BUS").constData(), m_caseNo),
            MSG_Q_BUS)) {
        return CALC_FAIL;
    }
    while (q.next()) {
        dbCursor<bus> cursor(dbCursorForUpdate);
        dbQuery query;
        QByteArray node = bytes(q.value(0));
        query = "nd=", node.constData();
        if (cursor.select(query) < 1) {
            ShowMessagef(MSG_ERROR, MSG_NO_BUS, node.constData());
            return CALC_FAIL; // the one row-level stop: the rows before stay written
        }
        cursor->V = q.value(1).toDouble();
        cursor->Angle = q.value(2).toDouble();
        if (topology()) {
            cursor->ibs = q.value(3).toInt();
            cursor->topflags = q.value(4).toUInt();
            UpdateNdBsNo(node.data(), cursor->ibs);
        }
        cursor.update();
    }
    return CALC_OK;
}

int CLFResultDataTransfer::ImportBs_RDataToRTDB()
{
    CRunTimeLog frame("ImportBs_RDataToRTDB");
    if (m_mode == 2 || m_bOptimal) {
        // In place: by name after an optimal flow, else by number.
        QSqlQuery q(*m_pDB);
        if (!runSelect(m_pDB, q,
                       FormatText(m_bOptimal ? SQL_BS_OPFR : SQL_BS_LFR, table("BS").constData(),
                                  m_caseNo),
                       MSG_Q_BUS)) {
            return CALC_FAIL;
        }
        while (q.next()) {
            dbCursor<bs> cursor(dbCursorForUpdate);
            dbQuery query;
            QByteArray name = bytes(q.value(0));
            int ibs = 0;
            if (m_bOptimal) {
                query = "name=", name.constData();
            } else {
                ibs = q.value(3).toInt();
                query = "id=", ibs;
            }
            if (cursor.select(query) < 1) {
                continue;
            }
            cursor->V = q.value(1).toDouble();
            cursor->Angle = q.value(2).toDouble();
            cursor.update();
        }
        return CALC_OK;
    }

    // Rebuild: bs emptied for good, then one record per row with placeholders in the gaps.
    {
        dbCursor<bs> cursor(dbCursorForUpdate);
        cursor.removeAll();
        m_pRTDB->commit();
    }
    QSqlQuery q(*m_pDB);
    if (!runSelect(m_pDB, q, FormatText(SQL_BS_REBUILD, table("BS").constData(), m_caseNo),
                   MSG_Q_BUS)) {
        return CALC_FAIL;
    }
    dbDatabase* db = bs::dbDescriptor.getDatabase();
    int last = -1;
    char placeholder[32];
    while (q.next()) {
        const QByteArray name = bytes(q.value(0));
        const int ibs = q.value(3).toInt();
        for (int n = last + 1; n < ibs; ++n) {
            bs gap;
            gap.id = n;
            std::snprintf(placeholder, sizeof placeholder, BS_PLACEHOLDER, n);
            gap.name = placeholder;
            gap.iisland = -1;
            dbAnyReference ref;
            db->insertRecord(&bs::dbDescriptor, &ref, &gap);
        }
        bs rec;
        rec.name = name.constData();
        rec.V = q.value(1).toDouble();
        rec.Angle = q.value(2).toDouble();
        rec.id = ibs;
        rec.ikv = q.value(4).toInt();
        rec.iisland = q.value(5).toInt();
        rec.q = q.value(6).toInt();
        rec.qq = q.value(7).toInt();
        last = ibs;
        dbAnyReference ref;
        db->insertRecord(&bs::dbDescriptor, &ref, &rec);
    }
    return CALC_OK;
}

int CLFResultDataTransfer::ImportDCLine_RDataToRTDB()
{
    CRunTimeLog frame("ImportDCLine_RDataToRTDB");
    QSqlQuery q(*m_pDB);
    if (!runSelect(m_pDB, q,
                   FormatText(m_bOptimal ? SQL_DCLINE_OPFR : SQL_DCLINE_LFR,
                              table("DCLINE").constData(), m_caseNo),
                   MSG_Q_DCLINE)) {
        return CALC_FAIL;
    }
    const auto& fields = dln::dbDescriptor.fields();
    std::size_t first = 0;
    while (first < fields.size() && std::strcmp(fields[first].name, "Id10") != 0) {
        ++first;
    }
    char owner[32];
    char id[kNameSize];
    while (q.next()) {
        dbCursor<dln> cursor(dbCursorForUpdate);
        dbQuery query;
        recordId(id, q.value(0), "");
        query = "id=", static_cast<const char*>(id);
        if (cursor.select(query) < 1) {
            continue;
        }
        dln& r = *cursor;
        std::snprintf(owner, sizeof owner, "%d", q.value(1).toInt());
        r.Owner = owner;
        r.OP_Mode = q.value(2).toInt();
        char* base = reinterpret_cast<char*>(&r);
        for (int k = 0; k < 52; ++k) {
            const double v = q.value(3 + k).toDouble();
            std::memcpy(base + fields[first + k].offset, &v, sizeof v);
        }
        // The end sums as designed: Pi is written twice and ends with the J-end power.
        r.Pi = static_cast<float>(-(r.Pd1i + r.Pd2i));
        r.Qi = static_cast<float>(-(r.Qd1i + r.Qd2i));
        r.Ii = static_cast<float>(r.Id10 + r.Id20);
        r.Pi = static_cast<float>(r.Pd1j + r.Pd2j);
        r.Qj = static_cast<float>(r.Qd1j + r.Qd2j);
        r.Ij = static_cast<float>(r.Id10 + r.Id20);
        if (topology()) {
            r.ibs = q.value(55).toInt();
            r.zbs = q.value(56).toInt();
            r.q = q.value(57).toUInt();
            r.topflags = q.value(58).toUInt();
            QByteArray iName = bytes(q.value(59)), jName = bytes(q.value(60));
            UpdateNdBsNo(iName.data(), r.ibs);
            UpdateNdBsNo(jName.data(), r.zbs);
        }
        cursor.update();
    }
    return CALC_OK;
}
