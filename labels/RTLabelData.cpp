// The label refresh: rows of the label map into the label slots of the real-time records.

#include "labels/RTLabelData.h"

#include "common/BaseDbLookups.h"
#include "common/Feedback.h"
#include "common/RealtimeLookups.h"
#include "common/RowValues.h"
#include "labels/LabelStatements.h"
#include "records/NetworkRecords.h"
#include "records/RecordFlags.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

using namespace dtsdb;
using namespace labels;

namespace {

// What a slot holds, in its Kind.
constexpr int SLOT_VOLTAGE = 2; // a voltage in Value1
constexpr int SLOT_POWER = 8;   // active power in Value1, reactive in Value2

// Bit of the engine's flag word of bs: the bus's voltage is shown as 0.
constexpr int BS_SHOWN_DEAD = 1;

// A difference label never shows an exact zero: strictly inside (-1e-07, 1e-07) it
// becomes 1e-07 or -1e-07.
constexpr double DIFF_BAND = 1e-07;

struct LabelRow
{
    int family;   // Ele_OrderNo
    int label;    // Label_OrderNo: read, not used
    int slot;     // RT_No
    int quantity; // Label_Type
};

struct Scale
{
    bool named;
    double sb;
    double operator()(double v) const { return named ? v * sb : v; }
};

// Every record of class T, or those that `query` selects, through an update cursor;
// `each` gets the cursor on each record in turn.
template <class T, class Each> void walk(dbQuery* query, Each each)
{
    dbCursor<T> cursor(dbCursorForUpdate);
    if ((query ? cursor.select(*query) : cursor.select()) < 1) {
        return;
    }
    do {
        each(cursor);
    } while (cursor.next());
}

// Slot[0] of a level or a physical bus: the voltage `v`, after `v` and `angle` were set
// to 0 when the bus is dead.
void voltageSlot(LabelSlot& s, double& v, double& angle, bool dead)
{
    s.Changed = 1;
    s.Kind = SLOT_VOLTAGE;
    if (dead) {
        v = 0;
        angle = 0;
    }
    s.Value1 = v;
}

// Voltage levels first: each shows the voltage of its calculation bus, read through a
// view-only cursor, so a bus marked dead shows 0 while the bs record keeps its values. A
// level without its bus is passed over. Then the physical buses of a bus number above 0:
// a dead one has its own voltage and angle set to 0, and the update stores them.
void voltageLabels(int nMode)
{
    const bool named = nMode == LABEL_MODE_NAMED;
    walk<kv>(nullptr, [&](dbCursor<kv>& level) {
        dbCursor<bs> calc(dbCursorViewOnly);
        dbQuery q;
        q = "id = ", level->ibs;
        if (calc.select(q) < 1) {
            return;
        }
        voltageSlot(level->Slot[0], calc->V, calc->Angle, calc->q & BS_SHOWN_DEAD);
        if (named) {
            level->Slot[0].Value1 = level->Base_kV * calc->V;
        }
        level.update();
    });
    dbQuery q;
    q = "ibs >", 0;
    walk<bus>(&q, [&](dbCursor<bus>& b) {
        voltageSlot(b->Slot[0], b->V, b->Angle, b->topflags & BUS_TOP_DEAD);
        if (named) {
            b->Slot[0].Value1 = GetBasekV_FromRTDB(b->id, false) * b->V;
        }
        b.update();
    });
}

// Slot[0] of a one-ended element: its power, shown as 0 when `shownDead`.
void powerSlot(LabelSlot& s, double p, double q, const Scale& scale, bool shownDead)
{
    s.Changed = 1;
    s.Kind = SLOT_POWER;
    s.Value1 = scale(p);
    s.Value2 = scale(q);
    if (shownDead) {
        s.Value1 = 0;
        s.Value2 = 0;
    }
}

// Generators and loads: every record gets its label; a dead one in the job shows 0 and
// keeps its own power.
template <class T, float T::*P, float T::*Q, unsigned TopInvalid, unsigned InJob>
void oneEndedLabels(const Scale& scale)
{
    walk<T>(nullptr, [&](dbCursor<T>& c) {
        T& r = *c;
        const bool dead = (r.topflags & TopInvalid) && (r.q & InJob);
        powerSlot(r.Slot[0], r.*P, r.*Q, scale, dead);
        c.update();
    });
}

// Shunts: a dead one in the job has its own power set to 0; only shunts in the job get a
// label and an update.
void shuntLabels(const Scale& scale)
{
    walk<cp>(nullptr, [&](dbCursor<cp>& c) {
        cp& r = *c;
        const bool dead = (r.topflags & CP_TOP_INVALID) && (r.q & CP_INJOB);
        if (dead) {
            r.Pi = 0;
            r.Qi = 0;
        }
        if (r.q & CP_INJOB) {
            powerSlot(r.Slot[0], r.Pi, r.Qi, scale, dead);
            c.update();
        }
    });
}

// Slot[slot] of a branch record, by the label's quantity; any other slot or quantity
// writes nothing.
template <class T> void branchSlot(T& r, int slot, int quantity, const Scale& scale)
{
    if (slot < 0 || slot > 2) {
        return;
    }
    double p, q;
    switch (quantity) {
    case LABEL_POWER_I:
        p = r.Pi;
        q = r.Qi;
        break;
    case LABEL_POWER_J:
        p = r.Pj;
        q = r.Qj;
        break;
    case LABEL_POWER_DIFF:
        // Taken in double precision, the slot's own, from the single-precision ends.
        p = double(r.Pi) - double(r.Pj);
        q = double(r.Qi) - double(r.Qj);
        break;
    default:
        return;
    }
    LabelSlot& s = r.Slot[slot];
    s.Changed = 1;
    s.Kind = SLOT_POWER;
    s.Value1 = scale(p);
    s.Value2 = scale(q);
    if (quantity == LABEL_POWER_DIFF) {
        // The difference follows the direction of the I end's flow, and never shows an
        // exact zero; the band is tested after scaling and on the active power only.
        if (r.Pi < 0) {
            s.Value1 = -s.Value1;
            s.Value2 = -s.Value2;
        }
        if (s.Value1 > -DIFF_BAND && s.Value1 < DIFF_BAND) {
            s.Value1 = r.Pi > 0 ? DIFF_BAND : -DIFF_BAND;
        }
    }
}

// Branch records of class T that `query` selects (all when null). `zero` is the family's
// rule for a dead branch, whose own four powers are then set to 0 and stored; only
// branches in the job (`injob` in q) get a label and an update. `quantity` gives the
// label's quantity for a record.
template <class T, class Zero, class Quantity>
void branchLabels(dbQuery* query, unsigned injob, Zero zero, Quantity quantity, int slot,
                  const Scale& scale)
{
    walk<T>(query, [&](dbCursor<T>& c) {
        T& r = *c;
        if (zero(r)) {
            r.Pi = 0;
            r.Qi = 0;
            r.Pj = 0;
            r.Qj = 0;
        }
        if (r.q & injob) {
            branchSlot(r, slot, quantity(r), scale);
            c.update();
        }
    });
}

// Line rule (ln): dead when out of the topology or open at either end, and in the job.
bool lineDead(const ln& r)
{
    return ((r.topflags & LN_TOP_INVALID) || (r.q & LN_IOPEN) || (r.q & LN_JOPEN)) &&
           (r.q & LN_INJOB);
}

// Branch rule (dln, xf): dead when out of the topology and in the job; an open end
// does not count here.
template <class T, unsigned TopInvalid, unsigned InJob> bool branchDead(const T& r)
{
    return (r.topflags & TopInvalid) && (r.q & InJob);
}

// A winding of a three-winding transformer: the last character of its id, read as a
// decimal number (0 when it is none), picks which row quantities it shows. 8, 9, 10 give
// the J-end power of winding 1, 2, 3 and 14, 15, 16 its difference; anything else, or
// another winding, no label.
int windingQuantity(const char* id, int quantity)
{
    static const struct
    {
        int row, winding, shown;
    } table[] = {{LABEL_POWER_I, 1, LABEL_POWER_J},    {LABEL_POWER_J, 2, LABEL_POWER_J},
                 {LABEL_POWER_W3, 3, LABEL_POWER_J},   {LABEL_POWER_DIFF, 1, LABEL_POWER_DIFF},
                 {LABEL_DIFF_W2, 2, LABEL_POWER_DIFF}, {LABEL_DIFF_W3, 3, LABEL_POWER_DIFF}};
    const int winding = QString::fromLocal8Bit(id).right(1).toInt(nullptr, 10);
    for (const auto& t : table) {
        if (t.row == quantity && t.winding == winding) {
            return t.shown;
        }
    }
    return -1;
}

void lineLabels(int lntype, const LabelRow& row, const Scale& scale)
{
    dbQuery q;
    q = "lntype=", lntype;
    branchLabels<ln>(
        &q, LN_INJOB, lineDead, [&](const ln&) { return row.quantity; }, row.slot, scale);
}

void transformerLabels(int type, const LabelRow& row, const Scale& scale)
{
    dbQuery q;
    q = "type=", type;
    auto quantity = [&](const xf& r) {
        return type == 3 ? windingQuantity(r.id, row.quantity) : row.quantity;
    };
    branchLabels<xf>(&q, XF_INJOB, branchDead<xf, XF_TOP_INVALID, XF_INJOB>, quantity, row.slot,
                     scale);
}

void labelRow(const LabelRow& row, int nMode, const Scale& scale)
{
    switch (row.family) {
    case LABEL_BUS:
        if (row.slot == 0) {
            voltageLabels(nMode);
        }
        break;
    case LABEL_GENERATOR:
        if (row.slot == 0) {
            oneEndedLabels<un, &un::Pg, &un::Qg, UN_TOP_INVALID, UN_INJOB>(scale);
        }
        break;
    case LABEL_LOAD:
        if (row.slot == 0) {
            oneEndedLabels<ld, &ld::Pl, &ld::Ql, LD_TOP_INVALID, LD_INJOB>(scale);
        }
        break;
    case LABEL_SHUNT:
    case LABEL_SHUNT + 1:
        if (row.slot == 0) {
            shuntLabels(scale);
        }
        break;
    case LABEL_ACLINE:
        lineLabels(1, row, scale);
        break;
    case LABEL_DCLINE:
        branchLabels<dln>(
            nullptr, DLN_INJOB, branchDead<dln, DLN_TOP_INVALID, DLN_INJOB>,
            [&](const dln&) { return row.quantity; }, row.slot, scale);
        break;
    case LABEL_SERIES:
    case LABEL_SERIES + 1:
        lineLabels(2, row, scale);
        break;
    case LABEL_TRANS2W:
        transformerLabels(1, row, scale);
        break;
    case LABEL_SHIFTER:
        transformerLabels(2, row, scale);
        break;
    case LABEL_TRANS3W:
        transformerLabels(3, row, scale);
        break;
    default: // 3 and every number outside 0 to 12: no family
        break;
    }
}

} // namespace

bool PrepareRTLabelLFRData(QSqlDatabase* pDB, dbDatabase* pRTDB, int nMode, bool bChangedOnly,
                           bool bClearChanged)
{
    Scale scale{nMode == LABEL_MODE_NAMED, 1.0};
    if (scale.named) {
        scale.sb = GetSB_FromDB(pDB);
    }
    QSqlQuery query(*pDB);
    query.setForwardOnly(true);
    const QByteArray sql = FormatText(bChangedOnly ? SQL_LABEL_ROWS_CHANGED : SQL_LABEL_ROWS,
                                      LABEL_MAP_TABLE, LABEL_CONF_LOADFLOW);
    // A refused select gives no rows; the commit and the reset run all the same.
    if (query.exec(QString::fromLocal8Bit(sql))) {
        while (query.next()) {
            // A floating value loses its fraction, as every other row reader has it.
            const LabelRow row{RowInt(query, 0), RowInt(query, 1), RowInt(query, 2),
                               RowInt(query, 3)};
            labelRow(row, nMode, scale);
        }
    }
    pRTDB->commit();
    if (bClearChanged) {
        // Unchecked, and after the commit: a failure here leaves the rows marked.
        query.exec(QString::fromLocal8Bit(FormatText(SQL_LABEL_CLEAR_CHANGED, LABEL_MAP_TABLE)));
    }
    return true;
}

bool PrepareEleRTLabelLFRData(QSqlDatabase*, dbDatabase*, const QString&, int, int)
{
    return true;
}
