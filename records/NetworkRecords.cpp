#include "records/NetworkRecords.h"

#include <cstring>

namespace dtsdb {

void initRecord(void* record, std::size_t size, const dbTableDescriptor& descriptor)
{
    std::memset(record, 0, size);
    static const char empty[] = "";
    const char* e = empty;
    for (std::size_t offset : descriptor.textOffsets()) {
        std::memcpy(static_cast<char*>(record) + offset, &e, sizeof e);
    }
}

#define RECORD nd
DTSDB_DESCRIPTOR(nd, DTSDB_ND)
#undef RECORD
#define RECORD bs
DTSDB_DESCRIPTOR(bs, DTSDB_BS)
#undef RECORD
#define RECORD bus
DTSDB_DESCRIPTOR(bus, DTSDB_BUS)
#undef RECORD
#define RECORD kv
DTSDB_DESCRIPTOR(kv, DTSDB_KV)
#undef RECORD
#define RECORD r_kv_nd
DTSDB_DESCRIPTOR(r_kv_nd, DTSDB_R_KV_ND)
#undef RECORD
#define RECORD ln
DTSDB_DESCRIPTOR(ln, DTSDB_LN)
#undef RECORD
#define RECORD cp
DTSDB_DESCRIPTOR(cp, DTSDB_CP)
#undef RECORD
#define RECORD xf
DTSDB_DESCRIPTOR(xf, DTSDB_XF)
#undef RECORD
#define RECORD dln
DTSDB_DESCRIPTOR(dln, DTSDB_DLN)
#undef RECORD
#define RECORD un
DTSDB_DESCRIPTOR(un, DTSDB_UN)
#undef RECORD
#define RECORD ld
DTSDB_DESCRIPTOR(ld, DTSDB_LD)
#undef RECORD
#define RECORD cb
DTSDB_DESCRIPTOR(cb, DTSDB_CB)
#undef RECORD
#define RECORD svc
DTSDB_DESCRIPTOR(svc, DTSDB_SVC)
#undef RECORD

} // namespace dtsdb
