#pragma once
// The real-time database: include this to use records, queries and cursors.
#include "rtdb/dbCursor.h"
#include "rtdb/dbDatabase.h"
#include "rtdb/dbQuery.h"
#include "rtdb/dbTableDescriptor.h"
