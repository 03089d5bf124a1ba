// The main of the benchmark programs that use the SQL server: Qt's application object for
// the SQL driver, and the server's general query log off before anything is measured.

#include "ServerConnection.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>
#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    QString error;
    if (!fixtures::TurnGeneralLogOff(&error)) {
        std::fprintf(stderr, "the server's general log stays as it is: %s\n", qPrintable(error));
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
