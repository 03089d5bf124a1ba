#include "common/RealtimeLookups.h"

#include "common/Feedback.h"
#include "records/NetworkRecords.h"

namespace {

// The bs record of node `id`, fetched into `bsCursor`; false when either is missing.
bool nodeBs(const char* id, dbCursor<dtsdb::bs>& bsCursor)
{
    dbCursor<dtsdb::nd> nd;
    dbQuery q;
    q = "id=", id;
    if (nd.select(q) < 1) {
        return false;
    }
    int ibs = nd->ibs;
    dbQuery qb;
    qb = "id=", ibs;
    return bsCursor.select(qb) >= 1;
}

} // namespace

int GetNodeBsNo_FromRTDB(const char* id)
{
    if (!id || !*id) {
        return 0;
    }
    dbCursor<dtsdb::nd> nd;
    dbQuery q;
    q = "id=", id;
    if (nd.select(q) < 1) {
        return 0;
    }
    return nd->ibs;
}

double GetNodeVol_FromRTDB(const char* id)
{
    dbCursor<dtsdb::bs> bs;
    return nodeBs(id, bs) ? bs->V : 0.0;
}

double GetNodeAngle_FromRTDB(const char* id)
{
    dbCursor<dtsdb::bs> bs;
    return nodeBs(id, bs) ? bs->Angle : 0.0;
}

const char* GetBsName_FromRTDB(const char* id)
{
    dbCursor<dtsdb::bs> bs;
    return nodeBs(id, bs) ? bs->name : "";
}

const char* GetBusName_FromRTDB(int ibs)
{
    dbCursor<dtsdb::bus> bus;
    dbQuery q;
    q = "ibs=", ibs;
    if (bus.select(q) < 1) {
        return "";
    }
    return bus->id;
}

double GetBasekV_FromRTDB(const char* name, bool bBus)
{
    dbCursor<dtsdb::kv> kv;
    if (bBus) {
        dbQuery q;
        q = "id=", name;
        if (kv.select(q) < 1) {
            ShowMessage("无效的母线名，取基准电压值发生错误！", MSG_ERROR);
            return 1.0;
        }
        return kv->Base_kV;
    }
    dbCursor<dtsdb::r_kv_nd> rel;
    dbQuery q;
    q = "nd_id=", name;
    if (rel.select(q) < 1) {
        ShowMessage("无效的节点名，取基准电压值发生错误！", MSG_ERROR);
        return 1.0;
    }
    dbQuery qk;
    qk = "id=", rel->kv_id;
    if (kv.select(qk) < 1) {
        ShowMessagef(MSG_ERROR, "节点'%s'对应的母线在实时库中不存在，取基准电压值发生错误！",
                     name ? name : "");
        return 1.0;
    }
    return kv->Base_kV;
}
