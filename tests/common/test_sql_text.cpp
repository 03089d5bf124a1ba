// Text values in statements: escaped by the server's rules of the session, byte for byte
// where nothing needs escaping, refused where the local encoding cannot carry them or the
// connection's character set could hide a backslash; names measured and cut as the design
// counted them.

#include "DbTest.h"
#include "common/Feedback.h"
#include "common/GbkWidth.h"

#include <QSqlError>

using testsupport::DbTest;

class SqlTextTest : public DbTest
{
protected:
    void SetUp() override
    {
        DbTest::SetUp();
        QSqlQuery q(*db());
        q.exec("DROP TABLE IF EXISTS names");
        ASSERT_TRUE(q.exec("CREATE TABLE names (n CHAR(20) BINARY)"));
        ASSERT_TRUE(q.exec("INSERT INTO names VALUES ('a'), ('b'), ('x')"));
    }
    void TearDown() override
    {
        QSqlQuery(*db()).exec("SET SESSION sql_mode=DEFAULT");
        QSqlQuery(*db()).exec("SET NAMES utf8mb4");
    }
    static void RoundTrip(const std::string& name, const char* mode)
    {
        QSqlQuery q(*db());
        const QByteArray literal = SqlText(db(), name.c_str());
        ASSERT_TRUE(ExecStatement(q, "INSERT INTO names VALUES ('" + literal + "')"))
            << mode << " " << name << ": " << q.lastError().text().toStdString();
        ASSERT_TRUE(ExecStatement(q, "SELECT n FROM names WHERE n='" + literal + "'"));
        int rows = 0;
        while (q.next()) {
            ++rows;
            EXPECT_EQ(q.value(0).toByteArray().toStdString(), name) << mode;
        }
        EXPECT_EQ(rows, 1) << mode << " " << name << ": only its own row";
        ASSERT_TRUE(ExecStatement(q, "DELETE FROM names WHERE n='" + literal + "'"));
    }
};

TEST_F(SqlTextTest, NamesThatWouldEndTheirLiteralTouchTheirOwnRowUnderEitherBackslashRule)
{
    const std::string twenty = "节点甲乙丙丁A\\"; // 20 bytes ending in a backslash
    const std::vector<std::string> names = {
        "x' OR '1'='1",        "a\\", "a\\b", "\\", "'", "''", "\\'", "' OR n LIKE '%",
        "b';DELETE FROM x;--", twenty};
    // The server's own mode, then the session told to read backslashes as plain text: the
    // helper follows what the server reports for the session, with no statement of its own.
    for (const char* mode :
         {"NO_ENGINE_SUBSTITUTION", "NO_ENGINE_SUBSTITUTION,NO_BACKSLASH_ESCAPES"}) {
        QSqlQuery q(*db());
        ASSERT_TRUE(q.exec(QString("SET SESSION sql_mode='%1'").arg(mode)));
        for (const std::string& name : names) {
            RoundTrip(name, mode);
        }
        EXPECT_EQ(Rows("SELECT n FROM names ORDER BY n"), (std::vector<std::string>{"a", "b", "x"}))
            << "the other rows stand as they were";
    }
    QSqlQuery(*db()).exec("SET SESSION sql_mode='NO_BACKSLASH_ESCAPES'");
    EXPECT_EQ(SqlText(db(), "a\\b'"), QByteArray("a\\b''"));
    QSqlQuery(*db()).exec("SET SESSION sql_mode=DEFAULT");
    EXPECT_EQ(SqlText(db(), "a\\b'"), QByteArray("a\\\\b''"));
}

TEST_F(SqlTextTest, PlainTextsAndBareWordsStayACutCharacterOrAHiddenBackslashSendsNothing)
{
    for (const char* plain : {"", "N1", "母线 甲-1_(2)", "50%_=*@#[]{}", "\"q\""}) {
        EXPECT_EQ(SqlText(db(), plain).constData(), plain) << "nothing copied";
    }
    EXPECT_EQ(SqlText(db(), static_cast<const char*>(nullptr)), QByteArray(""));
    const QByteArray held("机组");
    EXPECT_EQ(SqlText(db(), held).constData(), held.constData()) << "shared, not copied";

    // Six characters and two bytes of a seventh: no statement goes out, and the query is
    // left without a result of an earlier statement.
    const std::string cut = std::string("甲乙丙丁戊己庚").substr(0, 20);
    QSqlQuery q(*db());
    ASSERT_TRUE(ExecStatement(q, "SELECT n FROM names"));
    EXPECT_FALSE(ExecStatement(q, QByteArray("INSERT INTO names VALUES ('") + cut.c_str() + "')"));
    EXPECT_FALSE(q.isActive());
    EXPECT_TRUE(ExecStatement(q, "INSERT INTO names VALUES ('甲乙丙丁戊己')"));

    // A bare word stays; anything else is a column name the server refuses.
    for (const char* word : {"220", "-10.5", "+3", "Load_Name", "节点1", "N_1$"}) {
        EXPECT_EQ(SqlWord(word), QByteArray(word));
    }
    EXPECT_EQ(SqlWord("1 OR 1=1"), QByteArray("`1 OR 1=1`"));
    EXPECT_EQ(SqlWord("a`b"), QByteArray("`a``b`"));
    EXPECT_EQ(SqlWord(""), QByteArray("``"));
    EXPECT_FALSE(ExecStatement(q, "DELETE FROM names WHERE n = " + SqlWord("1 OR 1=1")));
    EXPECT_FALSE(ExecStatement(q, "DELETE FROM names WHERE n = " + SqlWord("'' OR n<>'")));
    EXPECT_EQ(Count("names"), 4) << "no row deleted";
    EXPECT_TRUE(ExecStatement(q, "SELECT n FROM names WHERE n = " + SqlWord("n")))
        << "a column's name is still a column's name";

    // Where 0x5C can end a two-byte character: "阿\\" is E9 98 BF 5C in UTF-8 and BF 5C is
    // one GBK character, so of the doubled backslash one would be left to escape the quote.
    const QByteArray insert = "INSERT INTO names VALUES ('" + SqlText(db(), "阿\\") + "')";
    for (const char* charset : {"gbk", "big5", "sjis", "cp932"}) {
        ASSERT_TRUE(q.exec(QString("SET NAMES %1").arg(charset)));
        feedback().clear();
        EXPECT_FALSE(ExecStatement(q, insert));
        EXPECT_EQ(feedback().texts(2),
                  std::vector<std::string>{
                      std::string("连接的客户端字符集为 ") + charset +
                      "，其双字节字符的第二个字节可能是反斜杠，名称无法安全地写入语句，语句未执行。"
                      "请在该连接上使用 utf8mb4（SET NAMES utf8mb4）。"});
    }
    EXPECT_EQ(Count("names"), 4);
    ASSERT_TRUE(q.exec("SET NAMES utf8mb4"));
    EXPECT_TRUE(ExecStatement(q, insert));
    EXPECT_EQ(Count("names WHERE n=" + QString::fromUtf8("'阿\\\\'")), 1);
}

// ASCII one byte, any other character two (outside the BMP too), a stray byte one
// character; a cut never inside a character.
TEST(GbkWidthTest, MeasuresAndCutsAsTheDesignCountedBytes)
{
    const std::tuple<const char*, int, int, const char*> cases[] = {
        {"A华北", 5, 3, "A华"}, {"A华北", 5, 2, "A"}, {"\U0001F600A", 3, 1, ""},
        {"\xE5\x8D!", 5, 4, "\xE5\x8D"}};
    for (const auto& [text, width, limit, cut] : cases) {
        EXPECT_EQ(GbkWidth(QByteArray(text)), width) << text;
        EXPECT_EQ(GbkCut(QByteArray(text), limit), QByteArray(cut)) << text;
    }
    char buffer[GbkBufferSize(kNameBytes)]; // 41: ten characters of four bytes
    GbkCopy(buffer, QByteArray("\U0001F600").repeated(11), kNameBytes);
    EXPECT_EQ(QByteArray(buffer), QByteArray("\U0001F600").repeated(10));
}
