#pragma once
// Records in and out of the real-time database their class is linked to, for tests that
// lay out a network by hand and read back what a transfer left in it.

#include "records/NetworkRecords.h"

#include <gtest/gtest.h>

namespace testsupport {

// Inserts a copy of the record; commits nothing.
template <class T> void Put(const T& r)
{
    ASSERT_TRUE(T::dbDescriptor.getDatabase()->insertRecord(&T::dbDescriptor, nullptr, &r));
}

// The one record whose id is `id`; a failure when there is not exactly one.
template <class T> T Fetch(const char* id)
{
    dbCursor<T> c;
    dbQuery q;
    q = "id=", id;
    EXPECT_EQ(c.select(q), 1) << id;
    return *c;
}

} // namespace testsupport
