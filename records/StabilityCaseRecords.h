#pragma once
// The records of a stability case: the case itself, its criteria, faults, user models,
// disturbances and output set-up, as the stability engine reads them. Fields stand in
// the engine's order, which is not always the order of the case tables' columns (the
// counters of case_st, for one). Declared like the network records: one field list per
// record makes both the struct and its descriptor.
//
// Types: int 32-bit, float the single-precision "real", const char* a text that the
// database copies on insert.

#include "records/NetworkRecords.h"

namespace dtsdb {

// clang-format off

// The case; found by its number.
#define DTSDB_CASE_ST(X) X(int, case_no, KEY) X(int, Case_LF, FIELD) X(int, ST_SC, FIELD)          \
    X(float, T_Total, FIELD) X(float, DT_Step, FIELD) X(int, F60, FIELD)                           \
    X(int, EQ_Method, FIELD) X(int, EQ_Continu, FIELD) X(int, Ctrl_Fault, FIELD)                   \
    X(int, CTRL_UD, FIELD) X(int, CTRL_DIST, FIELD) X(int, UP_CAL, FIELD)                          \
    X(float, Calculate, FIELD) X(int, UDOUT, FIELD) X(const char*, CAL_DATE, FIELD)                \
    X(const char*, CAL_TIME, FIELD) X(int, UD_TIME, FIELD) X(int, Nup, FIELD) X(int, Nbus, FIELD)  \
    X(int, Nacline, FIELD) X(int, Ntrans, FIELD) X(int, Ngenerat, FIELD) X(int, Nload, FIELD)      \
    X(int, Ndcline, FIELD) X(int, Nsvc, FIELD) X(int, Nreserved, FIELD) X(int, Nfault, FIELD)      \
    X(int, Ndist, FIELD) X(int, Istable, FIELD) X(float, Tstable, FIELD)                           \
    X(float, Tolerance, FIELD) X(const char*, Note, FIELD)

// Stability criteria; at most one record.
#define DTSDB_STCRIT(X) X(int, Valid, FIELD) X(int, Lstop, FIELD) X(float, MaxDAng, FIELD)         \
    X(float, MinVol, FIELD) X(float, TDVol, FIELD) X(float, MinFreq, FIELD)                        \
    X(float, TDFreq, FIELD) X(int, NanaGrp, FIELD) X(float, TSDAng, FIELD)                         \
    X(const char*, ID_Name1, FIELD) X(const char*, ID_Name2, FIELD)                                \
    X(const char*, Gen_Name1, FIELD) X(const char*, Gen_Name2, FIELD) X(float, TSProny, FIELD)     \
    X(float, TEProny, FIELD) X(int, NDTProny, FIELD)

// A fault on a branch; Name is the bus a fault inside the branch adds, Name_No its number.
#define DTSDB_STFAULT(X) X(int, Valid, FIELD) X(const char*, ID_Name, FIELD)                       \
    X(const char*, I_Name, FIELD) X(const char*, J_Name, FIELD) X(int, I_No, FIELD)                \
    X(int, J_No, FIELD) X(int, ID_No, FIELD) X(int, Locate, FIELD) X(const char*, Name, FIELD)     \
    X(int, Name_No, FIELD) X(int, A, FIELD) X(int, B, FIELD) X(int, C, FIELD)                      \
    X(int, Ground, FIELD) X(int, Short, FIELD) X(int, Open, FIELD) X(float, T_Start, FIELD)        \
    X(float, T_End, FIELD) X(float, R_Fault, FIELD) X(float, X_Fault, FIELD)

// The four buses of a user model, then its branch k (1 to 4).
#define DTSDB_MODEL_BUSES(X) X(const char*, Bus1, FIELD) X(const char*, Bus2, FIELD)               \
    X(const char*, Bus3, FIELD) X(const char*, Bus4, FIELD) X(int, Bus1_No, FIELD)                 \
    X(int, Bus2_No, FIELD) X(int, Bus3_No, FIELD) X(int, Bus4_No, FIELD)
#define DTSDB_MODEL_BRANCH(X, k) X(const char*, ID_Name##k, FIELD) X(const char*, I##k##_Name, FIELD) \
    X(const char*, J##k##_Name, FIELD) X(int, I##k##_No, FIELD) X(int, J##k##_No, FIELD)           \
    X(int, ID_No##k, FIELD)
// A branch of a user-defined model may carry a new bus at Locatek, named Name_k.
#define DTSDB_UDCAL_BRANCH(X, k) DTSDB_MODEL_BRANCH(X, k) X(int, Side##k, FIELD)                   \
    X(int, Locate##k, FIELD) X(const char*, Name_##k, FIELD) X(int, Name_##k##_No, FIELD)

// User-defined model.
#define DTSDB_UDCAL_ST(X) X(int, Valid, FIELD) X(int, Model_No, FIELD) X(int, Par_No, FIELD)       \
    DTSDB_MODEL_BUSES(X) DTSDB_UDCAL_BRANCH(X, 1) DTSDB_UDCAL_BRANCH(X, 2)                         \
    DTSDB_UDCAL_BRANCH(X, 3) DTSDB_UDCAL_BRANCH(X, 4)

// User program; UP_Name has no length limit.
#define DTSDB_UPCAL_ST(X) X(int, Valid, FIELD) X(const char*, UP_Name, FIELD)                      \
    X(int, Par_No, FIELD) DTSDB_MODEL_BUSES(X) DTSDB_MODEL_BRANCH(X, 1)                            \
    DTSDB_MODEL_BRANCH(X, 2) DTSDB_MODEL_BRANCH(X, 3) DTSDB_MODEL_BRANCH(X, 4)

// A disturbance: one record class for all ten kinds; Type, Sub_Type and Par1 to Par6
// mean what the kind makes of them.
#define DTSDB_STDIST(X) X(int, Valid, FIELD) X(const char*, ID_Name, FIELD)                        \
    X(const char*, I_Name, FIELD) X(const char*, J_Name, FIELD) X(int, I_No, FIELD)                \
    X(int, J_No, FIELD) X(int, ID_No, FIELD) X(int, Type, FIELD) X(int, Sub_Type, FIELD)           \
    X(float, Par1, FIELD) X(float, Par2, FIELD) X(float, Par3, FIELD) X(float, Par4, FIELD)        \
    X(float, Par5, FIELD) X(float, Par6, FIELD)

// Output settings; B1 to B10 are bus numbers.
#define DTSDB_ST_OUT(X) X(int, AnaFunc, FIELD) X(int, LAnaMon, FIELD) X(int, Fault_120, FIELD)     \
    X(int, Variable, FIELD) X(int, Bus_120, FIELD) X(int, B1, FIELD) X(int, B2, FIELD)             \
    X(int, B3, FIELD) X(int, B4, FIELD) X(int, B5, FIELD) X(int, B6, FIELD) X(int, B7, FIELD)      \
    X(int, B8, FIELD) X(int, B9, FIELD) X(int, B10, FIELD) X(int, MDTLF, FIELD)                    \
    X(int, MDTOUT, FIELD) X(int, MDTFau, FIELD) X(float, DTLF, FIELD) X(float, DTOUT, FIELD)       \
    X(float, DTFau, FIELD) X(float, DTMON, FIELD) X(float, DTMRef, FIELD)

// An output variable.
#define DTSDB_STVAR_INF(X) X(int, Coord_ID, FIELD) X(const char*, Coord_Name, FIELD)               \
    X(int, Coord_Mont, FIELD) X(int, Var_ID, FIELD) X(const char*, ID_name, FIELD)                 \
    X(const char*, I_Name, FIELD) X(const char*, J_Name, FIELD) X(int, I_No, FIELD)                \
    X(int, J_No, FIELD) X(int, ID_No, FIELD) X(int, Type, FIELD) X(int, Sub_Type, FIELD)           \
    X(const char*, Var_Name, FIELD)

// A group of the automatic analysis, and one bus of a group.
#define DTSDB_STANA_GI(X) X(int, Valid, FIELD) X(int, Grp_NO, FIELD)                               \
    X(const char*, Grp_Name, FIELD) X(int, NumBus, FIELD)
#define DTSDB_STANA_GRP(X) X(int, Grp_NO, FIELD) X(const char*, Bus_Name, FIELD)                   \
    X(int, Bus_No, FIELD)

DTSDB_RECORD_CLASS(case_st, DTSDB_NO_SLOTS, DTSDB_CASE_ST)
DTSDB_RECORD_CLASS(stcrit, DTSDB_NO_SLOTS, DTSDB_STCRIT)
DTSDB_RECORD_CLASS(stfault, DTSDB_NO_SLOTS, DTSDB_STFAULT)
DTSDB_RECORD_CLASS(udcal_st, DTSDB_NO_SLOTS, DTSDB_UDCAL_ST)
DTSDB_RECORD_CLASS(upcal_st, DTSDB_NO_SLOTS, DTSDB_UPCAL_ST)
DTSDB_RECORD_CLASS(stdist, DTSDB_NO_SLOTS, DTSDB_STDIST)
DTSDB_RECORD_CLASS(st_out, DTSDB_NO_SLOTS, DTSDB_ST_OUT)
DTSDB_RECORD_CLASS(stvar_inf, DTSDB_NO_SLOTS, DTSDB_STVAR_INF)
DTSDB_RECORD_CLASS(stana_gi, DTSDB_NO_SLOTS, DTSDB_STANA_GI)
DTSDB_RECORD_CLASS(stana_grp, DTSDB_NO_SLOTS, DTSDB_STANA_GRP)

// clang-format on

} // namespace dtsdb
