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
#include <tuple>

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
// `query` selects (all when null) turned into rows by the row function that `makeRow`
// makes (an empty row leaves the record out), the rows inserted in batches of 100. A
// refused batch shows `message` and fails the family; without a message it is not looked
// at. A row function is called as rowOf(text, record), `text` composing the row from its
// template: StatementRow for the statements, BulkFields in the batched mode, whose rows go
// in one load; where they cannot, the family goes the statements' way from its first
// record with a row function made afresh.
template <class T, class MakeRow>
int writeFamily(QSqlDatabase* db, RecordWriteMode mode, const QByteArray& table, int caseNo,
                const char* fields, dbQuery* query, const char* message, MakeRow makeRow)
{
    run(db, FormatText(SQL_DELETE_CASE, table.constData(), caseNo));
    dbCursor<T> cursor(dbCursorViewOnly);
    auto select = [&]() { return query ? cursor.select(*query) : cursor.select(); };
    if (select() < 1) {
        return CALC_OK;
    }
    if (mode == RecordWriteMode::Batched) {
        CBulkLoad load(db, table, fields);
        BulkFields text;
        auto rowOf = makeRow();
        do {
            const QByteArray row = rowOf(text, *cursor);
            if (!row.isEmpty()) {
                load.AddRow(row);
            }
        } while (text.ok() && cursor.next());
        if (text.ok() && load.Load()) {
            return CALC_OK;
        }
        select();
    }
    const StatementRow text(db);
    auto rowOf = makeRow();
    SQLMultiInsert ins(db, kBatch);
    ins.SetTableName(table);
    ins.SetFldNamelst(fields);
    do {
        const QByteArray row = rowOf(text, *cursor);
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

// The families of one statement per record (breakers, DC lines): a record that `skip`
// passes over has none. In the batched mode the rows go in one load of `fields`, composed
// by bulkRow(text, record); where they cannot, and in the per-record mode,
// statement(record) sends the family's statement for each record from the first.
template <class T, class Skip, class BulkRow, class Statement>
void rowPerStatement(QSqlDatabase* db, RecordWriteMode mode, const QByteArray& table,
                     const QByteArray& fields, Skip skip, BulkRow bulkRow, Statement statement)
{
    dbCursor<T> cursor(dbCursorViewOnly);
    if (cursor.select() < 1) {
        return;
    }
    if (mode == RecordWriteMode::Batched) {
        CBulkLoad load(db, table, fields);
        BulkFields text;
        do {
            if (!skip(*cursor)) {
                load.AddRow(bulkRow(text, *cursor)); // an empty row: no bulk load
            }
        } while (text.ok() && load.ok() && cursor.next());
        if (text.ok() && load.Load()) {
            return;
        }
        cursor.select();
    }
    do {
        if (!skip(*cursor)) {
            statement(*cursor);
        }
    } while (cursor.next());
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
        m_pDB, m_writeMode, table("BS"), m_caseNo, m_bOptimal ? FLD_BS : FLD_BS_LFR, &q, nullptr,
        [&] {
            return [&](auto& text, const bs& r) {
                // The design indexes the list with ikv unchecked; a number outside it gives
                // an empty level here instead of a read outside the list.
                static const SKV none = {0, "", 0, 0, 0};
                const SKV& k =
                    r.ikv >= 0 && r.ikv < m_pKVList->size() ? (*m_pKVList)[r.ikv] : none;
                QByteArray row = text("%d,'%s',%12.9f,%12.6f,'%s',%d,%f,%f,%f ", m_caseNo,
                                      text.text(r.name), r.V, r.Angle, text.text(k.KV),
                                      k.Zone_No, k.Base_kV, k.Vmax_kV, k.Vmin_kV);
                if (!m_bOptimal) {
                    row += text(",%d,%d,%d,%d,%d", r.id, r.ikv, r.iisland, r.q, r.qq);
                }
                return row;
            };
        });
}

int CLFResultDataTransfer::ImportRTDBToBus_R()
{
    dbQuery q;
    q = "ibs >", 0;
    return writeFamily<dtsdb::bus>(
        m_pDB, m_writeMode, table("BUS"), m_caseNo, m_bOptimal ? FLD_BUS : FLD_BUS_LFR, &q,
        nullptr, [&] {
            return [&](auto& text, const dtsdb::bus& r) {
                if (r.topflags & BUS_TOP_DEAD) {
                    return QByteArray();
                }
                QByteArray row = text("%d,'%s',%12.9f,%12.6f,'%s'", m_caseNo, text.text(r.nd),
                                      r.V, r.Angle, text.text(r.KV));
                if (!m_bOptimal) {
                    row += text(",%d,%d", r.ibs, r.topflags);
                }
                return row;
            };
        });
}

// Lines and series elements: the record is ln, selected by lntype.
static int linesToTable(QSqlDatabase* db, RecordWriteMode mode, const QByteArray& t, int caseNo,
                        bool optimal, int lntype, const char* message)
{
    dbQuery q;
    q = "lntype=", lntype;
    const bool ac = lntype == 1;
    const char* fields =
        ac ? (optimal ? FLD_ACLINE : FLD_ACLINE_LFR) : (optimal ? FLD_SCR : FLD_SCR_LFR);
    return writeFamily<ln>(db, mode, t, caseNo, fields, &q, message, [&] {
        return [&](auto& text, const ln& r) {
            if (r.topflags & LN_TOP_INVALID) {
                return QByteArray();
            }
            QByteArray row =
                text("%d,'%s','%s','%s',%d,%f,%f,%f,%f,%f,%f,%f,%f,", caseNo,
                     text.text(cut(r.id, 3)), text.text(r.I_Name), text.text(r.J_Name), r.ID_No,
                     r.Pi, r.Qi, r.Pj, r.Qj, r.Qci, r.Qcj, GetNodeVol_FromRTDB(r.I_Name),
                     GetNodeVol_FromRTDB(r.J_Name));
            if (ac) {
                row += text("%f,%f,%d,%f,%f", GetNodeAngle_FromRTDB(r.I_Name),
                            GetNodeAngle_FromRTDB(r.J_Name), std::atoi(r.Zone), r.Rate_Ka,
                            r.Up_Limit);
            } else {
                row += text("%d", std::atoi(r.Zone));
            }
            if (!optimal) {
                row += text(",%d,%d,%d,%d", r.ibs, r.zbs, r.q, r.topflags);
            }
            return row;
        };
    });
}

int CLFResultDataTransfer::ImportRTDBToACLine_R()
{
    return linesToTable(m_pDB, m_writeMode, table("ACLINE"), m_caseNo, m_bOptimal, 1,
                        MSG_X_ACLINE);
}

int CLFResultDataTransfer::ImportRTDBToSCR_R()
{
    return linesToTable(m_pDB, m_writeMode, table("SCR"), m_caseNo, m_bOptimal, 2, MSG_X_SCR);
}

int CLFResultDataTransfer::ImportRTDBToPCR_R()
{
    return writeFamily<cp>(
        m_pDB, m_writeMode, table("PCR"), m_caseNo, m_bOptimal ? FLD_PCR : FLD_PCR_LFR, nullptr,
        MSG_X_PCR, [&] {
            return [&](auto& text, const cp& r) {
                if (r.topflags & CP_TOP_INVALID) {
                    return QByteArray();
                }
                QByteArray row = text("%d,'%s','%s',%d,%f,%f,%f,'%s'", m_caseNo, text.text(r.id),
                                      text.text(r.Bus_Name), r.ID_No, r.Pi, r.Qi,
                                      GetNodeVol_FromRTDB(r.Bus_Name), text.text(r.KV));
                if (!m_bOptimal) {
                    row += text(",%d,%d,%d", r.ibs, r.q, r.topflags);
                }
                return row;
            };
        });
}

int CLFResultDataTransfer::ImportRTDBToGen_R()
{
    return writeFamily<un>(
        m_pDB, m_writeMode, table("GEN"), m_caseNo, m_bOptimal ? FLD_GEN : FLD_GEN_LFR, nullptr,
        MSG_X_GEN, [&] {
            return [&](auto& text, const un& r) {
                if (r.topflags & UN_TOP_INVALID) {
                    return QByteArray();
                }
                QByteArray row = text("%d,'%s','%s',%15.9f,%15.9f,%12.9f,%f,%d ", m_caseNo,
                                      text.text(r.id), text.text(r.Bus_Name), r.Pg, r.Qg,
                                      GetNodeVol_FromRTDB(r.Bus_Name),
                                      GetNodeAngle_FromRTDB(r.Bus_Name), r.Mode_Ctrl);
                if (!m_bOptimal) {
                    row += text(",%d,%d,%d", r.ibs, r.q, r.topflags);
                }
                return row;
            };
        });
}

int CLFResultDataTransfer::ImportRTDBToLoad_R()
{
    return writeFamily<ld>(
        m_pDB, m_writeMode, table("LOAD"), m_caseNo, m_bOptimal ? FLD_LOAD : FLD_LOAD_LFR,
        nullptr, MSG_X_LOAD, [&] {
            return [&](auto& text, const ld& r) {
                if (r.topflags & LD_TOP_INVALID) {
                    return QByteArray();
                }
                QByteArray row = text("%d,'%s','%s',%d,%15.9f,%15.9f,%12.9f,%f,%d ", m_caseNo,
                                      text.text(r.id), text.text(r.Bus_Name), r.No_Load, r.Pl,
                                      r.Ql, GetNodeVol_FromRTDB(r.Bus_Name),
                                      GetNodeAngle_FromRTDB(r.Bus_Name), r.Mode_Ctrl);
                if (!m_bOptimal) {
                    row += text(",%d,%d,%d", r.ibs, r.q, r.topflags);
                }
                return row;
            };
        });
}

// Two-winding transformers (type 1, with angles) and phase shifters (type 2, without).
static int transformersToTable(QSqlDatabase* db, RecordWriteMode mode, const QByteArray& t,
                               int caseNo, bool optimal, int type, const char* message)
{
    dbQuery q;
    q = "type=", type;
    const bool t2w = type == 1;
    const char* fields =
        t2w ? (optimal ? FLD_T2W : FLD_T2W_LFR) : (optimal ? FLD_SHIFT : FLD_SHIFT_LFR);
    return writeFamily<xf>(db, mode, t, caseNo, fields, &q, message, [&] {
        return [&](auto& text, const xf& r) {
            if (r.topflags & XF_TOP_INVALID) {
                return QByteArray();
            }
            QByteArray row = text("%d,'%s','%s','%s',%d,%f,%f,%f,%f,%f,%f,%f,%f,%f,", caseNo,
                                  text.text(cut(r.id, 3)), text.text(r.I_Name),
                                  text.text(r.J_Name), r.ID_No, r.Pi, r.Qi, r.Pj, r.Qj, r.Pm,
                                  r.Qm, r.Tk, GetNodeVol_FromRTDB(r.I_Name),
                                  GetNodeVol_FromRTDB(r.J_Name));
            if (t2w) {
                row += text("%f,%f,", GetNodeAngle_FromRTDB(r.I_Name),
                            GetNodeAngle_FromRTDB(r.J_Name));
            }
            row += text("%f,%f,'%s'", r.Rate_MVA, r.Up_Limit, text.text(r.ST));
            if (!optimal) {
                row += text(",%d,%d,%d,%d", r.ibs, r.zbs, r.q, r.topflags);
            }
            return row;
        };
    });
}

int CLFResultDataTransfer::ImportRTDBToT2W_R()
{
    return transformersToTable(m_pDB, m_writeMode, table("T2W"), m_caseNo, m_bOptimal, 1,
                               MSG_X_T2W);
}

int CLFResultDataTransfer::ImportRTDBToShift_R()
{
    return transformersToTable(m_pDB, m_writeMode, table("SHIFT"), m_caseNo, m_bOptimal, 2,
                               MSG_X_SHIFT);
}

// Three-winding transformers: the windings of one transformer (ids "<name>_3w1".."_3w3", in
// id order) fold into one row, written at the third winding; a transformer without a live
// winding writes none. The row function keeps what it needs across records.
int CLFResultDataTransfer::ImportRTDBToT3W_R()
{
    dbQuery q;
    q = "type=", 3, "order by id asc ";
    return writeFamily<xf>(
        m_pDB, m_writeMode, table("T3W"), m_caseNo, m_bOptimal ? FLD_T3W : FLD_T3W_LFR, &q,
        MSG_X_T3W, [&] {
            return [this, previous = QByteArray(), alive = true, starIbs = -1,
                    row = QByteArray()](auto& text, const xf& r) mutable {
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
                    row = text("%d,'%s','%s',%f,'%s',", m_caseNo, text.text(name),
                               text.text(r.I_Name), r.Up_Limit, text.text(r.ST));
                }
                const QByteArray idText(r.id);
                const int k = idText.isEmpty() ? 0 : idText.back() - '0';
                row += text("'%s',%d,", text.text(r.J_Name), r.ID_No);
                if (r.topflags & XF_TOP_INVALID) {
                    row += text("%f,%f,%f,%f,%f,%f,%f,", 0.0, 0.0, 0.0, 0.0, r.Tk, 0.0, 0.0);
                    if (k == 1) {
                        row += text("%f,%f,", 0.0, 0.0);
                    }
                } else {
                    row += text("%f,%f,%f,%f,%f,%f,%f,", r.Pj, r.Qj, r.Pi - r.Pj, r.Qi - r.Qj,
                                r.Tk, GetNodeVol_FromRTDB(r.J_Name),
                                GetNodeAngle_FromRTDB(r.J_Name));
                    if (k == 1) {
                        row += text("%f,%f,", r.Pm, r.Qm);
                    }
                }
                row += text(k == 1 ? "%f," : (k == 2 ? "%f, " : "%f "), r.Rate_MVA);
                if (!m_bOptimal) {
                    if (k == 3) {
                        row += text(",%d,%d,%d,%d", r.zbs, r.q, r.topflags, starIbs);
                    } else {
                        row += text("%d,%d,%d,", r.zbs, r.q, r.topflags);
                    }
                }
                return k == 3 ? row : QByteArray();
            };
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
    // Four characters go, also from a switch's three-letter suffix, as designed. A name wider
    // than its column (20 bytes as the design counted them) is refused before its row is
    // sent, as a failed row: warned, and the next record goes on. In the batched mode such a
    // record gives no row, so that the family goes the statements' way.
    auto names = [](const cb& r) {
        const QByteArray name = cut(r.id, 4), i(r.I_Name), j(r.J_Name);
        const bool fits = GbkWidth(name) <= kNameBytes && GbkWidth(i) <= kNameBytes &&
                          GbkWidth(j) <= kNameBytes;
        return std::make_tuple(fits, name, i, j);
    };
    rowPerStatement<cb>(
        m_pDB, m_writeMode, t, FLD_BREAKER_BULK,
        [](const cb& r) { return (r.topflags & CB_TOP_DEAD) || !(r.q & CB_TESTED); },
        [&](BulkFields& text, const cb& r) {
            const auto [fits, name, i, j] = names(r);
            return fits ? text(ROW_BREAKER_BULK, m_caseNo, name, i, j, r.P, r.Q,
                               GetNodeVol_FromRTDB(r.I_Name))
                        : QByteArray();
        },
        [&](const cb& r) {
            const auto [fits, name, i, j] = names(r);
            QSqlQuery q(*m_pDB);
            if (!fits || !ExecStatement(q, FormatText(SQL_BREAKER_ROW, t.constData(), m_caseNo,
                                                      SqlText(m_pDB, name).constData(),
                                                      SqlText(m_pDB, i).constData(),
                                                      SqlText(m_pDB, j).constData(), r.P, r.Q,
                                                      GetNodeVol_FromRTDB(r.I_Name)))) {
                ShowModalBox(ModalBoxKind::Warning, QObject::tr(BOX_CAPTION),
                             QObject::tr(MSG_BREAKER_ROW));
            }
        });
    return CALC_OK;
}

int CLFResultDataTransfer::ImportRTDBToDCLine_R()
{
    const QByteArray t = table("DCLINE");
    run(m_pDB, FormatText(SQL_DELETE_CASE, t.constData(), m_caseNo));
    // The fifty-two values from Id10 on, in the descriptor's order.
    constexpr int kValues = 52;
    const auto& fields = dln::dbDescriptor.fields();
    std::size_t first = 0;
    while (first < fields.size() && std::strcmp(fields[first].name, "Id10") != 0) {
        ++first;
    }
    auto value = [&](const dln& r, int k) {
        double v;
        std::memcpy(&v, reinterpret_cast<const char*>(&r) + fields[first + k].offset, sizeof v);
        return v;
    };
    QByteArray bulkFields = FLD_DCLINE_BULK_HEAD;
    for (int k = 0; k < kValues; ++k) {
        bulkFields += QByteArray(",") + fields[first + k].name;
    }
    if (!m_bOptimal) {
        bulkFields += FLD_DCLINE_BULK_LFR_TAIL;
    }
    rowPerStatement<dln>(
        m_pDB, m_writeMode, t, bulkFields,
        [](const dln& r) { return (r.topflags & DLN_TOP_INVALID) != 0; },
        [&](BulkFields& text, const dln& r) {
            QByteArray row = text(ROW_DCLINE_BULK_HEAD, m_caseNo, r.id, r.I_Name, r.J_Name,
                                  r.ID_No, std::atoi(r.Owner), r.OP_Mode);
            for (int k = 0; k < kValues; ++k) {
                row += text("%f", value(r, k));
            }
            if (!m_bOptimal) {
                row += text(ROW_DCLINE_BULK_LFR_TAIL, r.ibs, r.zbs, r.q, r.topflags);
            }
            return row;
        },
        [&](const dln& r) {
            QByteArray sql = FormatText(SQL_DCLINE_ROW_HEAD, t.constData(), m_caseNo,
                                        SqlText(m_pDB, r.id).constData(),
                                        SqlText(m_pDB, r.I_Name).constData(),
                                        SqlText(m_pDB, r.J_Name).constData(), r.ID_No,
                                        std::atoi(r.Owner), r.OP_Mode);
            for (int k = 0; k < kValues; ++k) {
                sql += FormatText(k < kValues - 1 ? "%s=%f," : "%s=%f ", fields[first + k].name,
                                  value(r, k));
            }
            if (!m_bOptimal) {
                sql += FormatText(SQL_DCLINE_ROW_LFR_TAIL, r.ibs, r.zbs, r.q, r.topflags);
            }
            run(m_pDB, sql); // not looked at
        });
    return CALC_OK;
}
