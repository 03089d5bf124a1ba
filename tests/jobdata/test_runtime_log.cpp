// The run-time frames of extraction and save-back, in a build of the transfer with the
// one switch on: every driver and family shows its line when it ends (a frame is a scoped
// object, so a failure's early return ends it too).

#include "SaveBackRoad.h"
#include "common/RunTimeLog.h"

#include <QRegularExpression>

static_assert(kRunTimeLogEnabled, "this program is built with the run-time switch on");

namespace {

// The function names of the run-time lines shown since the last clear, in order; a line
// that does not read as the design writes it fails the test.
std::vector<std::string> FramesShown()
{
    static const QRegularExpression line(
        QStringLiteral("^函数(\\w+)运行时间为：\\d+\\.\\d\\d秒 ＝＝ \\d+\\.\\d\\d分\\.\\.\\.\\.\\.\\.$"));
    std::vector<std::string> names;
    for (const std::string& text : testsupport::FeedbackRecorder::instance().texts(-1)) {
        const auto m = line.match(QString::fromStdString(text));
        EXPECT_TRUE(m.hasMatch()) << text;
        names.push_back(m.captured(1).toStdString());
    }
    return names;
}

} // namespace

TEST_F(SaveBackRoad, EveryDriverAndFamilyOfExtractionAndSaveBackShowsItsRunTimeLine)
{
    CLFCalDataTransfer job(0, kScheme, db(), nullptr);
    ASSERT_EQ(job.ImportLDataFromBaseDB(), 0);
    EXPECT_EQ(FramesShown(),
              (std::vector<std::string>{"DeleteLData", "ImportL2DataFromBaseDB",
                                        "ImportL3DataFromBaseDB", "ImportL4DataFromBaseDB",
                                        "ImportL5DataFromBaseDB", "ImportL6DataFromBaseDB",
                                        "ImportLKDataFromBaseDB", "ImportL1DataFromBaseDB",
                                        "ImportLDataFromBaseDB"}));

    feedback().clear();
    job.SetStatementMode(SaveStatementMode::Mended);
    ASSERT_EQ(job.SaveLDataToBaseDB("NEW", false), 0);
    EXPECT_EQ(FramesShown(),
              (std::vector<std::string>{
                  "SaveL2DataToAC", "SaveL2DataToPCR", "SaveL2DataToSCR", "SaveL3DataToT2W",
                  "SaveL3DataToShift", "SaveL3DataToT3W", "SaveL4DataToBaseDB",
                  "SaveL5DataToBaseDB", "SaveL6DataToBaseDB", "SaveLKDataToBreaker",
                  "SaveLKDataToSwitch", "SaveL1DataToBaseDB", "SaveLDataToBaseDB"}))
        << "SaveL1DataToBaseDB shows its line also when it has nothing to add";
}
