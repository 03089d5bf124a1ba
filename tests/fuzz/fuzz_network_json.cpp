// The JSON network reader of the samples on any file content: it gives false with a
// reason, or true with a network whose lists hold one entry per element of the file's
// arrays.

#include "SampleNetwork.h"

#include <QByteArray>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

void check(bool ok, const char* what)
{
    if (!ok) {
        std::fprintf(stderr, "fuzz_network_json: %s\n", what);
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const QString path = QString("/tmp/calcdata-fuzz-network-%1.json").arg(qint64(getpid()));
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    {
        QFile f(path);
        if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            return 0;
        }
        f.write(bytes);
    }
    samples::Network net;
    QString error;
    const bool ok = samples::ReadNetworkJson(path, net, error);
    QFile::remove(path);
    check(ok == error.isEmpty(), "the result and the reason disagree");
    if (ok) {
        const QJsonObject o = QJsonDocument::fromJson(bytes).object();
        check(net.buses.size() == std::size_t(o.value("buses").toArray().size()), "buses lost");
        check(net.gens.size() == std::size_t(o.value("gens").toArray().size()), "gens lost");
        check(net.branches.size() == std::size_t(o.value("branches").toArray().size()),
              "branches lost");
    }
    return 0;
}
