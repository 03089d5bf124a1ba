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

// Inserts a record of class T with only its id and quality bits set; commits nothing.
template <class T> void Put(const char* id, unsigned int q = 0)
{
    T r;
    r.id = id;
    r.q = q;
    Put(r);
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
