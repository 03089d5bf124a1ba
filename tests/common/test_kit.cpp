// The feedback frame, the run-time line, the modal box and the multi-row insert.

#include "DbTest.h"
#include "common/Feedback.h"
#include "common/RunTimeLog.h"
#include "common/SQLMultiInsert.h"
#include "common/BulkLoad.h"

#include <limits>

using testsupport::DbTest;
using testsupport::FeedbackRecorder;

TEST(RunTimeFrame, SwitchedOffShowsNothingAndOnShowsTheLineAtLevelMinusOne)
{
    testsupport::InstallRecorders();
    {
        CRunTimeLog frame("ImportLDataFromBaseDB");
    }
    EXPECT_TRUE(FeedbackRecorder::instance().messages().empty());

    EXPECT_EQ(FormatRunTimeLine("F", 90000).toStdString(),
              "函数F运行时间为：90.00秒 ＝＝ 1.50分......");
    {
        CRunTimeLogT<true> frame("SaveLDataToBaseDB");
    }
    const auto shown = FeedbackRecorder::instance().texts(-1);
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].rfind("函数SaveLDataToBaseDB运行时间为：0.", 0), 0u) << shown[0];
}

TEST_F(DbTest, MultiInsertSendsFullBatchesAndTheRestOnExecAndDropsWhatWaitsOnAChangeOrFailure)
{
    Exec("CREATE TABLE mi (a INT, b CHAR(5))");
    StartStatementLog();
    SQLMultiInsert ins(db(), 3);
    ins.SetTableName("mi");
    ins.SetFldNamelst("a,b");
    std::vector<int> waiting;
    for (int i = 1; i <= 5; ++i) {
        waiting.push_back(ins.AddRecord(FormatText("%d,'r%d'", i, i)));
    }
    EXPECT_EQ(waiting, (std::vector<int>{1, 2, 0, 1, 2}));
    EXPECT_TRUE(ins.exec());
    EXPECT_TRUE(ins.exec()) << "nothing waiting: true without touching the server";
    EXPECT_EQ(SentStatements(),
              (std::vector<std::string>{"insert into mi(a,b) values\n (1,'r1'),\n (2,'r2'),\n (3,'r3')",
                                        "insert into mi(a,b) values\n (4,'r4'),\n (5,'r5')"}));

    // A table set again drops what waits, and so does the end of the object.
    {
        SQLMultiInsert later(db(), 0);
        later.SetTableName("mi");
        later.SetFldNamelst("a");
        EXPECT_EQ(later.AddRecord("6") + later.AddRecord("7"), 3) << "a maximum of 0 never sends";
        later.SetTableName("mi");
        EXPECT_EQ(later.GetRecNum(), 0);
        later.AddRecord("8");
    }
    EXPECT_EQ(Count("mi"), 5) << "the destructor does not flush";

    SQLMultiInsert bad(db(), 100);
    bad.SetTableName("no_such_table");
    bad.SetFldNamelst("a");
    bad.AddRecord("1");
    EXPECT_FALSE(bad.exec());
    EXPECT_EQ(bad.GetRecNum(), 0) << "rows of a failed statement are dropped";
    const auto shown = boxes().boxes();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_FALSE(shown[0].warning);
    EXPECT_EQ(shown[0].caption, "Fail");
    EXPECT_EQ(shown[0].text, "Fail to excute SQL:insert into no_such_table(a) values\n (1)");
}

// A bulk row holds each value as the statement's template writes it: printf's digits for
// every precision, exact ties rounded to even, a negative value rounding to zero keeping
// its sign; the row's texts as they stand, escaped for the load; what a statement could
// not carry refused.
TEST(BulkRows, ValuesHavePrintfsDigitsAndTextsTheirBytes)
{
    std::vector<double> values = {0.0078125, -0.0078125, 0.0009765625, 2.5, -1e-9, 1e300,
                                  123456.9999995, 0.1 + 0.2};
    for (int i = 0; i < 2000; ++i) {
        values.push_back((i * 7919 % 1000003) / 1024.0 - 400.0 + i * 1e-7);
    }
    for (const double v : values) {
        for (const char* format : {"%f", "%12.9f", "%15.9f", "%12.6f"}) {
            BulkFields text;
            const QByteArray field = text(format, v);
            EXPECT_EQ(field, FormatText(format, v).trimmed() + "\t") << format << " " << v;
        }
    }
    BulkFields text;
    EXPECT_EQ(text("%d,'%s',%d ", -5, "名字\t'a\\b'", 4294967295u), "-5\t名字\\t'a\\\\b'\t-1\t");
    EXPECT_TRUE(text.ok());
    text("%f", std::numeric_limits<double>::infinity());
    EXPECT_FALSE(text.ok());
    BulkFields invalid;
    invalid("'%s'", "\xe5\x90");
    EXPECT_FALSE(invalid.ok()) << "a text cut inside a character";
}
