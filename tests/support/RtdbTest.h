#pragma once
// Base fixture of tests on the real-time database: a freshly opened database per test,
// closed afterwards, whose errors are recorded instead of printed.

#include "Recorders.h"
#include "records/NetworkRecords.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace testsupport {

struct RtdbError
{
    int code;
    std::string message;
};

class RtdbTest : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    dbDatabase& rtdb() { return m_db; }
    const std::vector<RtdbError>& errors() const { return m_errors; }
    void clearErrors() { m_errors.clear(); }

    // Inserts a record through the database and commits nothing.
    template <class T> void Insert(const T& rec)
    {
        ASSERT_TRUE(m_db.insertRecord(&T::dbDescriptor, nullptr, &rec));
    }

private:
    static void onError(int code, const char* msg, int, void* self);
    dbDatabase m_db;
    std::vector<RtdbError> m_errors;
};

} // namespace testsupport
