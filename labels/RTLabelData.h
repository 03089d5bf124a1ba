#pragma once
// Live values for the labels of single-line diagrams. Once a load flow's results stand in
// the real-time records, the label map (RTLABELMAP) says which element family shows which
// quantity in which label slot; the refresh writes those values into the records' slots,
// so that a diagram reads the records alone and needs no arithmetic of its own.

#include <QString>

class QSqlDatabase;
class dbDatabase;

// Element families of the label map's Ele_OrderNo. 3 and anything outside 0 to 12 name
// no family; 5 reads as 4 and 9 as 8.
enum LabelFamily : int {
    LABEL_BUS = 0,       // voltage levels (kv), then physical buses (bus)
    LABEL_GENERATOR = 1, // un
    LABEL_LOAD = 2,      // ld
    LABEL_SHUNT = 4,     // cp; also 5
    LABEL_ACLINE = 6,    // ln of lntype 1
    LABEL_DCLINE = 7,    // dln
    LABEL_SERIES = 8,    // ln of lntype 2; also 9
    LABEL_TRANS2W = 10,  // xf of type 1
    LABEL_SHIFTER = 11,  // xf of type 2
    LABEL_TRANS3W = 12,  // xf of type 3, one record per winding
};

// Label_Type of a branch row: the power at the I end, at the J end, or the end-to-end
// difference. On three-winding transformers 8, 9 and 10 (14, 15 and 16) pick winding 1,
// 2 or 3 and show its J-end power (its difference).
enum LabelQuantity : int {
    LABEL_POWER_I = 8,
    LABEL_POWER_J = 9,
    LABEL_POWER_W3 = 10,
    LABEL_POWER_DIFF = 14,
    LABEL_DIFF_W2 = 15,
    LABEL_DIFF_W3 = 16,
};

// nMode asking for named values: powers times the system base (CDB_SBBAK), voltages
// times their base voltage. Any other mode leaves the per-unit values.
constexpr int LABEL_MODE_NAMED = 32;

// Walks the rows of label configuration 4 (only those with MChanged 1 when bChangedOnly)
// in the order the server gives them; each row writes its quantity into Slot[RT_No] of
// every record of its family, so the last row wins in a slot. Then commits the real-time
// database once, also when the map gave no row, and with bClearChanged sets MChanged to 0
// in every row of the map, of all configurations. Reports nothing and returns true; the
// calling thread must be attached to pRTDB.
bool PrepareRTLabelLFRData(QSqlDatabase* pDB, dbDatabase* pRTDB, int nMode, bool bChangedOnly,
                           bool bClearChanged);

// The per-element refresh: does nothing in this version and returns true.
bool PrepareEleRTLabelLFRData(QSqlDatabase*, dbDatabase*, const QString&, int, int);
