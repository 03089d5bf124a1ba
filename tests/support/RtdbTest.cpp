#include "RtdbTest.h"

namespace testsupport {

void RtdbTest::SetUp()
{
    InstallRecorders();
    m_db.setErrorHandler(&RtdbTest::onError, this);
    ASSERT_TRUE(m_db.open("test"));
}

void RtdbTest::TearDown()
{
    m_db.rollback();
    m_db.close();
}

void RtdbTest::onError(int code, const char* msg, int, void* self)
{
    static_cast<RtdbTest*>(self)->m_errors.push_back(RtdbError{code, msg ? msg : ""});
}

} // namespace testsupport
