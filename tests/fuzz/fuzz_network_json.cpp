// The JSON network reader of the samples on any file content: it gives false with a
// reason, or true with a network whose lists hold one entry per element of the file's
// arrays.

#include "FuzzCheck.h"
#include "SampleNetwork.h"

#include <QByteArray>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <cstdint>
#include <unistd.h>

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
    FuzzCheck(ok == error.isEmpty(), "the result and the reason disagree");
    if (ok) {
        const QJsonObject o = QJsonDocument::fromJson(bytes).object();
        FuzzCheck(net.buses.size() == std::size_t(o.value("buses").toArray().size()), "buses lost");
        FuzzCheck(net.gens.size() == std::size_t(o.value("gens").toArray().size()), "gens lost");
        FuzzCheck(net.branches.size() == std::size_t(o.value("branches").toArray().size()),
                  "branches lost");
    }
    return 0;
}
