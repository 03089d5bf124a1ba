// The services of the common kit that need no server: name checks and conversions,
// the configuration file and its tokenizer, the command channel and the calculation
// object's events.

#include "common/CalcObject.h"
#include "common/CommandServer.h"
#include "common/ConfigFile.h"
#include "common/Conversions.h"
#include "common/MainWidget.h"

#include <QDir>
#include <QTemporaryDir>
#include <QWidget>
#include <algorithm>
#include <arpa/inet.h>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <tuple>
#include <vector>
#include <unistd.h>

TEST(NameChecks, BusNamesNotesAndStringsRefuseTheirOwnCharacters)
{
    // Text; accepted as a bus name, a note, a general string.
    const std::tuple<const char*, bool, bool, bool> cases[] = {
        {"", true, true, true},          {"母线_1 -A.*@#[]{}", true, true, true},
        {"50%$", true, false, true},     {"a=b", false, true, true},
        {"a;c(d)", false, false, true},  {"O'Brien", false, false, false},
        {"a\\b", false, false, false},   {"\"q\"", false, false, false}};
    for (const auto& [text, bus, note, string] : cases) {
        EXPECT_EQ(IsTheBusNameValid(text), bus) << text;
        EXPECT_EQ(IsTheNoteStringValid(text), note) << text;
        EXPECT_EQ(IsTheStringValid(text), string) << text;
    }
    for (const char* bad : {"!", "/", ":", "~", "^", "&", "+", "|", "<", ">", ",", "?"}) {
        EXPECT_FALSE(IsTheBusNameValid(QString("x") + bad) || IsTheNoteStringValid(QString("x") + bad))
            << bad;
    }
}

// The real-time ids and the table types by name: realtime/test_realtime_lookups.cpp.
TEST(Conversions, FixedWidthNumbersCopiesBranchTypesAndANullTableName)
{
    char buf[8];
    const std::pair<int, const char*> four[] = {
        {7, "0007"}, {42, "0042"}, {999, "0999"}, {1000, "1000"}, {9999, "9999"}, {10000, "0000"}, {-1, "0000"}};
    for (const auto& [value, text] : four) {
        EXPECT_STREQ(ConvertTo4String(value, buf), text) << value;
    }
    std::memset(buf, 'x', sizeof buf);
    EXPECT_STREQ(ConvertTo2String(5, buf), "05");
    EXPECT_EQ(buf[3], '\0') << "four bytes are cleared, as by ConvertTo4String";
    EXPECT_STREQ(ConvertTo2String(100, buf), "00");

    Strncopy(buf, nullptr, 0);
    EXPECT_EQ(buf[0], '\0') << "a null source empties the target even with a length of 0";
    std::memset(buf, 'x', sizeof buf);
    Strncopy(buf, "abcd", 4);
    EXPECT_EQ(std::string(buf, 5), "abcdx") << "no terminator at full length";
    EXPECT_STREQ(Strcopy(buf, nullptr), "");

    for (const auto& [type, name] : std::vector<std::pair<int, QString>>{
             {4, "PCR"}, {5, "PCR"}, {6, "AC"}, {7, "DC"}, {9, "SCR"}, {10, "Tr2"}, {11, "SF"},
             {12, "Tr3"}, {13, ""}}) {
        EXPECT_EQ(GetBranchType(type), name) << type;
        EXPECT_EQ(GetIntBranchType(name), type == 5 || type == 9 ? type - 1 : type == 13 ? -1 : type);
    }
    EXPECT_EQ(GetIntBranchType("tr2"), -1) << "the comparison is exact";
    EXPECT_EQ((std::vector<int>{GetIntBranchTypeByCalType(1), GetIntBranchTypeByCalType(2),
                                GetIntBranchTypeByCalType(3), GetIntBranchTypeByCalType(4),
                                GetIntBranchTypeByCalType(5)}),
              (std::vector<int>{7, 6, 10, 12, -1}));
    EXPECT_EQ(TableNameToType(nullptr), -1);
}

// The copy by byte parity (mstrncpy): fuzz_configfile checks its rule on every input.
TEST(Tokenizer, SplitsInPlaceKeepsStaleTokensAndTrimsOnlyBlanks)
{
    char text[] = ",alpha,,beta,";
    ParseString p;
    EXPECT_STREQ(p.getStoken(), ",\n");
    EXPECT_EQ(p.set_parse(text), 2);
    EXPECT_EQ(p[0] + "|" + p[1], "alpha|beta");
    char shorter[] = "gamma";
    EXPECT_EQ(p.set_parse(shorter), 1);
    EXPECT_EQ(p[0] + "|" + p[1], "gamma|beta") << "entries of a longer earlier run stand";

    for (auto [text, trimmed] : {std::pair<std::string, std::string>{"  a b  ", "a b"},
                                 {"   ", ""}, {"\tk ", "\tk"}}) {
        EXPECT_EQ(ParseString::trim(text), trimmed) << "only blanks are trimmed";
    }
}

TEST(ConfigFile, LoadsMergesSkipsCommentsCutsOverlongLinesAndSavesInKeyOrder)
{
    QTemporaryDir dir;
    const auto write = [&](const char* name, const std::string& content) {
        const std::string path = QDir(dir.path()).filePath(name).toStdString();
        std::ofstream(path, std::ios::binary) << content;
        return path;
    };
    Ccfgfile cfg;
    cfg.addValuePair("host", std::string("old"));
    cfg.addValuePair("kept", 5);
    ASSERT_EQ(cfg.loadConfig(write("a.cfg", "# comment = skipped\n  #x = not a comment\nnoequals\n"
                                            "  host = 10.0.0.1  \npath = a=b\ntab\t= v\t\n"
                                            "flag = true\nport=7\n")),
              0);
    EXPECT_EQ(cfg.getValue("host"), "10.0.0.1") << "blanks around keys and values are dropped";
    EXPECT_EQ(cfg.getValue("path"), "a") << "a value is cut at a further equals sign";
    EXPECT_EQ(cfg.getValue("#x"), "not a comment") << "only a '#' in the first column is a comment";
    EXPECT_EQ(cfg.getValue("# comment"), "");
    EXPECT_EQ(cfg.getValue("tab\t"), "v\t") << "tabs stay";
    EXPECT_EQ(cfg.getiValue("kept") * 10 + cfg.getiValue("port"), 57) << "loading merges";
    EXPECT_FALSE(cfg.getbValue("flag")) << "\"true\" is not a number";
    cfg.addValuePair("on", true);
    EXPECT_TRUE(cfg.getbValue("on"));
    EXPECT_EQ(cfg.loadConfig(QDir(dir.path()).filePath("none.cfg").toStdString()), 1);

    // 1023 characters of a line still fit; of a longer one the 1023 the read left in the
    // buffer are parsed and reading stops there.
    Ccfgfile edge;
    EXPECT_EQ(edge.loadConfig(write("edge.cfg", "a = " + std::string(1019, 'x') + "\nb = " +
                                                    std::string(5000, 'y') + "\nc = 3\n")),
              0);
    EXPECT_EQ(edge.getValue("a"), std::string(1019, 'x'));
    EXPECT_EQ(edge.getValue("b"), std::string(1019, 'y'));
    EXPECT_EQ(edge.getValue("c"), "");

    Ccfgfile small;
    small.addValuePair("b", 7);
    small.addValuePair("a", std::string("x y"));
    const std::string saved = write("b.cfg", "");
    small.saveConfig(saved);
    std::ifstream in(saved);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "a = x y\nb = 7\n");
}

TEST(CommandChannel, SendsDatagramsAndKeepsItsQuirks)
{
    const int rx = ::socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = inet_addr("127.0.0.1");
    socklen_t len = sizeof addr;
    ASSERT_EQ(::bind(rx, reinterpret_cast<sockaddr*>(&addr), sizeof addr), 0);
    ASSERT_EQ(::getsockname(rx, reinterpret_cast<sockaddr*>(&addr), &len), 0);
    const int port = ntohs(addr.sin_port);
    timeval timeout{2, 0};
    ::setsockopt(rx, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);

    CcmdServer cmd;
    ASSERT_TRUE(cmd.connect("127.0.0.1", port));
    EXPECT_TRUE(cmd.connect("127.0.0.1", port + 1)) << "a second connect keeps the first peer";
    EXPECT_TRUE(cmd.exec("START 1") && cmd.exec(""));
    char buf[64];
    const ssize_t n = ::recv(rx, buf, sizeof buf, 0);
    EXPECT_EQ(std::string(buf, size_t(std::max<ssize_t>(n, 0))), "START 1");
    EXPECT_EQ(::recv(rx, buf, sizeof buf, 0), 0) << "an empty command sends an empty datagram";
    EXPECT_TRUE(CcmdServer("127.0.0.1", 9).exec("x")) << "a send says nothing of the peer";

    EXPECT_TRUE(cmd.disconnect());
    EXPECT_TRUE(cmd.connect("127.0.0.1", port)) << "the flag is not cleared: nothing changes";
    EXPECT_FALSE(cmd.exec("late")) << "the closed socket is not written";
    EXPECT_FALSE(cmd.disconnect()) << "a second close fails as the socket layer would say";
    ::close(rx);
}

namespace {
class EventCatcher : public QWidget
{
public:
    int type = 0;
    void* data = reinterpret_cast<void*>(1);
    bool event(QEvent* e) override
    {
        if (e->type() >= QEvent::User) {
            type = e->type();
            data = static_cast<CCustomEvent*>(e)->data();
            return true;
        }
        return QWidget::event(e);
    }
};

class Module : public CCalcObject
{
public:
    int ImportCalDataToRTDB() override { return 0; }
    int RunCalculation() override { return 0; }
    bool PrepareRTGraphData() override { return true; }
    bool PrepareRTLabelsData() override { return true; }
    int SaveCalResult() override { return 0; }
    int LoadCalResult() override { return 0; }
    int ClearCalResult() override { return 0; }
};
} // namespace

TEST(CalcObject, ACopyKeepsTheCaseAndEventsReachTheMainWidgetBeforeTheCallReturns)
{
    Module m;
    m.SetCase_No(4);
    m.SetHaveResult(true);
    Module copy(m);
    EXPECT_EQ(std::make_pair(copy.GetCase_No(), copy.IsHaveResult()), std::make_pair(4, true));

    EventCatcher main;
    SetMainWidget(&main);
    m.PostCustomEvent2MainWidget(QEvent::User + 1, nullptr);
    EXPECT_EQ(main.type, QEvent::User + 1) << "handled before the call returns";
    EXPECT_EQ(main.data, nullptr) << "null data leaves the slot unset";
    int payload = 9;
    m.PostCustomEvent2MainWidget(QEvent::User + 2, &payload);
    EXPECT_EQ(main.data, &payload);
    SetMainWidget(nullptr);
}
