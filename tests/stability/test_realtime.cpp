// A stability job's values laid over the network records of the real-time database.

#include "DbTest.h"
#include "RecordAccess.h"
#include "records/RecordFlags.h"
#include "stability/jobdata/STCalDataToRTDB.h"

#include <sstream>

using namespace dtsdb;
using testsupport::DbTest;
using testsupport::Fetch;

namespace {

constexpr int kJob = 7;

// Values in the given order, each followed by a blank; an int as an integer (no fraction),
// so that a swap or an int/real mix-up shows.
std::string Joined(std::initializer_list<double> values)
{
    std::ostringstream s;
    for (double v : values) {
        s << v << ' ';
    }
    return s.str();
}

} // namespace

// Job 7's stability tables in the SQL server and a real-time database of records, per test.
class Realtime : public DbTest
{
protected:
    void SetUp() override
    {
        DbTest::SetUp();
        ASSERT_TRUE(m_rtdb.open("stability"));
        Truncate({"S2_7", "S3_7", "S4_7", "S5_7", "S6_7", "S7_7"});
        // The records of a small network as the load-flow import leaves them.
        ln line;
        line.id = "L1_ac";
        line.R1 = 0.01f;
        line.q = LN_INJOB;
        testsupport::Put(line);
        testsupport::Put<ln>("S1_sc");
        for (const char* id : {"C1", "C2"}) {
            testsupport::Put<cp>(id);
        }
        for (const char* id : {"T1_2w", "P1_sf", "W1_3w1", "W1_3w3"}) {
            testsupport::Put<xf>(id);
        }
        xf w2;
        w2.id = "W1_3w2";
        w2.ZCtype = 7;
        w2.R0 = 9;
        w2.X0 = 9;
        testsupport::Put(w2);
        testsupport::Put<dln>("DC1");
        testsupport::Put<un>("G1");
        testsupport::Put<ld>("D1");
        for (const char* name : {"V0", "V1", "V2", "V3"}) {
            svc r;
            r.id_name = name;
            r.q = std::string(name) == "V0" ? 1 | 2 | 4 : 0; // 2: out of service
            testsupport::Put(r);
        }
        m_rtdb.commit();
        feedback().clear();
    }
    void TearDown() override
    {
        m_rtdb.rollback();
        m_rtdb.close();
    }
    dbDatabase m_rtdb;
};

TEST_F(Realtime, StabilityValuesGoIntoTheRecordsFoundByTheirIds)
{
    Exec("INSERT INTO S2_7(ID_Name, R0, X0, B0_Half, Ntype) VALUES ('L1', 0.25, 0.75, 0.02, 1), "
         "('S1', 0.001, -0.2, 0, 2), ('C1', 0.5, 20, 9, 3), ('C2', 0, 5, 0, 4), "
         "('LX', 1, 1, 1, 1)");
    Exec("INSERT INTO S3_7(ID_Name, ZCtype, R0, X0, Ntype) VALUES ('T1', 1, 0.002, 0.04, 1), "
         "('P1', 3, 0.003, 0.06, 2), ('W1', 1, 0.01, 0.1, 31), ('W1', 3, 0.02, 0.2, 33)");
    Exec("INSERT INTO S4_7(ID_Name, DC_Model, reg_type, reg_fon, reg_par, reg_set, Amax_D, Amin_D, "
         "Ireg_fon, Ireg_par, Ireg_set, Vreg_fon, Vreg_par, Vreg_set, Greg_fon, Greg_par, "
         "Greg_set, Bmax_D, Bmin_D, Im_Percent, Vlow_Perc, Idmax_kA, Idmin_kA, dKi_Perc, "
         "dKj_Perc, dTi_s, dTj_s, V_relay_Perc, T_relay, Type_fadc, K_fadc, Ts_fadc, Te_fadc, "
         "Tdo, Tda, Tdb, Tdc, N_rs, V_rs_Perc) VALUES ('DC1', 1, 2, 3, 4, 5.5, 6.5, 7.5, 8, 9, "
         "10.5, 11, 12, 13.5, 14, 15, 16.5, 17.5, 18.5, 19.5, 20.5, 21.5, 22.5, 23.5, 24.5, 25.5, "
         "26.5, 27.5, 28.5, 29, 30, 31.5, 32.5, 33.5, 34.5, 35.5, 36.5, 37, 38.5)");
    Exec("INSERT INTO S5_7(ID_Name, Gen_Model, Gen_Par, AVR_Model, AVR_Par, GOV_Model, GOV_Par, "
         "PSS_Model, PSS_Par, Rate_MVA, Rate_MW, Xdp, Xdpp, X2, Tj) VALUES ('G1', 6, 1, 12, 2, 3, "
         "4, 5, 7, 300, 270, 0.3, 0.2, 0.25, 8), ('G9', 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1)");
    Exec("INSERT INTO S6_7(ID_Name, Load_Model, Load_Par, Z_Percent) VALUES ('D1', 3, 7, 12.7)");
    Exec("INSERT INTO S7_7(ID_Name, Model, Par_No, X_Fixed, Valid) VALUES ('V0', 2, 5, 10, 1), "
         "('V1', 1, 1, 0.5, 0), ('V2', 1, 1, 0.5, 2), ('V3', 1, 1, 0.5, -1), ('V4', 1, 1, 1, 1)");

    CSTCalDataToRTDB job(kJob, db());
    EXPECT_EQ(job.ImportSDataToRTDB(), 0) << "missing records cost messages, not failure";

    // Lines and series capacitors by id, the load-flow fields kept (R1, the flags 16); shunts in
    // cp under the bare name, Ntype 3 and any other alike, no B0_Half there; transformers' ZCtype,
    // R0, X0, the winding without a row keeping what it had.
    const ln l = Fetch<ln>("L1_ac");
    const cp c1 = Fetch<cp>("C1");
    auto zrx = [](const char* id) {
        const xf x = Fetch<xf>(id);
        return Joined({0. + x.ZCtype, x.R0, x.X0});
    };
    EXPECT_EQ((std::vector<std::string>{Joined({l.R0, l.X0, l.B0_Half, l.R1, 0. + l.q}),
                                        Joined({Fetch<ln>("S1_sc").X0}),
                                        Joined({c1.R0, c1.X0, Fetch<cp>("C2").X0}), zrx("T1_2w"),
                                        zrx("P1_sf"), zrx("W1_3w1"), zrx("W1_3w2"), zrx("W1_3w3")}),
              (std::vector<std::string>{"0.25 0.75 0.02 0.01 16 ", "-0.2 ", "0.5 20 5 ",
                                        "1 0.002 0.04 ", "3 0.003 0.06 ", "1 0.01 0.1 ", "7 9 9 ",
                                        "3 0.02 0.2 "}));

    // The DC line's 38 fields in order, the generator's 14; the load's Z_Percent cut, not
    // rounded to 13.
    const dln d = Fetch<dln>("DC1");
    EXPECT_EQ(Joined({0. + d.DC_Model,  0. + d.reg_type, 0. + d.reg_fon,      0. + d.reg_par,
                      0. + d.reg_set,   0. + d.Amax_D,   0. + d.Amin_D,       0. + d.Ireg_fon,
                      0. + d.Ireg_par,  0. + d.Ireg_set, 0. + d.Vreg_fon,     0. + d.Vreg_par,
                      0. + d.Vreg_set,  0. + d.Greg_fon, 0. + d.Greg_par,     0. + d.Greg_set,
                      0. + d.Bmax_D,    0. + d.Bmin_D,   0. + d.Im_Percent,   0. + d.Vlow_Perc,
                      0. + d.Idmax_kA,  0. + d.Idmin_kA, 0. + d.dKi_Perc,     0. + d.dKj_Perc,
                      0. + d.dTi_s,     0. + d.dTj_s,    0. + d.V_relay_Perc, 0. + d.T_relay,
                      0. + d.Type_fadc, 0. + d.K_fadc,   0. + d.Ts_fadc,      0. + d.Te_fadc,
                      0. + d.Tdo,       0. + d.Tda,      0. + d.Tdb,          0. + d.Tdc,
                      0. + d.N_rs,      0. + d.V_rs_Perc}),
              "1 2 3 4 5.5 6.5 7.5 8 9 10.5 11 12 13.5 14 15 16.5 17.5 18.5 19.5 20.5 21.5 22.5 "
              "23.5 24.5 25.5 26.5 27.5 28.5 29 30 31.5 32.5 33.5 34.5 35.5 36.5 37 38.5 ");
    const un g = Fetch<un>("G1");
    const ld load = Fetch<ld>("D1");
    EXPECT_EQ(Joined({0. + g.Gen_Model, 0. + g.Gen_Par, 0. + g.AVR_Model, 0. + g.AVR_Par,
                      0. + g.GOV_Model, 0. + g.GOV_Par, 0. + g.PSS_Model, 0. + g.PSS_Par,
                      g.Rate_MVA, g.Rate_MW, g.Xdp, g.Xdpp, g.X2, g.Tj, 0. + load.Load_Model,
                      0. + load.Load_Par, 0. + load.Z_Percent}),
              "6 1 12 2 3 4 5 7 300 270 0.3 0.2 0.25 8 3 7 12 ");

    // V0 to V3 in turn: Valid 1 clears the out-of-service bit (2) and leaves the others; 0,
    // 2 and -1 set it.
    std::vector<std::string> svcs;
    dbCursor<svc> s;
    ASSERT_EQ(s.select(), 4);
    do {
        svcs.push_back(Joined({0. + s->q, 0. + s->Model, 0. + s->Par_No, s->X_Fixed}));
    } while (s.next());
    EXPECT_EQ(svcs, (std::vector<std::string>{"5 2 5 10 ", "2 1 1 0.5 ", "2 1 1 0.5 ",
                                              "2 1 1 0.5 "}));

    // One message per missing element, with the name as the job table has it.
    EXPECT_EQ(feedback().texts(2),
              (std::vector<std::string>{"实时数据库中没有id为'LX'的交流线或串联电容电抗器数据！",
                                        "实时数据库中没有id为'G9'的发电机数据！",
                                        "实时数据库中没有id为'V4'的SVC数据！"}));

    // A job without stability tables reads as empty: nothing changes, nothing is said.
    feedback().clear();
    EXPECT_EQ(CSTCalDataToRTDB(3, db()).ImportSDataToRTDB(), 0);
    EXPECT_TRUE(feedback().messages().empty()) << "job 7's tables would report LX, G9 and V4";
}
