// The demo: runs the library against the private MariaDB on a database of its own.
// For now it shows that the schema loads, that a multi-row insert reaches the server
// and that the base power can be read back.

#include "ServerConnection.h"
#include "common/BaseDbLookups.h"
#include "common/Feedback.h"
#include "common/SQLMultiInsert.h"
#include "platform/WinDockFeedback.h"

#include <QCoreApplication>
#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    // Messages as the message window would show them: level, then text.
    WinDockFeedback::SetSink(
        [](const char* text, int level) { std::printf("  [%2d] %s\n", level, text); });

    fixtures::ScratchDatabase scratch(QStringLiteral("demo"));
    if (!scratch.ok()) {
        std::fprintf(stderr, "demo: %s\n", qPrintable(scratch.error()));
        return 1;
    }
    std::printf("schema loaded into database %s\n", qPrintable(scratch.name()));

    SQLMultiInsert ins(scratch.db(), 200);
    ins.SetTableName("CDB_SBBAK");
    ins.SetFldNamelst("Base_Mva");
    ins.AddRecord("100");
    if (!ins.exec()) {
        std::fprintf(stderr, "demo: the multi-row insert failed\n");
        return 1;
    }
    // GetSB_FromDB falls back to 1.0 when the table is empty, so 100 proves the row landed.
    const double sb = GetSB_FromDB(scratch.db());
    std::printf("base power: %.1f MVA\n", sb);
    if (sb != 100.0) {
        std::fprintf(stderr, "demo: the base power read back is not the one written\n");
        return 1;
    }
    ShowMessagef(MSG_PROGRESS, "演示完成。");
    return 0;
}
