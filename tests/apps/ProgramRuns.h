#pragma once
// The study program run as its users run it: each argument list a process of its own, all
// started at once and waited for, with the exit status (-1 if it did not end normally) and
// what it wrote on standard output and standard error.

#include <QProcess>
#include <QStringList>
#include <memory>
#include <vector>

struct ProgramRun
{
    int status = -1;
    QString out, err;
};

inline std::vector<ProgramRun>
AtOnce(const QList<QStringList>& runs,
       const QProcessEnvironment& env = QProcessEnvironment::systemEnvironment())
{
    std::vector<std::unique_ptr<QProcess>> ps;
    for (const QStringList& args : runs) {
        ps.push_back(std::make_unique<QProcess>());
        ps.back()->setProcessEnvironment(env);
        ps.back()->start(QStringLiteral(CALCDATA_DEMO_PROGRAM), args);
    }
    std::vector<ProgramRun> ended;
    for (auto& p : ps) {
        ProgramRun e;
        if (p->waitForFinished(600000) && p->exitStatus() == QProcess::NormalExit) {
            e.status = p->exitCode();
        }
        e.out = QString::fromUtf8(p->readAllStandardOutput());
        e.err = QString::fromUtf8(p->readAllStandardError());
        ended.push_back(e);
    }
    return ended;
}
