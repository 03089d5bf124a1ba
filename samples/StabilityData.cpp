// What the synthetic network lacks for the save-back and stability benchmarks: the element
// families it does not generate, and the stability data of every element.

#include "SampleNetwork.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

namespace samples {
namespace {

bool runAll(QSqlDatabase* db, const QString& group, const std::initializer_list<const char*>& sql,
            QString& error)
{
    QSqlQuery q(*db);
    for (const char* text : sql) {
        const QString statement = QString::fromLatin1(text).replace("%GROUP%", group);
        if (!q.exec(statement)) {
            error = statement + ": " + q.lastError().text();
            return false;
        }
    }
    return true;
}

} // namespace

bool AddOtherFamilies(QSqlDatabase* db, const QString& group, QString& error)
{
    return runAll(
        db, group,
        {"INSERT INTO CDB_SCAPREABAK(GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, I_Break, "
         "J_Break, Unit, R1, X1, Owner) SELECT GrpName, CONCAT('S', ID_Name), 1, I_Name, J_Name, "
         "2, 1, 1, Unit, 0, -X1/2, Owner FROM CDB_ACLINEBAK WHERE GrpName='%GROUP%' AND "
         "MOD(id,20)=0",
         "INSERT INTO CDB_SHIFTBAK(GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, Unit, R1, X1, "
         "Gm, Bm, Tk, Ang_Shift) SELECT GrpName, CONCAT('P', ID_Name), 1, I_Name, J_Name, 2, Unit, "
         "R1, X1, Gm, Bm, Tk, 5 FROM CDB_TRANS_2WBAK WHERE GrpName='%GROUP%' AND MOD(id,4)=0",
         "INSERT INTO CDB_TRANS_3WBAK(GrpName, ID_Name, Valid, Name_N, Name_1, Name_2, Name_3, "
         "ID_No1, ID_No2, ID_No3, Break_1, Break_2, Break_3, Unit, R1, X1, R2, X2, R3, X3, Gm, "
         "Bm, Tk1, Tk2, Tk3) SELECT '%GROUP%', CONCAT('T3_', a.id), 1, a.Node_Name, a.Node_Name, "
         "b.Node_Name, c.Node_Name, 1, 1, 1, 1, 1, 1, MOD(a.id,100)=50, IF(MOD(a.id,100)=50, "
         "0.01, 4.84), IF(MOD(a.id,100)=50, 0.1, 48.4), IF(MOD(a.id,100)=50, 0.02, 9.68), "
         "IF(MOD(a.id,100)=50, 0.2, 96.8), IF(MOD(a.id,100)=50, 0.03, 14.52), IF(MOD(a.id,100)=50, "
         "0.3, 145.2), 0, 0, 1, 1, 1 FROM CDB_NODEBAK a, CDB_NODEBAK b, CDB_NODEBAK c WHERE "
         "b.id=a.id+1 AND c.id=a.id+2 AND MOD(a.id,50)=0",
         "INSERT INTO CDB_DCLINEBAK(GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, Owner, "
         "OP_Mode, "
         "Vd1_kV, Pd1_MW) SELECT '%GROUP%', CONCAT('DC', a.id), 1, a.Node_Name, b.Node_Name, 1, 1, "
         "1, 500, 100 FROM CDB_NODEBAK a, CDB_NODEBAK b WHERE b.id=a.id+3 AND MOD(a.id,200)=0"},
        error);
}

bool AddStabilityData(QSqlDatabase* db, const QString& group, QString& error)
{
    return runAll(
        db, group,
        {// Zero-sequence impedances in the row's own unit: three times the positive for lines.
         "UPDATE CDB_ACLINEBAK SET R0=3*R1, X0=3*X1, B0_Half=0.6*B1_Half WHERE "
         "GrpName='%GROUP%'",
         "UPDATE CDB_SCAPREABAK SET R0=R1, X0=X1 WHERE GrpName='%GROUP%'",
         "UPDATE CDB_PCAPREABAK SET R0=R1, X0=X1 WHERE GrpName='%GROUP%'",
         // Every fourth transformer's zero-sequence side is not connected.
         "UPDATE CDB_TRANS_2WBAK SET Zero_Conn=ELT(1+MOD(id,4),'IG','JG','IJ','NO'), R0=R1, "
         "X0=0.9*X1 WHERE GrpName='%GROUP%'",
         "UPDATE CDB_SHIFTBAK SET Zero_Conn=ELT(1+MOD(id,4),'IG','JG','IJ','NO'), R0=R1, X0=0.9*X1 "
         "WHERE GrpName='%GROUP%'",
         "UPDATE CDB_TRANS_3WBAK SET Zero_Conn1='IG', Zero_Conn2=IF(MOD(id,3)=0,'NO','JG'), "
         "Zero_Conn3='IJ', R10=R1, X10=X1, R20=R2, X20=X2, R30=R3, X30=X3 WHERE "
         "GrpName='%GROUP%'",
         "UPDATE CDB_DCLINEBAK SET DC_Model=1, reg_type=1, reg_fon=1, reg_par=1, reg_set=1.0, "
         "Amax_D=150, Amin_D=5, Ireg_fon=1, Ireg_par=1, Ireg_set=1.0, Vreg_fon=1, Vreg_par=1, "
         "Vreg_set=1.0, Greg_fon=1, Greg_par=1, Greg_set=18, Bmax_D=90, Bmin_D=10, "
         "Im_Percent=10, Vlow_Perc=70, Idmax_kA=3, Idmin_kA=0.3, dKi_Perc=1.25, dKj_Perc=1.25, "
         "dTi_s=5, dTj_s=5, V_relay_Perc=60, T_relay=0.1, Type_fadc=1, K_fadc=2, Ts_fadc=0.01, "
         "Te_fadc=0.02, Tdo=0.1, Tda=0.2, Tdb=0.3, Tdc=0.4, N_rs=3, V_rs_Perc=70 WHERE "
         "GrpName='%GROUP%'",
         // Machine, exciter, governor and stabiliser models; ratings from the machine's Pmax.
         "UPDATE CDB_GENERATBAK SET Gen_Model=6, Gen_Par=1+MOD(id,10), AVR_Model=12, "
         "AVR_Par=1+MOD(id,7), GOV_Model=3, GOV_Par=1+MOD(id,5), PSS_Model=IF(MOD(id,2)=0,0,1), "
         "PSS_Par=1, Rate_MVA=GREATEST(ABS(Pmax),1)*1.25, Rate_MW=GREATEST(ABS(Pmax),1), "
         "Xdp=0.3, Xdpp=0.2, X2=0.2, Tj=8 WHERE GrpName='%GROUP%'",
         "UPDATE CDB_LOADBAK SET Load_Model=1+MOD(id,3), Load_Par=1, Z_Percent=30 WHERE "
         "GrpName='%GROUP%'",
         // A static var compensator on every hundredth node, every other one in ohms.
         "INSERT INTO CDB_SVCBAK(GrpName, ID_Name, Valid, Set_Bus, Ctrl_Bus, Unit, Model, Par_No, "
         "X_Fixed) SELECT '%GROUP%', CONCAT('V', id), 1, Node_Name, Node_Name, MOD(id,200)=0, 1, "
         "1, IF(MOD(id,200)=0, 0.5, 1000) FROM CDB_NODEBAK WHERE MOD(id,100)=0"},
        error);
}

} // namespace samples
