#include "records/StabilityCaseRecords.h"

namespace dtsdb {

#define RECORD case_st
DTSDB_DESCRIPTOR(case_st, DTSDB_CASE_ST)
#undef RECORD
#define RECORD stcrit
DTSDB_DESCRIPTOR(stcrit, DTSDB_STCRIT)
#undef RECORD
#define RECORD stfault
DTSDB_DESCRIPTOR(stfault, DTSDB_STFAULT)
#undef RECORD
#define RECORD udcal_st
DTSDB_DESCRIPTOR(udcal_st, DTSDB_UDCAL_ST)
#undef RECORD
#define RECORD upcal_st
DTSDB_DESCRIPTOR(upcal_st, DTSDB_UPCAL_ST)
#undef RECORD
#define RECORD stdist
DTSDB_DESCRIPTOR(stdist, DTSDB_STDIST)
#undef RECORD
#define RECORD st_out
DTSDB_DESCRIPTOR(st_out, DTSDB_ST_OUT)
#undef RECORD
#define RECORD stvar_inf
DTSDB_DESCRIPTOR(stvar_inf, DTSDB_STVAR_INF)
#undef RECORD
#define RECORD stana_gi
DTSDB_DESCRIPTOR(stana_gi, DTSDB_STANA_GI)
#undef RECORD
#define RECORD stana_grp
DTSDB_DESCRIPTOR(stana_grp, DTSDB_STANA_GRP)
#undef RECORD

} // namespace dtsdb
