// The solution in the real-time records into the result tables of a case.

#include "common/Feedback.h"
#include "common/GbkWidth.h"
#include "common/ModalBox.h"
#include "common/RealtimeLookups.h"
#include "common/RunTimeLog.h"
#include "common/SQLMultiInsert.h"
#include "loadflow/results/LFResultDataTransfer.h"
#include "loadflow/results/LFResultStatements.h"
#include "platform/NetModel.h"
#include "records/NetworkRecords.h"
#include "records/RecordFlags.h"

#include <QObject>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <cstdlib>
#include <cstring>

using namespace dtsdb;
using namespace lfr;

namespace {

constexpr int kBatch = 100;

// A real-time id less its last n characters (all of it when shorter), counted as the design
// counted them (ASCII one, any other character two) and never cut inside a character: where
// the n reach into a Chinese character, the whole character goes.
QByteArray cut(const char* id, int n)
{
    const QByteArray s(id);
    return GbkCut(s, GbkWidth(s) - n);
}

void run(QSqlDatabase* db, const QByteArray& sql)
{
    QSqlQuery q(*db);
    ExecStatement(q, sql);
}

// The frame the batched families share: the case's old rows deleted, the records that
// `query` selects (all when null) turned into rows by `rowOf` (an empty row leaves the
// record out), the rows inserted in batches of 100. A refused batch shows `message` and
// fails the family; without a message it is not looked at.
template <class T, class RowOf>
int writeFamily(QSqlDatabase* db, const QByteArray& table, int caseNo, const char* fields,
                dbQuery* query, const char* message, RowOf rowOf)
{
    run(db, FormatText(SQL_DELETE_CASE, table.constData(), caseNo));
    dbCursor<T> cursor(dbCursorViewOnly);
    if ((query ? cursor.select(*query) : cursor.select()) < 1) {
        return CALC_OK;
    }
    SQLMultiInsert ins(db, kBatch);
    ins.SetTableName(table);
    ins.SetFldNamelst(fields);
    do {
        const QByteArray row = rowOf(*cursor);
        if (!row.isEmpty()) {
            ins.AddRecord(row);
        }
    } while (cursor.next());
    if (!ins.exec() && message) {
        ShowMessage(message, MSG_ERROR);
        return CALC_FAIL;
    }
    return CALC_OK;
}

} // namespace

int CLFResultDataTransfer::ImportRTDBDataToLFResultDB()
{
    CRunTimeLog frame("ImportRTDBDataToLFResultDB");
    if (PrepareLFDataList() != 0) {
        return CALC_FAIL;
    }
    int ok = 1;
    for (int rc : {ImportRTDBToBs_R(), ImportRTDBToBus_R(), ImportRTDBToACLine_R(),
                   ImportRTDBToSCR_R(), ImportRTDBToPCR_R(), ImportRTDBToDCLine_R(),
                   ImportRTDBToGen_R(), ImportRTDBToLoad_R(), ImportRTDBToT2W_R(),
                   ImportRTDBToShift_R(), ImportRTDBToT3W_R(), ImportRTDBToBreaker_R()}) {
        if (rc != 0) {
            ok = 0;
        }
    }
    ok = 0; // cleared whatever the families did: their failures are told by messages only
    return ok ? 1 : 0;
}

int CLFResultDataTransfer::PrepareLFDataList()
{
    dbCursor<kv> levels(dbCursorViewOnly);
    dbCursor<bs> buses(dbCursorViewOnly); // built and never used, as designed
    dbQuery q;
    q = "order by id";
    dbQuery unused;
    unused = "order by id ";
    const int count = levels.select(q);
    if (count < 1) {
        ShowMessage(MSG_NO_KV, MSG_ERROR);
        return CALC_FAIL;
    }
    m_pKVList = new QList<SKV>(count); // an earlier list is not freed, as designed
    int i = 0;
    do {
        SKV& k = (*m_pKVList)[i++];
        k.Zone_No = std::atoi(levels->Zone);
        GbkCopy(k.KV, QByteArray(levels->id), 27); // never cut inside a character
        k.Base_kV = levels->Base_kV;
        k.Vmax_kV = levels->Vmax_kV;
        k.Vmin_kV = levels->Vmin_kV;
    } while (levels.next() && i < count);
    return CALC_OK;
}

int CLFResultDataTransfer::ImportRTDBToBs_R()
{
    dbQuery q;
    q = "iisland >=", 0; // placeholders stay out
    return writeFamily<bs>(
        m_pDB, table("BS"), m_caseNo, m_bOptimal ? FLD_BS : FLD_BS_LFR, &q, nullptr,
        [&](const bs& r) {
            // The design indexes the list with ikv unchecked; a number outside it gives an
            // empty level here instead of a read outside the list.
            static const SKV none = {0, "", 0, 0, 0};
            const SKV& k = r.ikv >= 0 && r.ikv < m_pKVList->size() ? (*m_pKVList)[r.ikv] : none;
            QByteArray row = FormatText("%d,'%s',%12.9f,%12.6f,'%s',%d,%f,%f,%f ", m_caseNo,
                                        SqlText(m_pDB, r.name).constData(), r.V, r.Angle,
                                        SqlText(m_pDB, k.KV).constData(), k.Zone_No, k.Base_kV,
                                        k.Vmax_kV, k.Vmin_kV);
            if (!m_bOptimal) {
                row += FormatText(",%d,%d,%d,%d,%d", r.id, r.ikv, r.iisland, r.q, r.qq);
            }
            return row;
        });
}

int CLFResultDataTransfer::ImportRTDBToBus_R()
{
    dbQuery q;
    q = "ibs >", 0;
    return writeFamily<dtsdb::bus>(
        m_pDB, table("BUS"), m_caseNo, m_bOptimal ? FLD_BUS : FLD_BUS_LFR, &q, nullptr,
        [&](const dtsdb::bus& r) {
            if (r.topflags & BUS_TOP_DEAD) {
                return QByteArray();
            }
            QByteArray row =
                FormatText("%d,'%s',%12.9f,%12.6f,'%s'", m_caseNo, SqlText(m_pDB, r.nd).constData(),
                           r.V, r.Angle, SqlText(m_pDB, r.KV).constData());
            if (!m_bOptimal) {
                row += FormatText(",%d,%d", r.ibs, r.topflags);
            }
            return row;
        });
}

// Lines and series elements: the record is ln, selected by lntype.
static int linesToTable(QSqlDatabase* db, const QByteArray& t, int caseNo, bool optimal, int lntype,
                        const char* message)
{
    dbQuery q;
    q = "lntype=", lntype;
    const bool ac = lntype == 1;
    const char* fields =
        ac ? (optimal ? FLD_ACLINE : FLD_ACLINE_LFR) : (optimal ? FLD_SCR : FLD_SCR_LFR);
    return writeFamily<ln>(db, t, caseNo, fields, &q, message, [&](const ln& r) {
        if (r.topflags & LN_TOP_INVALID) {
            return QByteArray();
        }
        QByteArray row =
            FormatText("%d,'%s','%s','%s',%d,%f,%f,%f,%f,%f,%f,%f,%f,", caseNo,
                       SqlText(db, cut(r.id, 3)).constData(), SqlText(db, r.I_Name).constData(),
                       SqlText(db, r.J_Name).constData(), r.ID_No, r.Pi, r.Qi, r.Pj, r.Qj, r.Qci,
                       r.Qcj, GetNodeVol_FromRTDB(r.I_Name), GetNodeVol_FromRTDB(r.J_Name));
        if (ac) {
            row += FormatText("%f,%f,%d,%f,%f", GetNodeAngle_FromRTDB(r.I_Name),
                              GetNodeAngle_FromRTDB(r.J_Name), std::atoi(r.Zone), r.Rate_Ka,
                              r.Up_Limit);
        } else {
            row += FormatText("%d", std::atoi(r.Zone));
        }
        if (!optimal) {
            row += FormatText(",%d,%d,%d,%d", r.ibs, r.zbs, r.q, r.topflags);
        }
        return row;
    });
}

int CLFResultDataTransfer::ImportRTDBToACLine_R()
{
    return linesToTable(m_pDB, table("ACLINE"), m_caseNo, m_bOptimal, 1, MSG_X_ACLINE);
}

int CLFResultDataTransfer::ImportRTDBToSCR_R()
{
    return linesToTable(m_pDB, table("SCR"), m_caseNo, m_bOptimal, 2, MSG_X_SCR);
}

int CLFResultDataTransfer::ImportRTDBToPCR_R()
{
    return writeFamily<cp>(m_pDB, table("PCR"), m_caseNo, m_bOptimal ? FLD_PCR : FLD_PCR_LFR,
                           nullptr, MSG_X_PCR, [&](const cp& r) {
                               if (r.topflags & CP_TOP_INVALID) {
                                   return QByteArray();
                               }
                               QByteArray row =
                                   FormatText("%d,'%s','%s',%d,%f,%f,%f,'%s'", m_caseNo,
                                              SqlText(m_pDB, r.id).constData(),
                                              SqlText(m_pDB, r.Bus_Name).constData(), r.ID_No, r.Pi,
                                              r.Qi, GetNodeVol_FromRTDB(r.Bus_Name),
                                              SqlText(m_pDB, r.KV).constData());
                               if (!m_bOptimal) {
                                   row += FormatText(",%d,%d,%d", r.ibs, r.q, r.topflags);
                               }
                               return row;
                           });
}

int CLFResultDataTransfer::ImportRTDBToGen_R()
{
    return writeFamily<un>(m_pDB, table("GEN"), m_caseNo, m_bOptimal ? FLD_GEN : FLD_GEN_LFR,
                           nullptr, MSG_X_GEN, [&](const un& r) {
                               if (r.topflags & UN_TOP_INVALID) {
                                   return QByteArray();
                               }
                               QByteArray row =
                                   FormatText("%d,'%s','%s',%15.9f,%15.9f,%12.9f,%f,%d ", m_caseNo,
                                              SqlText(m_pDB, r.id).constData(),
                                              SqlText(m_pDB, r.Bus_Name).constData(), r.Pg, r.Qg,
                                              GetNodeVol_FromRTDB(r.Bus_Name),
                                              GetNodeAngle_FromRTDB(r.Bus_Name), r.Mode_Ctrl);
                               if (!m_bOptimal) {
                                   row += FormatText(",%d,%d,%d", r.ibs, r.q, r.topflags);
                               }
                               return row;
                           });
}

int CLFResultDataTransfer::ImportRTDBToLoad_R()
{
    return writeFamily<ld>(m_pDB, table("LOAD"), m_caseNo, m_bOptimal ? FLD_LOAD : FLD_LOAD_LFR,
                           nullptr, MSG_X_LOAD, [&](const ld& r) {
                               if (r.topflags & LD_TOP_INVALID) {
                                   return QByteArray();
                               }
                               QByteArray row =
                                   FormatText("%d,'%s','%s',%d,%15.9f,%15.9f,%12.9f,%f,%d ",
                                              m_caseNo, SqlText(m_pDB, r.id).constData(),
                                              SqlText(m_pDB, r.Bus_Name).constData(), r.No_Load,
                                              r.Pl, r.Ql, GetNodeVol_FromRTDB(r.Bus_Name),
                                              GetNodeAngle_FromRTDB(r.Bus_Name), r.Mode_Ctrl);
                               if (!m_bOptimal) {
                                   row += FormatText(",%d,%d,%d", r.ibs, r.q, r.topflags);
                               }
                               return row;
                           });
}

// Two-winding transformers (type 1, with angles) and phase shifters (type 2, without).
static int transformersToTable(QSqlDatabase* db, const QByteArray& t, int caseNo, bool optimal,
                               int type, const char* message)
{
    dbQuery q;
    q = "type=", type;
    const bool t2w = type == 1;
    const char* fields =
        t2w ? (optimal ? FLD_T2W : FLD_T2W_LFR) : (optimal ? FLD_SHIFT : FLD_SHIFT_LFR);
    return writeFamily<xf>(db, t, caseNo, fields, &q, message, [&](const xf& r) {
        if (r.topflags & XF_TOP_INVALID) {
            return QByteArray();
        }
        QByteArray row =
            FormatText("%d,'%s','%s','%s',%d,%f,%f,%f,%f,%f,%f,%f,%f,%f,", caseNo,
                       SqlText(db, cut(r.id, 3)).constData(), SqlText(db, r.I_Name).constData(),
                       SqlText(db, r.J_Name).constData(), r.ID_No, r.Pi, r.Qi, r.Pj, r.Qj, r.Pm,
                       r.Qm, r.Tk, GetNodeVol_FromRTDB(r.I_Name), GetNodeVol_FromRTDB(r.J_Name));
        if (t2w) {
            row += FormatText("%f,%f,", GetNodeAngle_FromRTDB(r.I_Name),
                              GetNodeAngle_FromRTDB(r.J_Name));
        }
        row += FormatText("%f,%f,'%s'", r.Rate_MVA, r.Up_Limit, SqlText(db, r.ST).constData());
        if (!optimal) {
            row += FormatText(",%d,%d,%d,%d", r.ibs, r.zbs, r.q, r.topflags);
        }
        return row;
    });
}

int CLFResultDataTransfer::ImportRTDBToT2W_R()
{
    return transformersToTable(m_pDB, table("T2W"), m_caseNo, m_bOptimal, 1, MSG_X_T2W);
}

int CLFResultDataTransfer::ImportRTDBToShift_R()
{
    return transformersToTable(m_pDB, table("SHIFT"), m_caseNo, m_bOptimal, 2, MSG_X_SHIFT);
}

// Three-winding transformers: the windings of one transformer (ids "<name>_3w1".."_3w3", in
// id order) fold into one row, written at the third winding; a transformer without a live
// winding writes none.
int CLFResultDataTransfer::ImportRTDBToT3W_R()
{
    dbQuery q;
    q = "type=", 3, "order by id asc ";
    QByteArray previous;
    bool alive = true;
    int starIbs = -1;
    QByteArray row;
    return writeFamily<xf>(
        m_pDB, table("T3W"), m_caseNo, m_bOptimal ? FLD_T3W : FLD_T3W_LFR, &q, MSG_X_T3W,
        [&](const xf& r) {
            const QByteArray name = cut(r.id, 4);
            if (!alive && name == previous) {
                return QByteArray();
            }
            if (name != previous) {
                alive = false;
                previous = name;
                dbCursor<xf> windings(dbCursorViewOnly);
                for (int w = 1; w <= 3; ++w) {
                    const QByteArray wid = FormatText("%s_3w%d", name.constData(), w);
                    dbQuery wq;
                    wq = "type=", 3, " and id=", wid.constData();
                    if (windings.select(wq) > 0 && !(windings->topflags & XF_TOP_INVALID)) {
                        alive = true;
                        starIbs = windings->ibs;
                        break;
                    }
                }
                if (!alive) {
                    return QByteArray(); // no live winding: no row
                }
                row =
                    FormatText("%d,'%s','%s',%f,'%s',", m_caseNo, SqlText(m_pDB, name).constData(),
                               SqlText(m_pDB, r.I_Name).constData(), r.Up_Limit,
                               SqlText(m_pDB, r.ST).constData());
            }
            const QByteArray idText(r.id);
            const int k = idText.isEmpty() ? 0 : idText.back() - '0';
            row += FormatText("'%s',%d,", SqlText(m_pDB, r.J_Name).constData(), r.ID_No);
            if (r.topflags & XF_TOP_INVALID) {
                row += FormatText("%f,%f,%f,%f,%f,%f,%f,", 0.0, 0.0, 0.0, 0.0, r.Tk, 0.0, 0.0);
                if (k == 1) {
                    row += FormatText("%f,%f,", 0.0, 0.0);
                }
            } else {
                row +=
                    FormatText("%f,%f,%f,%f,%f,%f,%f,", r.Pj, r.Qj, r.Pi - r.Pj, r.Qi - r.Qj, r.Tk,
                               GetNodeVol_FromRTDB(r.J_Name), GetNodeAngle_FromRTDB(r.J_Name));
                if (k == 1) {
                    row += FormatText("%f,%f,", r.Pm, r.Qm);
                }
            }
            row += FormatText(k == 1 ? "%f," : (k == 2 ? "%f, " : "%f "), r.Rate_MVA);
            if (!m_bOptimal) {
                if (k == 3) {
                    row += FormatText(",%d,%d,%d,%d", r.zbs, r.q, r.topflags, starIbs);
                } else {
                    row += FormatText("%d,%d,%d,", r.zbs, r.q, r.topflags);
                }
            }
            return k == 3 ? row : QByteArray();
        });
}

int CLFResultDataTransfer::ImportRTDBToBreaker_R()
{
    {
        dtsdb::DTSDB model;
        dtsdb::cbFlow flow(m_pRTDB);
        flow.loadData();
        flow.calculate();
        flow.storeData();
    }
    const QByteArray t = table("BREAKER");
    run(m_pDB, FormatText(SQL_DELETE_CASE, t.constData(), m_caseNo));
    dbCursor<cb> cursor(dbCursorViewOnly);
    if (cursor.select() < 1) {
        return CALC_OK;
    }
    do {
        const cb& r = *cursor;
        if ((r.topflags & CB_TOP_DEAD) || !(r.q & CB_TESTED)) {
            continue;
        }
        // Four characters go, also from a switch's three-letter suffix, as designed.
        const QByteArray name = cut(r.id, 4), i(r.I_Name), j(r.J_Name);
        // A name wider than its column (20 bytes as the design counted them) is refused
        // before its row is sent, as a failed row: warned, and the next record goes on.
        const bool fits = GbkWidth(name) <= kNameBytes && GbkWidth(i) <= kNameBytes &&
                          GbkWidth(j) <= kNameBytes;
        QSqlQuery q(*m_pDB);
        if (!fits || !ExecStatement(q, FormatText(SQL_BREAKER_ROW, t.constData(), m_caseNo,
                                                  SqlText(m_pDB, name).constData(),
                                                  SqlText(m_pDB, i).constData(),
                                                  SqlText(m_pDB, j).constData(), r.P, r.Q,
                                                  GetNodeVol_FromRTDB(r.I_Name)))) {
            ShowModalBox(ModalBoxKind::Warning, QObject::tr(BOX_CAPTION),
                         QObject::tr(MSG_BREAKER_ROW));
        }
    } while (cursor.next());
    return CALC_OK;
}

int CLFResultDataTransfer::ImportRTDBToDCLine_R()
{
    const QByteArray t = table("DCLINE");
    run(m_pDB, FormatText(SQL_DELETE_CASE, t.constData(), m_caseNo));
    dbCursor<dln> cursor(dbCursorViewOnly);
    if (cursor.select() < 1) {
        return CALC_OK;
    }
    const auto& fields = dln::dbDescriptor.fields();
    std::size_t first = 0;
    while (first < fields.size() && std::strcmp(fields[first].name, "Id10") != 0) {
        ++first;
    }
    do {
        const dln& r = *cursor;
        if (r.topflags & DLN_TOP_INVALID) {
            continue;
        }
        QByteArray sql = FormatText(
            SQL_DCLINE_ROW_HEAD, t.constData(), m_caseNo, SqlText(m_pDB, r.id).constData(),
            SqlText(m_pDB, r.I_Name).constData(), SqlText(m_pDB, r.J_Name).constData(), r.ID_No,
            std::atoi(r.Owner), r.OP_Mode);
        const char* base = reinterpret_cast<const char*>(&r);
        for (int k = 0; k < 52; ++k) {
            double v;
            std::memcpy(&v, base + fields[first + k].offset, sizeof v);
            sql += FormatText(k < 51 ? "%s=%f," : "%s=%f ", fields[first + k].name, v);
        }
        if (!m_bOptimal) {
            sql += FormatText(SQL_DCLINE_ROW_LFR_TAIL, r.ibs, r.zbs, r.q, r.topflags);
        }
        run(m_pDB, sql); // not looked at
    } while (cursor.next());
    return CALC_OK;
}
