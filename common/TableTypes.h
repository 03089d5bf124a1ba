#pragma once
// Type numbers of the base-database tables, as TableNameToType gives them and as
// CDatabase::SetBakTabModifyFlag hears of a changed working copy.

enum CDB_TableType : int {
    CDB_TYPE_DATAGROUP = 12, // only ever passed to SetBakTabModifyFlag
    CDB_TYPE_BUS = 101,
    CDB_TYPE_ACLINE = 102,
    CDB_TYPE_PCAPREA = 103,
    CDB_TYPE_SCAPREA = 104,
    CDB_TYPE_TRANS_2W = 105,
    CDB_TYPE_TRANS_3W = 106,
    CDB_TYPE_SHIFT = 107,
    CDB_TYPE_DCLINE = 108,
    CDB_TYPE_GENERAT = 109,
    CDB_TYPE_LOAD = 110,
    CDB_TYPE_SVC = 111,
    CDB_TYPE_BREAKER = 112,
    CDB_TYPE_MUTUAL = 113,
    CDB_TYPE_AREAS = 114,
    CDB_TYPE_ZONE = 115,
    CDB_TYPE_NODE = 116,
    CDB_TYPE_PSTATION = 117,
    CDB_TYPE_ISOSWITCH = 120,
};
