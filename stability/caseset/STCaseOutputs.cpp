// The output set-up of a stability case: settings (ST_OUT), output variables
// (ST_VAR_INF) and the groups of the automatic analysis (ST_ANACAL, ST_ANA_GRP).

#include "stability/caseset/STCaseDataTransfer.h"

#include "common/Conversions.h"
#include "common/Feedback.h"
#include "common/RowValues.h"
#include "records/StabilityCaseRecords.h"
#include "stability/caseset/STCaseKit.h"
#include "stability/caseset/STCaseStatements.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>
#include <cstring>

using namespace dtsdb;
using namespace stcase;

int CSTCaseDataTransfer::ImportST_OUTDataToRTDB()
{
    QSqlQuery q(*m_pDB);
    if (!run(q, FormatText(SQL_OUT_SELECT, ST_OUT, m_nCaseNo))) {
        ShowMessage(MSG_FLAG_QUERY, MSG_ERROR);
        return CALC_FAIL;
    }
    if (!q.next()) { // the old record stays: the table is emptied only when a row came
        ShowMessage(MSG_OUT_MISSING, MSG_ERROR);
        return CALC_FAIL;
    }
    removeAllRecords<st_out>();
    m_pRTDB->commit();
    st_out r;
    r.AnaFunc = RowInt(q, 0);
    r.LAnaMon = RowInt(q, 1);
    r.Fault_120 = RowInt(q, 2);
    r.Variable = RowInt(q, 3);
    r.Bus_120 = RowInt(q, 4);
    int* buses[10] = {&r.B1, &r.B2, &r.B3, &r.B4, &r.B5, &r.B6, &r.B7, &r.B8, &r.B9, &r.B10};
    for (int k = 0; k < 10; ++k) {
        *buses[k] = nodeBusNo(text(q, 5 + k, kNameBytes).constData());
    }
    r.MDTLF = RowInt(q, 15);
    r.MDTOUT = RowInt(q, 16);
    r.MDTFau = RowInt(q, 17);
    r.DTLF = RowReal(q, 18);
    r.DTOUT = RowReal(q, 19);
    r.DTFau = RowReal(q, 20);
    r.DTMON = RowReal(q, 21);
    r.DTMRef = RowReal(q, 22);
    insert(r);
    m_pRTDB->commit();
    return CALC_OK;
}

QByteArray CSTCaseDataTransfer::BranchOutputId(const QByteArray& name, const QByteArray& iName,
                                               const QByteArray& jName, int kind)
{
    switch (kind) {
    case 6:
        return FormatText(ID_AC, name.constData());
    case 8:
        return FormatText(ID_SC, name.constData());
    case 10:
        return FormatText(ID_2W, name.constData());
    case 11:
        return FormatText(ID_SF, name.constData());
    case 12: {
        // The output does not say which winding: the load-flow case's transformer table does.
        QSqlQuery q(*m_pDB);
        if (!run(q, FormatText(SQL_WINDING_NTYPE, m_nCaseLF, SqlText(m_pDB, name).constData(),
                               SqlText(m_pDB, iName).constData(),
                               SqlText(m_pDB, jName).constData()))) {
            ShowMessage(MSG_WINDING_QUERY, MSG_ERROR);
            return QByteArray();
        }
        if (!q.next()) {
            return QByteArray();
        }
        switch (RowInt(q, 0)) {
        case 31:
            return FormatText(ID_3W1, name.constData());
        case 32:
            return FormatText(ID_3W2, name.constData());
        case 33:
            return FormatText(ID_3W3, name.constData());
        default:
            return QByteArray();
        }
    }
    default:
        return QByteArray();
    }
}

int CSTCaseDataTransfer::GeneratorBusNo(const QByteArray& generator, int current)
{
    QSqlQuery q(*m_pDB);
    if (!run(q, FormatText(SQL_GEN_NODE, m_nCaseLF, SqlText(m_pDB, generator).constData()))) {
        ShowMessage(MSG_GEN_NODE_QUERY, MSG_ERROR);
        return current;
    }
    return q.next() ? nodeBusNo(text(q, 0).constData()) : 0;
}

int CSTCaseDataTransfer::ImportVAR_INFDataToRTDB()
{
    removeAllRecords<stvar_inf>();
    m_pRTDB->commit();

    const int off = switchedOff(m_pDB, SQL_VARIABLE, ST_OUT, m_nCaseNo, 1, MSG_FLAG_QUERY);
    if (off >= 0) {
        return off;
    }
    QSqlQuery q(*m_pDB);
    // One record for all rows, as the designed cursor has it: a generator's bus number
    // that cannot be looked up stays as the row before left it.
    stvar_inf r;
    for (int type : {1, 2, 3, 4, 5, 6, 7, 12}) {
        if (!run(q, FormatText(SQL_VAR_INF_SELECT, ST_VAR_INF, m_nCaseNo, type))) {
            ShowMessage(MSG_VAR_INF_QUERY, MSG_ERROR);
            return CALC_FAIL;
        }
        while (q.next()) {
            const QByteArray coordName = text(q, 1, kNameBytes);
            const QByteArray name = text(q, 4, kNameBytes);
            const QByteArray iName = text(q, 5, kNameBytes);
            const QByteArray jName = text(q, 6, kNameBytes);
            const QByteArray varName = text(q, 9, kNameBytes);
            const int idNo = RowInt(q, 7);
            // A branch output (type 7) names its record by the branch kind in ID_No.
            const QByteArray id = type == 7 ? BranchOutputId(name, iName, jName, idNo) : name;
            r.Coord_ID = RowInt(q, 0);
            r.Coord_Name = coordName.constData();
            r.Coord_Mont = RowInt(q, 2);
            r.Var_ID = RowInt(q, 3);
            r.ID_name = id.constData();
            r.I_Name = iName.constData();
            r.J_Name = jName.constData();
            if (type == 1) { // generator angles: the names are generators
                r.I_No = GeneratorBusNo(iName, r.I_No);
                r.J_No = GeneratorBusNo(jName, r.J_No);
            } else {
                r.I_No = nodeBusNo(r.I_Name);
                r.J_No = nodeBusNo(r.J_Name);
            }
            r.ID_No = idNo;
            r.Type = type;
            r.Sub_Type = RowInt(q, 8);
            r.Var_Name = varName.constData();
            insert(r);
            m_pRTDB->commit();
        }
    }
    return CALC_OK;
}

int CSTCaseDataTransfer::ImportSTANA_GIDataToRTDB()
{
    removeAllRecords<stana_gi>();
    m_pRTDB->commit();

    const int off = switchedOff(m_pDB, SQL_ANAFUNC, ST_OUT, m_nCaseNo, 2, MSG_FLAG_QUERY);
    if (off >= 0) {
        return off; // only 2 turns the analysis on
    }
    QSqlQuery q(*m_pDB);
    if (!run(q, FormatText(SQL_ANACAL_SELECT, ST_ANACAL, m_nCaseNo))) {
        ShowMessage(MSG_ANA_QUERY, MSG_ERROR);
        return CALC_FAIL;
    }
    while (q.next()) {
        const QByteArray name = text(q, 2, kNameBytes);
        stana_gi r;
        r.Valid = RowInt(q, 0);
        r.Grp_NO = RowInt(q, 1);
        r.Grp_Name = name.constData();
        r.NumBus = 1; // NumBus is selected and not read
        insert(r);
        m_pRTDB->commit();
    }
    return CALC_OK;
}

int CSTCaseDataTransfer::ImportSTANA_GrpDataToRTDB()
{
    removeAllRecords<stana_grp>();
    m_pRTDB->commit();

    const int off = switchedOff(m_pDB, SQL_ANAFUNC, ST_OUT, m_nCaseNo, 2, MSG_FLAG_QUERY);
    if (off >= 0) {
        return off;
    }
    QSqlQuery q(*m_pDB);
    if (!run(q, FormatText(SQL_ANA_GRP_SELECT, ST_ANA_GRP, ST_ANACAL, m_nCaseNo))) {
        ShowMessage(MSG_ANA_QUERY, MSG_ERROR);
        return CALC_FAIL;
    }
    while (q.next()) {
        const int group = RowInt(q, 0);
        const QByteArray level = text(q, 1);
        // The position of the level among the levels selected by its own name: always 0,
        // so every group takes the buses of the first level, as designed.
        dbCursor<kv> levels(dbCursorViewOnly);
        dbQuery byId;
        byId = "id=", level.constData(), " order by id asc";
        int position = 0;
        if (levels.select(byId) > 0) {
            do {
                if (std::strcmp(levels->id, level.constData()) == 0) {
                    break;
                }
                ++position;
            } while (levels.next());
        }
        dbCursor<bs> buses(dbCursorViewOnly);
        dbQuery byLevel;
        byLevel = "ikv=", &position;
        if (buses.select(byLevel) > 0) {
            do {
                stana_grp r;
                r.Grp_NO = group;
                r.Bus_Name = buses->name;
                r.Bus_No = nodeBusNo(buses->name);
                insert(r);
            } while (buses.next());
        }
        m_pRTDB->commit(); // once for the group row
    }
    return CALC_OK;
}
