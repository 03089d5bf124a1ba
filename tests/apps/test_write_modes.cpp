// The batched write mode against the design's statements: the same job and the same records
// written both ways into two databases of one network must leave every table the same, with
// the same messages, boxes and results, faults included.

#include "DbTest.h"
#include "RecordBuilder.h"
#include "SampleNetwork.h"
#include "TableSnapshots.h"
#include "loadflow/jobdata/LFCalDataTransfer.h"
#include "loadflow/realtime/LFCalDataToRTDB.h"
#include "loadflow/results/LFResultDataTransfer.h"
#include "records/NetworkRecords.h"
#include "records/RecordFlags.h"

#include <functional>
#include <limits>

using namespace dtsdb;

namespace {

template <class T, class Change> void ChangeAll(Change change)
{
    dbCursor<T> c(dbCursorForUpdate);
    int i = 0;
    if (c.select() > 0) {
        do {
            change(*c, i++);
            c.update();
        } while (c.next());
    }
}

// Values whose "%f" or "%12.9f" text lies on a tie or rounds a negative to zero, and
// flags that put records out of service, open their ends and take them out of topology.
float Tricky(int i)
{
    return float((i % 97) * 0.0078125 - 0.37 + (i % 5 == 0 ? -1e-9 : 0));
}

void Perturb()
{
    ChangeAll<bs>([](bs& r, int i) {
        r.V = 1 + (i % 13) * 0.0009765625;
        r.Angle = -(i % 29) * 0.0078125;
    });
    ChangeAll<ln>([](ln& r, int i) {
        r.Pi = Tricky(i), r.Qi = Tricky(i + 1), r.Pj = -Tricky(i + 2), r.Qci = Tricky(i + 3);
        r.q ^= (i % 7 == 0 ? LN_OUTSERVICE : 0u) | (i % 5 == 1 ? LN_IOPEN : 0u) |
               (i % 6 == 2 ? LN_JOPEN : 0u);
        r.topflags |= (i % 11 == 0 ? LN_TOP_INVALID : 0u);
    });
    ChangeAll<xf>([](xf& r, int i) {
        r.Pi = Tricky(i), r.Pj = Tricky(i + 4), r.Tk = 1 + Tricky(i) / 8;
        r.q ^= (i % 9 == 0 ? XF_OUTSERVICE : 0u);
        r.topflags |= (i % 4 == 3 ? XF_TOP_INVALID : 0u);
    });
    ChangeAll<un>([](un& r, int i) {
        r.Pg = Tricky(i), r.Qg = Tricky(i + 7), r.V0 = 1 + Tricky(i) / 4, r.Angle = Tricky(i);
        r.q ^= (i % 3 == 2 ? UN_OUTSERVICE : 0u);
    });
    ChangeAll<ld>([](ld& r, int i) {
        r.Pl = Tricky(i + 1), r.Ql = -Tricky(i), r.Angle = Tricky(i + 3);
        r.q ^= (i % 4 == 1 ? LD_OUTSERVICE : 0u);
    });
    ChangeAll<cb>([](cb& r, int i) {
        r.q |= CB_TESTED | (i % 3 == 0 ? CB_OPEN : 0u);
        r.P = Tricky(i);
    });
    ChangeAll<dln>([](dln& r, int i) { r.Id10 = Tricky(i), r.q ^= (i % 2 ? DLN_OUTSERVICE : 0u); });
}

// Records the statements must treat as the design does: two that name one job row (the
// last wins, a trailing blank and an upper-case suffix included), a name of the longest
// Chinese text its column holds, and one with a quote and a backslash.
void AddNamingRecords()
{
    for (const char* id : {"G1", "G2 ", "名字名字名字名字名字", "O'K\\9"}) {
        un g;
        g.id = id;
        g.Pg = id[0] == 'G' ? 7.25f : 0.5f;
        EXPECT_TRUE(g.dbDescriptor.getDatabase()->insertRecord(&un::dbDescriptor, nullptr, &g));
    }
    dbCursor<ln> first;
    dbQuery q;
    q = "lntype=", 1;
    EXPECT_GT(first.select(q), 0);
    const QByteArray id = QByteArray(first->id).chopped(3) + "_AC";
    ln l;
    l.id = id.constData();
    l.lntype = 1;
    l.q = LN_JOPEN;
    EXPECT_TRUE(l.dbDescriptor.getDatabase()->insertRecord(&ln::dbDescriptor, nullptr, &l));
}

// One network in two databases, extracted into job 0 in each; the records built from the
// first. Job rows for the naming records stand in both.
struct TwoCopies
{
    dbserver::ScratchDatabase perRecord{QStringLiteral("wmodes")};
    dbserver::ScratchDatabase batched{QStringLiteral("wmodes")};
    dbDatabase rtdb;

    // A sample file's network, or the synthetic one with every other family.
    void Prepare(const std::string& file)
    {
        const bool synthetic = file == "synthetic";
        auto net = synthetic ? samples::MakeSyntheticNetwork(10000) : samples::Network();
        const QString path = CALCDATA_SAMPLES_DIR "/" + QString::fromStdString(file);
        QString error;
        ASSERT_TRUE(synthetic || samples::ReadNetworkJson(path, net, error)) << error.toStdString();
        ASSERT_TRUE(perRecord.ok() && batched.ok() && rtdb.open("wmodes"));
        for (dbserver::ScratchDatabase* s : {&perRecord, &batched}) {
            char scheme[] = "S";
            ASSERT_TRUE(samples::WriteNetworkToBaseDb(s->db(), net, "G", "S", error) &&
                        (!synthetic || samples::AddOtherFamilies(s->db(), "G", error)))
                << error.toStdString();
            ASSERT_EQ(CLFCalDataTransfer(0, scheme, s->db(), nullptr).ImportLDataFromBaseDB(), 0);
            ASSERT_TRUE(s->exec("INSERT INTO L5_0 (ID_Name, Valid) VALUES ('名字名字名字名字名字', "
                                "1), ('O''K\\\\9', 1)"));
        }
        demo::RecordCounts counts;
        ASSERT_TRUE(demo::BuildNetworkRecords(perRecord.db(), 0, &rtdb, counts, error));
        ASSERT_EQ(CLFCalDataToRTDB(0, perRecord.db()).ImportLDataToRTDB(), 0);
        Perturb();
        AddNamingRecords();
        rtdb.commit();
    }

    // How many statements of each kind the batched copy's connection has run, from the
    // session's counters: loads, single-table updates, multi-table updates, inserts.
    std::vector<long long> Statements()
    {
        std::vector<long long> n;
        for (const char* kind : {"Com_load", "Com_update", "Com_update_multi", "Com_insert"}) {
            QSqlQuery q(*batched.db());
            q.exec(QString("SHOW SESSION STATUS LIKE '%1'").arg(kind));
            n.push_back(q.next() ? q.value(1).toLongLong() : -1);
        }
        return n;
    }

    // `write(db, mode)` on each copy in its mode; what each showed and returned must agree.
    // Gives what the batched run showed: messages as "level text", boxes as "caption: text";
    // Statements() counts the statements it ran.
    std::vector<std::string>
    WriteBoth(const std::function<int(QSqlDatabase*, RecordWriteMode)>& write)
    {
        std::vector<std::string> shown[2];
        int rc[2];
        for (int k = 0; k < 2; ++k) {
            testsupport::FeedbackRecorder::instance().clear();
            testsupport::BoxRecorder::instance().clear();
            if (k) {
                EXPECT_TRUE(batched.exec("FLUSH STATUS")); // the session's counters from 0
            }
            rc[k] = write(k ? batched.db() : perRecord.db(),
                          k ? RecordWriteMode::Batched : RecordWriteMode::PerRecord);
            shown[k] = testsupport::Texts(testsupport::FeedbackRecorder::instance().messages());
            for (const testsupport::Box& b : testsupport::BoxRecorder::instance().boxes()) {
                shown[k].push_back((b.caption + ": " + b.text).toStdString());
            }
        }
        EXPECT_EQ(rc[1], rc[0]);
        EXPECT_EQ(shown[1], shown[0]);
        return shown[1];
    }
};

int UpdateBack(QSqlDatabase* db, RecordWriteMode mode)
{
    CLFCalDataToRTDB job(0, db);
    job.SetWriteMode(mode);
    return job.UpdateLDataFromRTDB();
}

int WriteResults(QSqlDatabase* db, RecordWriteMode mode, bool optimal)
{
    dbDatabase* rtdb = cb::dbDescriptor.getDatabase();
    CLFResultDataTransfer results(optimal ? 2 : 1, db, rtdb, optimal, 0);
    results.SetWriteMode(mode);
    const int rc = results.ImportRTDBDataToLFResultDB();
    rtdb->rollback(); // the switch flows it wrote, so that the next run starts alike
    return rc;
}

} // namespace

class WriteModes : public testsupport::DbTest, public ::testing::WithParamInterface<const char*>
{
protected:
    static void ExpectSameTables(TwoCopies& copies)
    {
        const QStringList tables = testsupport::TablesLike(*copies.perRecord.db(), "%");
        ASSERT_EQ(testsupport::TablesLike(*copies.batched.db(), "%"), tables);
        EXPECT_EQ(testsupport::Checksums(*copies.batched.db(), tables),
                  testsupport::Checksums(*copies.perRecord.db(), tables));
    }
};

// The IEEE 30-bus case goes by inserts, as on a server that refuses local loads.
TEST_P(WriteModes, BatchedWritesLeaveEveryTableAsTheStatementsDo)
{
    const std::string name = GetParam();
    TwoCopies copies;
    ASSERT_NO_FATAL_FAILURE(copies.Prepare(name));
    // The batched runs went in bulk: one update per family of the way back (no statement of
    // a single table, so no family fell back on its statements), and the results by local
    // loads without an insert statement, or by inserts without a load.
    const bool local = name != "ieee30.json";
    CBulkLoad::AllowLocalLoad(copies.batched.db(), local);
    copies.WriteBoth(UpdateBack);
    std::vector<long long> sent = copies.Statements();
    EXPECT_EQ(sent[1], 0);
    EXPECT_EQ(sent[2], 6);
    EXPECT_EQ(local ? sent[3] : sent[0], 0);
    copies.WriteBoth(
        [](QSqlDatabase* db, RecordWriteMode m) { return WriteResults(db, m, false); });
    sent = copies.Statements();
    EXPECT_EQ(sent[1] + sent[2], 0);
    EXPECT_EQ(local ? sent[3] : sent[0], 0);
    EXPECT_GT(local ? sent[0] : sent[3], 0);
    copies.WriteBoth([](QSqlDatabase* db, RecordWriteMode m) { return WriteResults(db, m, true); });
    ExpectSameTables(copies);
}

INSTANTIATE_TEST_SUITE_P(Networks, WriteModes,
                         ::testing::Values("ieee14.json", "ieee30.json", "features.json",
                                           "synthetic"),
                         [](const auto& info) {
                             return QString(info.param).section('.', 0, 0).toStdString();
                         });

// A family whose statement fails: a table that is not there, or a generator whose power is
// not finite, which no statement can carry. Both modes leave, show and return the same, and
// what the statements leave stands as derived by hand.
TEST_F(WriteModes, FailingFamiliesEndAsTheirStatementsEnd)
{
    TwoCopies copies;
    ASSERT_NO_FATAL_FAILURE(copies.Prepare("ieee14.json"));
    for (dbserver::ScratchDatabase* s : {&copies.perRecord, &copies.batched}) {
        ASSERT_TRUE(s->exec("DROP TABLE L4_0") && s->exec("DROP TABLE LFR_PCR_R"));
    }
    ChangeAll<un>([](un& r, int) {
        r.q &= ~UN_OUTSERVICE;
        if (std::strcmp(r.id, "G3") == 0) {
            r.Qg = std::numeric_limits<float>::infinity();
        }
    });
    copies.rtdb.commit();
    EXPECT_EQ(copies.WriteBoth(UpdateBack),
              (std::vector<std::string>{"warning: 实时数据库数据更新发电机计算数据表发生错误！",
                                        "warning: 实时数据库数据更新直流线计算数据表发生错误！"}));
    const std::vector<std::string> shown = copies.WriteBoth(
        [](QSqlDatabase* db, RecordWriteMode m) { return WriteResults(db, m, false); });
    ExpectSameTables(copies);
    // The shunts' and generators' one batch each refused, told by the family's message and
    // a box; G3's infinite power also reaches its breaker's flow, whose row is refused.
    ASSERT_EQ(shown.size(), 5u);
    EXPECT_EQ(shown[0], "2 并联电容电抗器结果数据回存到结果库发生错误，可能存在正序阻抗为0的并联"
                        "电容电抗器导致功率无穷大,\n请数据检查后再计算！");
    EXPECT_EQ(shown[1], "2 发电机结果数据回存到结果库发生错误，\n请数据检查后再计算！");
    EXPECT_EQ(shown[2].rfind("Fail: Fail to excute SQL:insert into LFR_PCR_R(", 0), 0u);
    EXPECT_EQ(shown[3].rfind("Fail: Fail to excute SQL:insert into LFR_GEN_R(", 0), 0u);
    EXPECT_EQ(shown[4], "warning: 导入开关结果数据失败");
    const QString db = copies.batched.name();
    // The generators before G3 (in record order) were set, G3 and the rest not.
    EXPECT_EQ(Rows("SELECT ID_Name, Valid FROM " + db + ".L5_0 WHERE ID_Name LIKE 'G_' ORDER BY "
                         "ID_Name"),
              (std::vector<std::string>{"G1|1", "G2|1", "G3|0", "G4|0", "G5|0"}));
    EXPECT_EQ(Count(db + ".LFR_GEN_R"), 0);
}
