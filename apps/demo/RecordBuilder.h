#pragma once
// The demo's own step between extraction and the library's import: it creates the
// network records of the real-time database from a job's tables, as the suite's model
// builder would. The library only ever updates records that already stand.
//
// Nodes joined by closed, in-service breakers and switches form one calculation bus
// (bs), numbered from 0. Each bus name of the node table becomes a voltage level (kv)
// and each node a physical bus (bus) with its relation (r_kv_nd). Branch, generator,
// load, shunt and switch records get their real-time ids and their nodes and bus
// numbers; their values come later, from CLFCalDataToRTDB::ImportLDataToRTDB.

#include <QString>
#include <functional>

class QSqlDatabase;
class dbDatabase;

namespace demo {

struct RecordCounts
{
    int nodes = 0, buses = 0, levels = 0;
    int lines = 0, shunts = 0, transformers = 0, dcLines = 0;
    int generators = 0, loads = 0, switches = 0;
};

// Empties the network tables of `rtdb` and builds them from job `job`; commits. False
// with `error` set when a job table cannot be read. `progress`, when given, hears the job
// rows read so far (total 0) and then the records made of how many.
bool BuildNetworkRecords(QSqlDatabase* db, int job, dbDatabase* rtdb, RecordCounts& counts,
                         QString& error,
                         const std::function<void(long long done, long long total)>& progress = {});

} // namespace demo
