// network2sql: turns a network file in the JSON form of the IEEE samples into SQL that fills
// the base database's working copies (buses, nodes, stations, zones, lines, transformers,
// generators, loads, shunts, breakers and switches, in three data groups chosen by a scheme).
//
//   network2sql <network.json> <out.sql> [group] [scheme]
//
// The rows are those the sample writer puts into a scratch database on the project's
// private server (scripts/db.sh start), read back and written out as INSERT statements.

#include "SampleNetwork.h"
#include "ServerConnection.h"

#include <QCoreApplication>
#include <QFile>
#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 3 || args.size() > 5) {
        std::fprintf(stderr, "usage: network2sql <network.json> <out.sql> [group] [scheme]\n");
        return 2;
    }
    const QString group = args.size() > 3 ? args[3] : QStringLiteral("G1");
    const QString scheme = args.size() > 4 ? args[4] : QStringLiteral("SCH");
    samples::Network net;
    QString error;
    if (!samples::ReadNetworkJson(args[1], net, error)) {
        std::fprintf(stderr, "network2sql: %s\n", qPrintable(error));
        return 1;
    }
    dbserver::ScratchDatabase scratch(QStringLiteral("network2sql"));
    if (!scratch.ok()) {
        std::fprintf(stderr, "network2sql: no database (%s); is scripts/db.sh started?\n",
                     qPrintable(scratch.error()));
        return 1;
    }
    QByteArray sql = "-- " + net.name.toUtf8() + ": group " + group.toUtf8() + " (level 2), " +
                     group.toUtf8() + "_OLD (level 1) and " + group.toUtf8() +
                     "_ALT (not chosen) of scheme " + scheme.toUtf8() +
                     ".\n-- Made by samples/network2sql from the network's JSON file.\n";
    if (!samples::WriteNetworkToBaseDb(scratch.db(), net, group, scheme, error) ||
        !samples::DumpBaseTablesAsSql(scratch.db(), sql, error)) {
        std::fprintf(stderr, "network2sql: %s\n", qPrintable(error));
        return 1;
    }
    QFile out(args[2]);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate) || out.write(sql) != sql.size()) {
        std::fprintf(stderr, "network2sql: cannot write %s\n", qPrintable(args[2]));
        return 1;
    }
    return 0;
}
