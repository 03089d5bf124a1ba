// The services of the common kit that need no server: name checks and conversions,
// the configuration file and its tokenizer, the command channel and the calculation
// object with its events.

#include "Recorders.h"
#include "common/CalcObject.h"
#include "common/CommandServer.h"
#include "common/ConfigFile.h"
#include "common/Conversions.h"
#include "common/MainWidget.h"

#include <QDir>
#include <QTemporaryDir>
#include <QWidget>
#include <arpa/inet.h>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

TEST(NameChecks, BusNamesAndNotesRefuseDifferentCharacters)
{
    EXPECT_TRUE(IsTheBusNameValid(""));
    EXPECT_TRUE(IsTheBusNameValid("母线_1 -A.*@#[]{}"));
    EXPECT_TRUE(IsTheBusNameValid("50%$"));
    EXPECT_FALSE(IsTheBusNameValid("a=b"));
    EXPECT_TRUE(IsTheNoteStringValid("a=b"));
    EXPECT_FALSE(IsTheNoteStringValid("50%"));
    EXPECT_FALSE(IsTheNoteStringValid("$5"));
    for (const char* bad : {"!", "'", "\"", "/", ":", ";", "~", "^", "&", "(", ")", "+", "|", "<",
                            ">", ",", "?", "\\"}) {
        EXPECT_FALSE(IsTheBusNameValid(QString("x") + bad)) << bad;
        EXPECT_FALSE(IsTheNoteStringValid(QString("x") + bad)) << bad;
    }
    EXPECT_TRUE(IsTheStringValid("a=b;c(d)"));
    EXPECT_FALSE(IsTheStringValid("O'Brien"));
    EXPECT_FALSE(IsTheStringValid("a\\b"));
    EXPECT_FALSE(IsTheStringValid("\"q\""));
}

TEST(Conversions, FixedWidthNumbersCopiesAndBranchTypes)
{
    char buf[8];
    EXPECT_STREQ(ConvertTo4String(7, buf), "0007");
    EXPECT_STREQ(ConvertTo4String(42, buf), "0042");
    EXPECT_STREQ(ConvertTo4String(9999, buf), "9999");
    EXPECT_STREQ(ConvertTo4String(10000, buf), "0000");
    EXPECT_STREQ(ConvertTo4String(-1, buf), "0000");
    std::memset(buf, 'x', sizeof buf);
    EXPECT_STREQ(ConvertTo2String(5, buf), "05");
    EXPECT_EQ(buf[3], '\0') << "four bytes are cleared, as by ConvertTo4String";
    EXPECT_STREQ(ConvertTo2String(100, buf), "00");

    char target[8];
    std::memset(target, 'x', sizeof target);
    EXPECT_STREQ(Strcopy(target, nullptr), "");
    EXPECT_STREQ(Strcopy(target, "ab"), "ab");
    std::memset(target, 'x', sizeof target);
    Strncopy(target, nullptr, 0);
    EXPECT_EQ(target[0], '\0') << "a null source empties the target even with a length of 0";
    std::memset(target, 'x', sizeof target);
    Strncopy(target, "abcd", 4);
    EXPECT_EQ(std::string(target, 5), "abcdx") << "no terminator at full length";

    EXPECT_EQ(GetBranchType(5), "PCR");
    EXPECT_EQ(GetBranchType(9), "SCR");
    EXPECT_EQ(GetBranchType(12), "Tr3");
    EXPECT_TRUE(GetBranchType(13).isEmpty());
    EXPECT_EQ(GetIntBranchType("PCR"), 4);
    EXPECT_EQ(GetIntBranchType("SCR"), 8);
    EXPECT_EQ(GetIntBranchType("Tr2"), 10);
    EXPECT_EQ(GetIntBranchType("tr2"), -1) << "the comparison is exact";
    EXPECT_EQ(GetIntBranchTypeByCalType(1), 7);
    EXPECT_EQ(GetIntBranchTypeByCalType(4), 12);
    EXPECT_EQ(GetIntBranchTypeByCalType(5), -1);
}

TEST(Tokenizer, SplitsInPlaceKeepsStaleTokensAndCopiesByByteParity)
{
    char text[] = ",alpha,,beta,";
    ParseString p;
    EXPECT_STREQ(p.getStoken(), ",\n");
    EXPECT_EQ(p.set_parse(text), 2);
    EXPECT_EQ(p[0], "alpha");
    EXPECT_EQ(p[1], "beta");
    char shorter[] = "gamma";
    EXPECT_EQ(p.set_parse(shorter), 1);
    EXPECT_EQ(p[0], "gamma");
    EXPECT_EQ(p[1], "beta") << "entries of a longer earlier run stand beyond the count";

    std::string s = "  a b  ";
    EXPECT_EQ(ParseString::trim(s), "a b");
    std::string blanks = "   ";
    EXPECT_EQ(ParseString::trim(blanks), "");
    std::string tabbed = "\tk ";
    EXPECT_EQ(ParseString::trim(tabbed), "\tk") << "only blanks are trimmed";

    char out[32];
    EXPECT_EQ(ParseString::mstrncpy(out, "abc", 10), 2);
    EXPECT_STREQ(out, "ab") << "an odd count of bytes loses one, ASCII or not";
    EXPECT_EQ(ParseString::mstrncpy(out, "abcd", 10), 4);
    EXPECT_STREQ(out, "abcd");
    // Two two-byte characters (GBK-style) cut at 3 bytes keep the first whole character.
    EXPECT_EQ(ParseString::mstrncpy(out, "\xC4\xE3\xBA\xC3", 3), 2);
    EXPECT_STREQ(out, "\xC4\xE3");
}

class ConfigFileTest : public ::testing::Test
{
protected:
    QTemporaryDir dir;
    std::string path(const char* name) { return QDir(dir.path()).filePath(name).toStdString(); }
    void write(const std::string& file, const std::string& content)
    {
        std::ofstream(file, std::ios::binary) << content;
    }
};

TEST_F(ConfigFileTest, LoadsMergesSkipsCommentsAndSavesInKeyOrder)
{
    const std::string file = path("a.cfg");
    write(file, "# comment = skipped\n  #x = not a comment\nnoequals\n  host = 10.0.0.1  \n"
                "path = a=b\ntab\t= v\t\nflag = true\nport=7\n");
    Ccfgfile cfg;
    cfg.addValuePair("host", std::string("old"));
    cfg.addValuePair("kept", 5);
    ASSERT_EQ(cfg.loadConfig(file), 0);
    EXPECT_EQ(cfg.getValue("host"), "10.0.0.1") << "blanks around keys and values are dropped";
    EXPECT_EQ(cfg.getValue("path"), "a") << "a value is cut at a further equals sign";
    EXPECT_EQ(cfg.getValue("#x"), "not a comment") << "only a '#' in the first column is a comment";
    EXPECT_EQ(cfg.getValue("# comment"), "");
    EXPECT_EQ(cfg.getValue("tab\t"), "v\t") << "tabs stay";
    EXPECT_EQ(cfg.getiValue("kept"), 5) << "loading merges";
    EXPECT_EQ(cfg.getiValue("port"), 7);
    EXPECT_FALSE(cfg.getbValue("flag")) << "\"true\" is not a number";
    EXPECT_FALSE(cfg.getbValue("missing"));
    cfg.addValuePair("on", true);
    EXPECT_TRUE(cfg.getbValue("on"));
    cfg.addValuePair("literal", "text");
    EXPECT_EQ(cfg.getValue("literal"), "text");

    const std::string saved = path("b.cfg");
    Ccfgfile small;
    small.addValuePair("b", 7);
    small.addValuePair("a", std::string("x y"));
    small.saveConfig(saved);
    std::ifstream in(saved);
    std::string all((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_EQ(all, "a = x y\nb = 7\n");
}

TEST_F(ConfigFileTest, MissingEmptyBinaryAndOverlongFiles)
{
    Ccfgfile cfg;
    EXPECT_EQ(cfg.loadConfig(path("none.cfg")), 1);

    write(path("empty.cfg"), "");
    EXPECT_EQ(cfg.loadConfig(path("empty.cfg")), 0);

    std::string binary;
    for (int i = 0; i < 3000; ++i) {
        binary += char((i * 37) % 256);
    }
    write(path("bin.cfg"), binary);
    EXPECT_EQ(cfg.loadConfig(path("bin.cfg")), 0);

    write(path("long.cfg"),
          "first = 1\n" + std::string("k = ") + std::string(5000, 'v') + "\nafter = 2\n");
    Ccfgfile longCfg;
    EXPECT_EQ(longCfg.loadConfig(path("long.cfg")), 0);
    EXPECT_EQ(longCfg.getValue("first"), "1");
    EXPECT_EQ(longCfg.getValue("k"), std::string(1019, 'v'))
        << "the overlong line is parsed from the 1023 characters the read left in the buffer";
    EXPECT_EQ(longCfg.getValue("after"), "") << "reading stops at the overlong line";

    // 1023 characters still fit; 1024 do not.
    write(path("edge.cfg"), "a = " + std::string(1019, 'x') + "\nb = " + std::string(1020, 'y') +
                                "\nc = 3\n");
    Ccfgfile edge;
    EXPECT_EQ(edge.loadConfig(path("edge.cfg")), 0);
    EXPECT_EQ(edge.getValue("a").size(), 1019u);
    EXPECT_EQ(edge.getValue("b"), std::string(1019, 'y')) << "its last character is lost";
    EXPECT_EQ(edge.getValue("c"), "");
}

TEST(CommandChannel, SendsDatagramsAndKeepsItsQuirks)
{
    // A receiver on an ephemeral port of the loopback address.
    const int rx = ::socket(AF_INET, SOCK_DGRAM, 0);
    ASSERT_GE(rx, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = inet_addr("127.0.0.1");
    ASSERT_EQ(::bind(rx, reinterpret_cast<sockaddr*>(&addr), sizeof addr), 0);
    socklen_t len = sizeof addr;
    ASSERT_EQ(::getsockname(rx, reinterpret_cast<sockaddr*>(&addr), &len), 0);
    const int port = ntohs(addr.sin_port);
    timeval timeout{2, 0};
    ::setsockopt(rx, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);

    CcmdServer before;
    EXPECT_FALSE(before.isConnected());

    CcmdServer cmd;
    ASSERT_TRUE(cmd.connect("127.0.0.1", port));
    EXPECT_TRUE(cmd.connect("127.0.0.1", port + 1)) << "a second connect keeps the first peer";
    EXPECT_TRUE(cmd.exec("START 1"));
    EXPECT_TRUE(cmd.exec(""));
    char buf[64];
    ssize_t n = ::recv(rx, buf, sizeof buf, 0);
    ASSERT_EQ(n, 7);
    EXPECT_EQ(std::string(buf, size_t(n)), "START 1");
    n = ::recv(rx, buf, sizeof buf, 0);
    EXPECT_EQ(n, 0) << "an empty command sends an empty datagram";

    CcmdServer nobody("127.0.0.1", 9);
    EXPECT_TRUE(nobody.exec("x")) << "a send says nothing of the peer";

    EXPECT_TRUE(cmd.disconnect());
    EXPECT_TRUE(cmd.isConnected()) << "the flag is not cleared";
    EXPECT_TRUE(cmd.connect("127.0.0.1", port)) << "so connect changes nothing";
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

TEST(CalcObject, DefaultsAndSynchronousEventsToTheMainWidget)
{
    Module m;
    EXPECT_FALSE(m.IsHaveResult());
    EXPECT_EQ(m.HandleGraph(), nullptr);
    EXPECT_EQ(m.GetCase_NoByCase_Name("x"), -1);
    EXPECT_EQ(m.GetCase_Name(3), "");
    EXPECT_STREQ(m.metaObject()->className(), "CCalcObject");
    m.SetCase_No(4);
    m.SetHaveResult(true);
    Module copy(m);
    EXPECT_EQ(copy.GetCase_No(), 4);
    EXPECT_TRUE(copy.IsHaveResult());

    CHandleGraphInfo info;
    EXPECT_TRUE(info.m_strText.isNull());
    EXPECT_EQ(info.m_nNumber, -1);
    EXPECT_EQ(info.m_nValue1 + info.m_nValue2 + info.m_nValue3 + info.m_nValue4 + info.m_nValue5,
              0);

    m.PostCustomEvent2MainWidget(QEvent::User + 5, nullptr); // none registered: nothing happens

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
