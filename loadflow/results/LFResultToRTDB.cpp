// Stored load-flow results into the real-time records.

#include "common/Conversions.h"
#include "common/Feedback.h"
#include "common/RunTimeLog.h"
#include "common/SqlRows.h"
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
void recordId(char* id, const QByteArray& name, const char* suffix)
{
    char buf[kNameSize];
    Strcopy(buf, name.left(kNameSize - 8).constData());
    const std::size_t n = std::strlen(buf);
    std::memcpy(id, buf, n);
    std::strcpy(id + n, suffix);
}

float real(const CSqlRows& q, int c)
{
    return static_cast<float>(q.toDouble(c));
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

// Runs a result SELECT forward only; shows `message` when the server refuses it.
bool runSelect(CSqlRows& rows, QSqlQuery& q, const QByteArray& sql, const char* message)
{
    if (!rows.exec(q, QString::fromLocal8Bit(sql))) {
        ShowMessage(message, MSG_ERROR);
        return false;
    }
    return true;
}

// The frame of the families that meet their records by name: the SELECT, then for each row
// the record of class T whose id is the row's first column plus `suffix`, given the row's
// values by `apply` and updated. A row without a record is passed over silently.
template <class T, class Apply>
int updateRecords(QSqlDatabase* db, const QByteArray& sql, const char* message, const char* suffix,
                  Apply apply)
{
    QSqlQuery select(*db);
    CSqlRows q;
    if (!runSelect(q, select, sql, message)) {
        return CALC_FAIL;
    }
    char id[kNameSize];
    while (q.next()) {
        dbCursor<T> cursor(dbCursorForUpdate);
        dbQuery query;
        recordId(id, q.toLocal8Bit(0), suffix);
        query = "id=", static_cast<const char*>(id);
        if (cursor.select(query) < 1) {
            continue;
        }
        apply(*cursor, q);
        cursor.update();
    }
    return CALC_OK;
}

} // namespace

// Bus number, flag words and node after a one-ended element's two values (columns 3 to 6).
template <class T> void CLFResultDataTransfer::oneEndedTopology(T& r, const CSqlRows& q)
{
    r.ibs = q.toInt(3);
    r.q = q.toUInt(4);
    r.topflags = q.toUInt(5);
    QByteArray node = q.toLocal8Bit(6);
    UpdateNdBsNo(node.data(), r.ibs);
}

// Both ends' bus numbers, the flag words and the end nodes, from column `first` on.
template <class T> void CLFResultDataTransfer::twoEndedTopology(T& r, const CSqlRows& q, int first)
{
    r.ibs = q.toInt(first);
    r.zbs = q.toInt(first + 1);
    r.q = q.toUInt(first + 2);
    r.topflags = q.toUInt(first + 3);
    QByteArray iName = q.toLocal8Bit(first + 4), jName = q.toLocal8Bit(first + 5);
    UpdateNdBsNo(iName.data(), r.ibs);
    UpdateNdBsNo(jName.data(), r.zbs);
}

// Lines and series elements: the record is ln, the suffix differs.
int CLFResultDataTransfer::importLines(const char* family, const char* suffix)
{
    return updateRecords<ln>(m_pDB,
                             FormatText(m_bOptimal ? SQL_ACLINE_OPFR : SQL_ACLINE_LFR,
                                        table(family).constData(), m_caseNo),
                             MSG_Q_ACLINE, suffix, [&](ln& r, const CSqlRows& q) {
                                 r.Pi = real(q, 1);
                                 r.Qi = real(q, 2);
                                 r.Pj = real(q, 3);
                                 r.Qj = real(q, 4);
                                 r.Qci = real(q, 5);
                                 r.Qcj = real(q, 6);
                                 if (topology()) {
                                     twoEndedTopology(r, q, 7);
                                 }
                             });
}

int CLFResultDataTransfer::ImportACLine_RDataToRTDB()
{
    CRunTimeLog frame("ImportACLine_RDataToRTDB");
    return importLines("ACLINE", "_ac");
}

int CLFResultDataTransfer::ImportSCR_RDataToRTDB()
{
    CRunTimeLog frame("ImportSCR_RDataToRTDB");
    return importLines("SCR", "_sc");
}

// Shunts, generators and loads: one node each, the same topology columns after two values.
int CLFResultDataTransfer::ImportPCR_RDataToRTDB()
{
    CRunTimeLog frame("ImportPCR_RDataToRTDB");
    return updateRecords<cp>(
        m_pDB,
        FormatText(m_bOptimal ? SQL_PCR_OPFR : SQL_PCR_LFR, table("PCR").constData(), m_caseNo),
        MSG_Q_PCR, "", [&](cp& r, const CSqlRows& q) {
            r.Pi = real(q, 1);
            r.Qi = real(q, 2);
            if (topology()) {
                oneEndedTopology(r, q);
            }
        });
}

int CLFResultDataTransfer::ImportGen_RDataToRTDB()
{
    CRunTimeLog frame("ImportGen_RDataToRTDB");
    return updateRecords<un>(
        m_pDB,
        FormatText(m_bOptimal ? SQL_GEN_OPFR : SQL_GEN_LFR, table("GEN").constData(), m_caseNo),
        MSG_Q_GEN, "", [&](un& r, const CSqlRows& q) {
            r.Pg = real(q, 1);
            r.Qg = real(q, 2);
            if (topology()) {
                oneEndedTopology(r, q);
            }
        });
}

int CLFResultDataTransfer::ImportLoad_RDataToRTDB()
{
    CRunTimeLog frame("ImportLoad_RDataToRTDB");
    return updateRecords<ld>(
        m_pDB,
        FormatText(m_bOptimal ? SQL_LOAD_OPFR : SQL_LOAD_LFR, table("LOAD").constData(), m_caseNo),
        MSG_Q_LOAD, "", [&](ld& r, const CSqlRows& q) {
            r.Pl = real(q, 1);
            r.Ql = real(q, 2);
            if (topology()) {
                oneEndedTopology(r, q);
            }
        });
}

// Two-winding transformers and phase shifters: the record is xf, the suffix differs.
int CLFResultDataTransfer::importTransformers(const char* family, const char* suffix,
                                              const char* message)
{
    return updateRecords<xf>(
        m_pDB,
        FormatText(m_bOptimal ? SQL_T2W_OPFR : SQL_T2W_LFR, table(family).constData(), m_caseNo),
        message, suffix, [&](xf& r, const CSqlRows& q) {
            r.Pi = real(q, 1);
            r.Qi = real(q, 2);
            r.Pj = real(q, 3);
            r.Qj = real(q, 4);
            r.Pm = real(q, 5);
            r.Qm = real(q, 6);
            if (topology()) {
                twoEndedTopology(r, q, 7);
            }
        });
}

int CLFResultDataTransfer::ImportT2W_RDataToRTDB()
{
    CRunTimeLog frame("ImportT2W_RDataToRTDB");
    return importTransformers("T2W", "_2w", MSG_Q_T2W);
}

int CLFResultDataTransfer::ImportShift_RDataToRTDB()
{
    CRunTimeLog frame("ImportShift_RDataToRTDB");
    return importTransformers("SHIFT", "_sf", MSG_Q_SHIFT);
}

int CLFResultDataTransfer::ImportT3W_RDataToRTDB()
{
    CRunTimeLog frame("ImportT3w_RDataToRTDB");
    QSqlQuery select(*m_pDB);
    CSqlRows q;
    if (!runSelect(
            q, select,
            FormatText(m_bOptimal ? SQL_T3W_OPFR : SQL_T3W_LFR, table("T3W").constData(), m_caseNo),
            MSG_Q_T3W)) {
        return CALC_FAIL;
    }
    char name[kNameSize];
    char id[kNameSize + 8];
    while (q.next()) {
        dbCursor<xf> cursor(dbCursorForUpdate);
        Strcopy(name, q.toLocal8Bit(0).left(kNameSize - 1).constData());
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
                r.ibs = q.toInt(2 * w + 7);
                r.zbs = q.toInt(2 * w + 8);
                r.q = q.toUInt(2 * w + 13);
                r.topflags = q.toUInt(2 * w + 14);
                QByteArray star = q.toLocal8Bit(2 * w + 19), end = q.toLocal8Bit(2 * w + 20);
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
    // A switch's row meets no record: its id takes the breaker's suffix too.
    return updateRecords<cb>(m_pDB, FormatText(SQL_BREAKER, table("BREAKER").constData(), m_caseNo),
                             MSG_Q_BREAKER, "_brk", [](cb& r, const CSqlRows& q) {
                                 r.P = real(q, 1);
                                 r.Q = real(q, 2);
                             });
}

int CLFResultDataTransfer::ImportBus_RDataToRTDB()
{
    CRunTimeLog frame("ImportBus_RDataToRTDB");
    QSqlQuery select(*m_pDB);
    CSqlRows q;
    if (!runSelect(
            q, select,
            FormatText(m_bOptimal ? SQL_BUS_OPFR : SQL_BUS_LFR, table("BUS").constData(), m_caseNo),
            MSG_Q_BUS)) {
        return CALC_FAIL;
    }
    while (q.next()) {
        dbCursor<bus> cursor(dbCursorForUpdate);
        dbQuery query;
        QByteArray node = q.toLocal8Bit(0);
        query = "nd=", node.constData();
        if (cursor.select(query) < 1) {
            ShowMessagef(MSG_ERROR, MSG_NO_BUS, node.constData());
            return CALC_FAIL; // the one row-level stop: the rows before stay written
        }
        cursor->V = q.toDouble(1);
        cursor->Angle = q.toDouble(2);
        if (topology()) {
            cursor->ibs = q.toInt(3);
            cursor->topflags = q.toUInt(4);
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
        QSqlQuery select(*m_pDB);
        CSqlRows q;
        if (!runSelect(q, select,
                       FormatText(m_bOptimal ? SQL_BS_OPFR : SQL_BS_LFR, table("BS").constData(),
                                  m_caseNo),
                       MSG_Q_BUS)) {
            return CALC_FAIL;
        }
        while (q.next()) {
            dbCursor<bs> cursor(dbCursorForUpdate);
            dbQuery query;
            QByteArray name = q.toLocal8Bit(0);
            int ibs = 0;
            if (m_bOptimal) {
                query = "name=", name.constData();
            } else {
                ibs = q.toInt(3);
                query = "id=", ibs;
            }
            if (cursor.select(query) < 1) {
                continue;
            }
            cursor->V = q.toDouble(1);
            cursor->Angle = q.toDouble(2);
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
    QSqlQuery select(*m_pDB);
    CSqlRows q;
    if (!runSelect(q, select, FormatText(SQL_BS_REBUILD, table("BS").constData(), m_caseNo),
                   MSG_Q_BUS)) {
        return CALC_FAIL;
    }
    dbDatabase* db = bs::dbDescriptor.getDatabase();
    int last = -1;
    char placeholder[32];
    while (q.next()) {
        const QByteArray name = q.toLocal8Bit(0);
        const int ibs = q.toInt(3);
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
        rec.V = q.toDouble(1);
        rec.Angle = q.toDouble(2);
        rec.id = ibs;
        rec.ikv = q.toInt(4);
        rec.iisland = q.toInt(5);
        rec.q = q.toInt(6);
        rec.qq = q.toInt(7);
        last = ibs;
        dbAnyReference ref;
        db->insertRecord(&bs::dbDescriptor, &ref, &rec);
    }
    return CALC_OK;
}

int CLFResultDataTransfer::ImportDCLine_RDataToRTDB()
{
    CRunTimeLog frame("ImportDCLine_RDataToRTDB");
    const auto& fields = dln::dbDescriptor.fields();
    std::size_t first = 0;
    while (first < fields.size() && std::strcmp(fields[first].name, "Id10") != 0) {
        ++first;
    }
    char owner[32];
    return updateRecords<dln>(m_pDB,
                              FormatText(m_bOptimal ? SQL_DCLINE_OPFR : SQL_DCLINE_LFR,
                                         table("DCLINE").constData(), m_caseNo),
                              MSG_Q_DCLINE, "", [&](dln& r, const CSqlRows& q) {
                                  std::snprintf(owner, sizeof owner, "%d", q.toInt(1));
                                  r.Owner = owner;
                                  r.OP_Mode = q.toInt(2);
                                  char* base = reinterpret_cast<char*>(&r);
                                  for (int k = 0; k < 52; ++k) {
                                      const double v = q.toDouble(3 + k);
                                      std::memcpy(base + fields[first + k].offset, &v, sizeof v);
                                  }
                                  // The end sums as designed: Pi is written twice and ends with the
                                  // J-end power.
                                  r.Pi = static_cast<float>(-(r.Pd1i + r.Pd2i));
                                  r.Qi = static_cast<float>(-(r.Qd1i + r.Qd2i));
                                  r.Ii = static_cast<float>(r.Id10 + r.Id20);
                                  r.Pi = static_cast<float>(r.Pd1j + r.Pd2j);
                                  r.Qj = static_cast<float>(r.Qd1j + r.Qd2j);
                                  r.Ij = static_cast<float>(r.Id10 + r.Id20);
                                  if (topology()) {
                                      twoEndedTopology(r, q, 55);
                                  }
                              });
}
