#include "StabilityNetwork.h"

#include "TableSnapshots.h"

#include <QSqlQuery>

namespace sttest {

void StabilityTest::SetUp()
{
    DbTest::SetUp();
    if (HasFatalFailure() || IsSkipped()) {
        return;
    }
    // What a failed save-back leaves on the library's connection, and TLoad, which it
    // leaves in the database.
    QSqlQuery(*db()).exec("DROP TEMPORARY TABLE IF EXISTS Tac, TPCR, TSCR, T2W, TShift, T3W, "
                          "Tdc, TGen");
    Exec("DROP TABLE IF EXISTS TLoad, tmp");
    // Every working copy, and the cases and job tables the tests write.
    const QStringList copies = testsupport::TablesLike(checker(), "CDB\\_%BAK");
    Truncate({copies.begin(), copies.end()});
    Truncate(
        {"LF_CASE", "ST_CASE", "L1_5", "L1_7", "S2_7", "S3_7", "S4_7", "S5_7", "S6_7", "S7_7"});
    Exec("INSERT INTO CDB_SBBAK(Base_Mva) VALUES (100)");
    Exec("INSERT INTO CDB_BUSBAK(Bus_Name, Base_kV) VALUES ('B1', 220), ('B3', 110), "
         "('B4', 110), ('B5', 220)");
    Exec("INSERT INTO CDB_NODEBAK(Node_Name, Bus_Name) VALUES ('N1', 'B1'), ('N2', 'B1'), "
         "('N3', 'B3'), ('N4', 'B4'), ('NS', 'B5')");
    Exec("INSERT INTO CDB_SCHEMEINFBAK(ID, SchName) VALUES (1, 'SCH'), (2, 'OTHER')");
    Exec("INSERT INTO CDB_SCHEMECONTBAK(IDSch, GrpName, Nlever) VALUES (1, 'G', 1), "
         "(2, 'OUT', 1)");
    Exec("INSERT INTO CDB_DATAGROUPBAK(GrpName) VALUES ('G'), ('OUT')");
    Exec("INSERT INTO LF_CASE(Case_No, SCHEME) VALUES (5, 'SCH'), (6, 'OTHER')");
    Exec("INSERT INTO L1_5(Case_No, Node_Name, Base_kV) VALUES (5, 'N1', 220), (5, 'N2', 220), "
         "(5, 'N3', 110), (5, 'N4', 110), (5, 'NS', 220)");
    Exec("INSERT INTO L1_7(Case_No, Node_Name, Base_kV) SELECT 7, Node_Name, 1 FROM L1_5");

    Exec("INSERT INTO CDB_ACLINEBAK(GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, I_Break, "
         "J_Break, Unit, R1, X1, B1_Half, R0, X0, B0_Half, Owner, Rate_Ka, Type) VALUES "
         "('G', 'L1', 1, 'N1', 'N2', 1, 1, 1, 1, 0.01, 0.1, 0.05, 0.25, 0.75, 0.02, 1, 1.2, "
         "'LGJ'), "
         "('G', 'L2', 1, 'N1', 'N3', 2, 1, 0, 0, 4.84, 48.4, 100, 4.84, 48.4, 100, 0, 0.8, ''), "
         "('G', 'L3', 1, 'NX', 'N2', 1, 1, 1, 0, 1, 1, 1, 1, 1, 1, 1, 0, ''), "
         "('OUT', 'L4', 1, 'N1', 'N2', 1, 1, 1, 1, 9, 9, 9, 9, 9, 9, 1, 0, '')");
    Exec("INSERT INTO CDB_SCAPREABAK(GrpName, ID_Name, PhyPos, Valid, I_Name, J_Name, ID_No, "
         "Unit, R1, X1, R0, X0, Owner, Rate_Capa) VALUES "
         "('G', 'S1', 3, 1, 'N1', 'N2', 1, 0, 0.242, -48.4, 0.484, -96.8, 1, 50)");
    Exec("INSERT INTO CDB_PCAPREABAK(GrpName, ID_Name, Valid, Node_Name, ID_No, Unit, R1, X1, "
         "R0, X0, Rate_Capa) VALUES ('G', 'C1', 1, 'N3', 1, 0, 12.1, 1210, 0, 2420, 30)");
    Exec("INSERT INTO CDB_TRANS_2WBAK(GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, Unit, R1, "
         "X1, Tk, Zero_Conn, R0, X0) VALUES "
         "('G', 'T1', 1, 'N1', 'N3', 1, 1, 0.001, 0.05, 1.0, 'IG', 0.002, 0.04), "
         "('G', 'T2', 1, 'N1', 'N3', 2, 1, 0.001, 0.05, 1.0, 'NO', 0.5, 0.5), "
         "('G', 'T3', 1, 'N1', 'N4', 1, 0, 0.484, 24.2, 1.0, 'JG', 0.968, 19.36)");
    Exec("INSERT INTO CDB_SHIFTBAK(GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, Unit, R1, X1, "
         "Tk, Ang_Shift, Zero_Conn, R0, X0) VALUES "
         "('G', 'P1', 1, 'N2', 'N3', 1, 1, 0.001, 0.05, 1.0, 5, 'ZZ', 0.003, 0.06), "
         "('G', 'P2', 1, 'N2', 'N4', 1, 0, 0.484, 24.2, 1.0, 10, 'IJ', 0.484, 9.68)");
    Exec("INSERT INTO CDB_TRANS_3WBAK(GrpName, ID_Name, Valid, Name_N, Name_1, Name_2, Name_3, "
         "ID_No1, ID_No2, ID_No3, Unit, R1, X1, Zero_Conn1, R10, X10, Zero_Conn2, R20, X20, "
         "Zero_Conn3, R30, X30) VALUES "
         "('G', 'W1', 1, 'NS', 'N1', 'N3', 'N4', 1, 2, 3, 0, 4.84, 48.4, 'IG', 4.84, 48.4, 'NO', "
         "1, 1, 'IJ', 9.68, 96.8), "
         "('G', 'W2', 1, 'NS', 'N1', 'N3', 'N4', 1, 1, 1, 1, 0.01, 0.1, 'NO', 0, 0, 'JG', 0.01, "
         "0.02, 'NO', 0, 0), "
         "('G', 'W3', 1, 'NS', 'N2', 'N3', 'N4', 4, 5, 6, 1, 0.01, 0.1, 'IG', 0.01, 0.1, 'IG', "
         "0.02, 0.2, 'IG', 0.03, 0.3)");
    Exec("INSERT INTO CDB_DCLINEBAK(GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, Owner, "
         "Rpi_Ohm, OP_Mode, DC_Model, reg_type, reg_set, Ireg_fon, Bmin_D, T_relay, Type_fadc, "
         "K_fadc, Ts_fadc, Tdo, Tdc, N_rs, V_rs_Perc) VALUES ('G', 'DC1', 1, 'N1', 'N4', 1, 1, "
         "2.5, 3, 2, 1, 1.5, 7, -5, 0.2, 1, 3, 0.01, 0.5, 0.125, 4, 80)");
    Exec("INSERT INTO CDB_GENERATBAK(GrpName, ID_Name, PhyPos, Valid, Node_Name, Mode_Ctrl, Unit, "
         "Pg, Qg, V0, Gen_Model, Gen_Par, AVR_Model, AVR_Par, GOV_Model, GOV_Par, PSS_Model, "
         "PSS_Par, Rate_MVA, Rate_MW, Xdp, Xdpp, X2, Tj) VALUES ('G', 'G1', 4, 1, 'N1', 1, 1, 1.0, "
         "0.2, 1.05, 6, 1, 12, 2, 3, 4, 5, 6, 300, 270, 0.3, 0.2, 0.25, 8)");
    Exec("INSERT INTO CDB_LOADBAK(GrpName, ID_Name, Valid, Node_Name, No_Load, Unit, Pl, Ql, "
         "Load_Model, Load_Par, Z_Percent) VALUES ('G', 'D1', 1, 'N3', 2, 1, 0.5, 0.1, 3, 7, "
         "12.7)");
    Exec("INSERT INTO CDB_SVCBAK(GrpName, ID_Name, Valid, Set_Bus, Ctrl_Bus, Unit, Model, Par_No, "
         "X_Fixed) VALUES ('G', 'V1', 1, 'N3', 'N4', 0, 2, 5, 1210), "
         "('G', 'V2', 0, 'N1', 'N1', 1, 1, 1, 0.5)");
    feedback().clear();
}

std::string StabilityTest::SentStartingWith(const std::string& head)
{
    for (const std::string& s : SentStatements()) {
        if (s.rfind(head, 0) == 0) {
            return s;
        }
    }
    return std::string();
}

} // namespace sttest
