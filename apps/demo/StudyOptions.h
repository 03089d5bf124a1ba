#pragma once
// The study program's command line: what it accepts, its help text, and the checks that
// turn a mistyped or contradictory command into one clear error before anything runs.

#include "ServerConnection.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QString>
#include <QStringList>

namespace demo {

struct StudyOptions
{
    QString networkFile; // the IEEE 14-bus sample unless told otherwise
    int syntheticBuses = 0;  // > 0: a generated network of that many buses instead
    bool ownServer = false;  // --server given: a server the user owns, not the private one
    dbserver::ServerAddress server;
    QString database; // empty: a fresh unique name
    bool keep = false;
    QString outDir; // empty: no result files
    QString saveCase; // empty: no MATPOWER case of the solved network
    QString reportDir; // empty: no report
    bool quiet = false;
    bool faithfulSaveBack = false; // the save-back's statements as the design writes them
    QString group = QStringLiteral("NEW"); // the data group the change is saved into
    // The design's statements throughout: one per record in the update back and the
    // results, and the save-back's as written (implies faithfulSaveBack).
    bool faithfulStatements = false;
    bool existing = false; // --database names a base database that stands: no network loaded
    int job = 0;
    QString scheme = QStringLiteral("DEMO");
    int waitSeconds = 300; // for the job, the group and tmp while other runs hold them
    bool allOrNothing = false;
};

class StudyCommandLine
{
public:
    enum Outcome { Run, ShowHelp, ShowVersion, Invalid };

    StudyCommandLine();
    // `arguments` as QCoreApplication::arguments() gives them, the program first.
    // `environmentPassword` stands for --password when the user gave none (MYSQL_PWD).
    Outcome parse(const QStringList& arguments, const QString& environmentPassword = QString());

    const StudyOptions& options() const { return m_options; }
    // Why the command line was refused, in one line.
    const QString& error() const { return m_error; }
    QString helpText() const { return m_parser.helpText(); }

private:
    bool invalid(const QString& why);

    QCommandLineParser m_parser;
    QCommandLineOption m_help, m_version, m_network, m_synthetic, m_server, m_user, m_password,
        m_database, m_keep, m_out, m_saveCase, m_report, m_quiet, m_faithful, m_group,
        m_faithfulStatements, m_existing, m_job, m_scheme, m_wait, m_allOrNothing;
    StudyOptions m_options;
    QString m_error;
};

} // namespace demo
