#pragma once
// The network records of the real-time database: the one declaration of their fields,
// in order and type, shared by every transfer, the label code and the switch-flow step.
//
// Each record is listed once, as a field list: the struct members and the descriptor the
// engine reads are both made from it. A text field (`const char*`) of a fetched record
// points into the database; to change it, point it at a buffer that lives until the
// update or insert, which copies the bytes. Types: int 32-bit, unsigned int a word of bits,
// float the single-precision "real", double.
//
// Stability fields follow the load-flow fields of dln, un, ld and svc, in the order the
// stability job tables give them.

#include "rtdb/rtdb.h"

namespace dtsdb {

// clang-format off

// A label slot: what a diagram shows beside an element.
struct LabelSlot
{
    int Kind;    // 2: a voltage in Value1; 8: active power in Value1, reactive in Value2
    int Changed; // set to 1 whenever the slot is written
    double Value1;
    double Value2;
};

// Sets every field to zero and every text to "", as a fresh record has them.
void initRecord(void* record, std::size_t size, const dbTableDescriptor& descriptor);

#define DTSDB_MEMBER(type, name, kind) type name;
// The descriptor of record class T from its field list, in the one source file that
// defines it, with RECORD defined as T around it.
#define DTSDB_DESCRIBE(type, name, kind) RTDB_##kind(RECORD, name),
#define DTSDB_DESCRIPTOR(T, LIST)                                                                  \
    dbTableDescriptor T::dbDescriptor(#T, sizeof(T), {LIST(DTSDB_DESCRIBE)});
#define DTSDB_RECORD_CLASS(T, SLOTS, LIST)                                                         \
    struct T                                                                                       \
    {                                                                                              \
        SLOTS                                                                                      \
        LIST(DTSDB_MEMBER)                                                                         \
        T() { initRecord(this, sizeof(T), dbDescriptor); }                                         \
        static dbTableDescriptor dbDescriptor;                                                     \
    };

// Electrical node of the network model.
#define DTSDB_ND(X) X(const char*, id, KEY) X(int, ibs, KEY) X(unsigned int, q, FIELD)

// Calculation bus. Placeholders (iisland -1) keep the numbers without a gap from 0.
#define DTSDB_BS(X) X(int, id, KEY) X(const char*, name, KEY) X(int, ikv, FIELD)                   \
    X(int, iisland, FIELD) X(int, q, FIELD) X(int, qq, FIELD) X(double, V, FIELD)                  \
    X(double, Angle, FIELD)

// Physical bus, found by its node.
#define DTSDB_BUS(X) X(const char*, id, KEY) X(const char*, KV, FIELD) X(const char*, nd, KEY)     \
    X(int, ibs, KEY) X(double, V, FIELD) X(double, Angle, FIELD) X(unsigned int, topflags, FIELD)

// Voltage level.
#define DTSDB_KV(X) X(const char*, id, KEY) X(const char*, Zone, FIELD) X(int, ibs, KEY)           \
    X(float, Base_kV, FIELD) X(float, Vmax_kV, FIELD) X(float, Vmin_kV, FIELD)

// Relation of a voltage level and a node.
#define DTSDB_R_KV_ND(X) X(const char*, kv_id, FIELD) X(const char*, nd_id, KEY)

// AC line (lntype 1) or series capacitor or reactor (lntype 2). The kind is a key: the
// label refresh and the results select each kind many times, and a series element should
// not cost a walk over every line.
#define DTSDB_LN(X) X(const char*, id, KEY) X(const char*, Zone, FIELD)                            \
    X(const char*, I_Name, FIELD) X(const char*, J_Name, FIELD) X(int, ID_No, FIELD)               \
    X(int, ibs, FIELD) X(int, zbs, FIELD) X(int, lntype, KEY) X(float, R1, FIELD)                  \
    X(float, X1, FIELD) X(float, B1_Half, FIELD) X(float, R0, FIELD) X(float, X0, FIELD)           \
    X(float, B0_Half, FIELD) X(float, Qci, FIELD) X(float, Qcj, FIELD) X(float, Pi, FIELD)         \
    X(float, Qi, FIELD) X(float, Pj, FIELD) X(float, Qj, FIELD) X(float, Rate_Ka, FIELD)           \
    X(float, Up_Limit, FIELD) X(const char*, Type, FIELD) X(float, Length_Km, FIELD)               \
    X(int, Mode_Ctrl, FIELD) X(int, Par_No, FIELD) X(const char*, Bus_Ctrl, FIELD)                 \
    X(int, Line_Ctrl, FIELD) X(float, Value_Ctrl, FIELD) X(unsigned int, q, FIELD)                 \
    X(unsigned int, topflags, FIELD)

// Shunt capacitor or reactor.
#define DTSDB_CP(X) X(const char*, id, KEY) X(int, ID_No, FIELD) X(const char*, KV, FIELD)         \
    X(const char*, Bus_Name, FIELD) X(int, ibs, FIELD) X(unsigned int, q, FIELD)                   \
    X(unsigned int, topflags, FIELD) X(float, R1, FIELD) X(float, X1, FIELD) X(float, R0, FIELD)   \
    X(float, X0, FIELD) X(float, Pi, FIELD) X(float, Qi, FIELD) X(const char*, Type, FIELD)        \
    X(int, Mode_Ctrl, FIELD) X(int, Par_No, FIELD) X(const char*, Bus_Ctrl, FIELD)                 \
    X(int, Line_Ctrl, FIELD) X(float, Value_Ctrl, FIELD)

// Transformer branch: two-winding (type 1), phase shifter (2), a winding of a
// three-winding transformer (3), whose I end is the star node. The type is a key, as the
// kind of a line is.
#define DTSDB_XF(X) X(const char*, id, KEY) X(int, type, KEY) X(int, ID_No, FIELD)                 \
    X(float, Ang_Shift, FIELD) X(const char*, ST, FIELD) X(const char*, I_Name, FIELD)             \
    X(const char*, J_Name, FIELD) X(int, ibs, FIELD) X(int, zbs, FIELD) X(float, Pi, FIELD)        \
    X(float, Qi, FIELD) X(float, Pj, FIELD) X(float, Qj, FIELD) X(float, Pm, FIELD)                \
    X(float, Qm, FIELD) X(unsigned int, q, FIELD) X(unsigned int, topflags, FIELD)                 \
    X(int, ZCtype, FIELD) X(float, R1, FIELD) X(float, X1, FIELD) X(float, R0, FIELD)              \
    X(float, X0, FIELD) X(float, Rm, FIELD) X(float, Xm, FIELD) X(float, Rate_MVA, FIELD)          \
    X(float, Up_Limit, FIELD) X(int, Mode_Ctrl, FIELD) X(int, Par_No, FIELD)                       \
    X(const char*, Bus_Ctrl, FIELD) X(int, Line_Ctrl, FIELD) X(float, Value_Ctrl, FIELD)           \
    X(float, Tk, FIELD) X(int, TapMax1, FIELD) X(int, TapMin1, FIELD) X(float, Vstep_Tap1, FIELD)  \
    X(float, V0_Tap1, FIELD) X(int, P0_Tap1, FIELD) X(int, Vpos_Tap1, FIELD)                       \
    X(int, TapMax2, FIELD) X(int, TapMin2, FIELD) X(float, Vstep_Tap2, FIELD)                      \
    X(float, V0_Tap2, FIELD) X(int, P0_Tap2, FIELD) X(int, Vpos_Tap2, FIELD)

// DC line: circuit and converter data, end sums, the fifty-two results, stability data.
#define DTSDB_DLN(X) X(const char*, id, KEY) X(int, ID_No, FIELD) X(const char*, Owner, FIELD)     \
    X(const char*, I_Name, FIELD) X(const char*, J_Name, FIELD) X(int, ibs, FIELD)                 \
    X(int, zbs, FIELD) X(unsigned int, q, FIELD) X(unsigned int, topflags, FIELD)                  \
    X(float, Rpi_Ohm, FIELD) X(float, Lpi_mH, FIELD) X(float, Rpj_Ohm, FIELD)                      \
    X(float, Lpj_mH, FIELD) X(float, Rl_Ohm, FIELD) X(float, Ll_mH, FIELD)                         \
    X(float, Rei_Ohm, FIELD) X(float, Rej_Ohm, FIELD) X(float, Lsi_mH, FIELD)                      \
    X(float, Lsj_mH, FIELD) X(int, OP_Mode, FIELD) X(float, Vdrate_kV, FIELD)                      \
    X(float, Vd1_kV, FIELD) X(float, Pd1_MW, FIELD) X(float, A1min_D, FIELD)                       \
    X(float, A10_D, FIELD) X(float, Gam1min_D, FIELD) X(float, Gam10_D, FIELD)                     \
    X(float, Vd2_kV, FIELD) X(float, Pd2_MW, FIELD) X(float, A2min_D, FIELD)                       \
    X(float, A20_D, FIELD) X(float, Gam2min_D, FIELD) X(float, Gam20_D, FIELD)                     \
    X(float, Vhi_kV, FIELD) X(float, Vli_kV, FIELD) X(int, I_Bridge, FIELD)                        \
    X(float, Qci_Mvar, FIELD) X(float, Sti_MVA, FIELD) X(float, Rti_Ohm, FIELD)                    \
    X(float, Xti_Perc, FIELD) X(float, Vtimax_kV, FIELD) X(float, Vtimin_kV, FIELD)                \
    X(int, I_Tap, FIELD) X(float, Vhj_kV, FIELD) X(float, Vlj_Kv, FIELD) X(int, J_Bridge, FIELD)   \
    X(float, Qcj_Mvar, FIELD) X(float, Stj_MVA, FIELD) X(float, Rtj_Ohm, FIELD)                    \
    X(float, Xtj_Perc, FIELD) X(float, Vtjmax_kV, FIELD) X(float, Vtjmin_kV, FIELD)                \
    X(int, J_Tap, FIELD) X(float, Pi, FIELD) X(float, Qi, FIELD) X(float, Ii, FIELD)               \
    X(float, Pj, FIELD) X(float, Qj, FIELD) X(float, Ij, FIELD) X(double, Id10, FIELD)             \
    X(double, Id20, FIELD) X(double, Vaci, FIELD) X(double, Vacj, FIELD) X(double, Pd1i, FIELD)    \
    X(double, Qd1i, FIELD) X(double, Vd10i, FIELD) X(double, Tk1i, FIELD) X(double, TTk1i, FIELD)  \
    X(double, A10r_D, FIELD) X(double, Pd1j, FIELD) X(double, Qd1j, FIELD)                         \
    X(double, Vd10j, FIELD) X(double, Tk1j, FIELD) X(double, TTk1j, FIELD) X(double, Pd2i, FIELD)  \
    X(double, Qd2i, FIELD) X(double, Vd20i, FIELD) X(double, Tk2i, FIELD) X(double, TTk2i, FIELD)  \
    X(double, A20r_D, FIELD) X(double, Pd2j, FIELD) X(double, Qd2j, FIELD)                         \
    X(double, Vd20j, FIELD) X(double, Tk2j, FIELD) X(double, TTk2j, FIELD) X(double, Vbi, FIELD)   \
    X(double, Vbj, FIELD) X(double, Vdb, FIELD) X(double, Idb, FIELD) X(double, Zdb, FIELD)        \
    X(double, Ldb, FIELD) X(double, Tkbi, FIELD) X(double, Tkbj, FIELD) X(double, Rpi, FIELD)      \
    X(double, Lpi, FIELD) X(double, Rpj, FIELD) X(double, Lpj, FIELD) X(double, Rl, FIELD)         \
    X(double, Ll, FIELD) X(double, Rei, FIELD) X(double, Rej, FIELD) X(double, Lsi, FIELD)         \
    X(double, Lsj, FIELD) X(double, Xci, FIELD) X(double, Xcj, FIELD) X(double, Tkimax, FIELD)     \
    X(double, Tkimin, FIELD) X(double, Tkjmax, FIELD) X(double, Tkjmin, FIELD)                     \
    X(double, Qcip, FIELD) X(double, Qcjp, FIELD) X(int, DC_Model, FIELD) X(int, reg_type, FIELD)  \
    X(int, reg_fon, FIELD) X(int, reg_par, FIELD) X(float, reg_set, FIELD)                         \
    X(float, Amax_D, FIELD) X(float, Amin_D, FIELD) X(int, Ireg_fon, FIELD)                        \
    X(int, Ireg_par, FIELD) X(float, Ireg_set, FIELD) X(int, Vreg_fon, FIELD)                      \
    X(int, Vreg_par, FIELD) X(float, Vreg_set, FIELD) X(int, Greg_fon, FIELD)                      \
    X(int, Greg_par, FIELD) X(float, Greg_set, FIELD) X(float, Bmax_D, FIELD)                      \
    X(float, Bmin_D, FIELD) X(float, Im_Percent, FIELD) X(float, Vlow_Perc, FIELD)                 \
    X(float, Idmax_kA, FIELD) X(float, Idmin_kA, FIELD) X(float, dKi_Perc, FIELD)                  \
    X(float, dKj_Perc, FIELD) X(float, dTi_s, FIELD) X(float, dTj_s, FIELD)                        \
    X(float, V_relay_Perc, FIELD) X(float, T_relay, FIELD) X(int, Type_fadc, FIELD)                \
    X(int, K_fadc, FIELD) X(float, Ts_fadc, FIELD) X(float, Te_fadc, FIELD) X(float, Tdo, FIELD)   \
    X(float, Tda, FIELD) X(float, Tdb, FIELD) X(float, Tdc, FIELD) X(int, N_rs, FIELD)             \
    X(float, V_rs_Perc, FIELD)

// Generator.
#define DTSDB_UN(X) X(const char*, id, KEY) X(const char*, Bus_Name, FIELD) X(int, ibs, FIELD)     \
    X(float, Pmax, FIELD) X(float, Qmax, FIELD) X(float, Pmin, FIELD) X(float, Qmin, FIELD)        \
    X(float, Pg, FIELD) X(float, Qg, FIELD) X(float, V0, FIELD) X(float, Angle, FIELD)             \
    X(int, Mode_Ctrl, FIELD) X(int, Par_Group, FIELD) X(const char*, Bus_Ctrl, FIELD)              \
    X(int, Line_Ctrl, FIELD) X(float, Value_Ctrl, FIELD) X(int, Gen_Model, FIELD)                  \
    X(int, Gen_Par, FIELD) X(int, AVR_Model, FIELD) X(int, AVR_Par, FIELD)                         \
    X(int, GOV_Model, FIELD) X(int, GOV_Par, FIELD) X(int, PSS_Model, FIELD)                       \
    X(int, PSS_Par, FIELD) X(float, Rate_MVA, FIELD) X(float, Rate_MW, FIELD)                      \
    X(float, Xdp, FIELD) X(float, Xdpp, FIELD) X(float, X2, FIELD) X(float, Tj, FIELD)             \
    X(unsigned int, q, FIELD) X(unsigned int, topflags, FIELD)

// Load.
#define DTSDB_LD(X) X(const char*, id, KEY) X(int, No_Load, FIELD)                                 \
    X(const char*, Bus_Name, FIELD) X(int, ibs, FIELD) X(unsigned int, q, FIELD)                   \
    X(unsigned int, topflags, FIELD) X(float, V0, FIELD) X(float, Angle, FIELD)                    \
    X(float, Pl, FIELD) X(float, Ql, FIELD) X(float, Pmax, FIELD) X(float, Qmax, FIELD)            \
    X(float, Pmin, FIELD) X(float, Qmin, FIELD) X(int, Mode_Ctrl, FIELD) X(int, Par_Group, FIELD)  \
    X(const char*, Bus_Ctrl, FIELD) X(int, Line_Ctrl, FIELD) X(float, Value_Ctrl, FIELD)           \
    X(int, Load_Model, FIELD) X(int, Load_Par, FIELD) X(int, Z_Percent, FIELD)

// Breaker or isolating switch.
#define DTSDB_CB(X) X(const char*, id, KEY) X(int, ID_No, FIELD) X(unsigned int, q, FIELD)         \
    X(const char*, I_Name, FIELD) X(const char*, J_Name, FIELD) X(unsigned int, topflags, FIELD)   \
    X(float, P, FIELD) X(float, Q, FIELD)

// Static var compensator; `Valid` lives in q as the bit SVC_OUTSERVICE, set when not 1.
#define DTSDB_SVC(X) X(const char*, id_name, KEY) X(int, Model, FIELD) X(int, Par_No, FIELD)       \
    X(float, X_Fixed, FIELD) X(unsigned int, q, FIELD)

#define DTSDB_NO_SLOTS
DTSDB_RECORD_CLASS(nd, DTSDB_NO_SLOTS, DTSDB_ND)
DTSDB_RECORD_CLASS(bs, DTSDB_NO_SLOTS, DTSDB_BS)
DTSDB_RECORD_CLASS(bus, LabelSlot Slot[2];, DTSDB_BUS)
DTSDB_RECORD_CLASS(kv, LabelSlot Slot[2];, DTSDB_KV)
DTSDB_RECORD_CLASS(r_kv_nd, DTSDB_NO_SLOTS, DTSDB_R_KV_ND)
DTSDB_RECORD_CLASS(ln, LabelSlot Slot[3];, DTSDB_LN)
DTSDB_RECORD_CLASS(cp, LabelSlot Slot[4];, DTSDB_CP)
DTSDB_RECORD_CLASS(xf, LabelSlot Slot[3];, DTSDB_XF)
DTSDB_RECORD_CLASS(dln, LabelSlot Slot[3];, DTSDB_DLN)
DTSDB_RECORD_CLASS(un, LabelSlot Slot[2];, DTSDB_UN)
DTSDB_RECORD_CLASS(ld, LabelSlot Slot[3];, DTSDB_LD)
DTSDB_RECORD_CLASS(cb, DTSDB_NO_SLOTS, DTSDB_CB)
DTSDB_RECORD_CLASS(svc, DTSDB_NO_SLOTS, DTSDB_SVC)

// clang-format on

} // namespace dtsdb
