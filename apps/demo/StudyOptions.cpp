#include "StudyOptions.h"

#include "common/GbkWidth.h"

#include <QRegularExpression>
#include <tuple>

namespace demo {

namespace {
constexpr int kSchemeBytes = 32; // the scheme's name as the load-flow transfer holds it
}

StudyCommandLine::StudyCommandLine()
    : m_help({"h", "help"}, "Show this help and exit."),
      m_version("version", "Show the program's version and exit."),
      m_network("network",
                "Study the network in FILE: a MATPOWER case file (version 2, FILE.m) or the "
                "JSON form of the IEEE samples (default: the IEEE 14-bus case, "
                "samples/ieee14.json).",
                "FILE"),
      m_synthetic("synthetic", "Study a generated meshed network of N buses (N >= 3) instead.",
                  "N"),
      m_server("server",
               "Use the MariaDB or MySQL server at HOST:PORT (port 3306 when left out), or a "
               "node of a Galera cluster, instead of the project's private server. The "
               "study's sessions are set up for the library (sql_mode, character set); on a "
               "server that compares table names by case the schema's spellings are used.",
               "HOST:PORT"),
      m_user("user", "Log in to --server as USER (default: the login name).", "USER"),
      m_password("password",
                 "Log in to --server with PASSWORD (default: the environment variable "
                 "MYSQL_PWD, else none).",
                 "PASSWORD"),
      m_database("database",
                 "Create the study's database under NAME (letters, digits, _ and $; it must "
                 "not exist yet). Default: a fresh name calcdata_study_...",
                 "NAME"),
      m_keep("keep", "Keep the study's database afterwards and say how to reach it."),
      m_out("out",
            "Write the results as CSV files into DIR (created when missing): buses.csv, "
            "branches.csv, generators.csv, switches.csv.",
            "DIR"),
      m_saveCase("save-case",
                 "Write the solved network as a MATPOWER case file (version 2) to FILE.m: "
                 "the buses' Vm and Va and the generators' Pg and Qg as solved, for another "
                 "tool to take up.",
                 "FILE.m"),
      m_report("report",
               "Write a report of the study into DIR (created when missing): report.html, "
               "which a browser shows, with its pictures beside it (the voltage profile "
               "against the buses' limits, the most loaded branches, the generators against "
               "their limits).",
               "DIR"),
      m_quiet("quiet", "Print nothing but errors (and, with --keep, where the database stays)."),
      m_faithful("faithful-saveback",
                 "Save back with the statements as the design writes them, which this server "
                 "stops at the two-winding transformers (default: the mended statement mode, "
                 "which sends the refused statements as intended and runs to the end)."),
      m_group("group",
              "Save the change back into the data group NAME (default: NEW): at most 20 bytes "
              "as the base tables count them, a Chinese character counting 2.",
              "NAME"),
      m_faithfulStatements(
          "faithful-statements",
          "Send the statements as the design writes them throughout: one per record in the "
          "update back (UpdateLDataFromRTDB) and the results (ImportRTDBDataToLFResultDB, in "
          "its batches of 100), and the save-back's as with --faithful-saveback. Default: the "
          "batched write mode, in which each family's rows go to the server in one bulk load "
          "and leave the same tables, and the mended save-back."),
      m_existing("existing",
                 "Study the base database that --database NAME names, as it stands: no network "
                 "is loaded, and it must hold the base tables and the job's tables. Several "
                 "engineers' studies run side by side on one database this way, each with its "
                 "own --job and --group (README: Several users on one database)."),
      m_job("job", "Extract into job N, and store its results and records under it (default: 0).",
            "N"),
      m_scheme("scheme",
               "Extract by the calculation scheme NAME (default: DEMO, the scheme that a loaded "
               "network gets): at most 32 bytes, a Chinese character counting 2.",
               "NAME"),
      m_wait("wait",
             "Wait up to SECONDS for the job, the data group or the table tmp while another "
             "run holds them (default: 300), then end with status 3 having written nothing.",
             "SECONDS"),
      m_allOrNothing("all-or-nothing",
                     "Save back in one transaction, undone whole when any part fails.")
{
    m_parser.setApplicationDescription(
        "Runs a whole load-flow study with the calcdata library: the network into a fresh "
        "database, extraction by scheme into job 0, the real-time records, a Newton-Raphson "
        "load flow, the results into the result tables, and a change saved back into a new "
        "data group.\n"
        "Exit status: 0 done; 1 a step of the study failed; 2 a wrong option, a network file "
        "that cannot be read, or a server that cannot be used (nothing is left behind on it); "
        "3 another run held the job, the data group or the table tmp beyond --wait, or the "
        "new data group exists already (nothing was written).");
    m_parser.addOptions({m_help, m_version, m_network, m_synthetic, m_server, m_user, m_password,
                         m_database, m_keep, m_out, m_saveCase, m_report, m_quiet, m_faithful, m_group,
                         m_faithfulStatements, m_existing, m_job, m_scheme, m_wait,
                         m_allOrNothing});
}

bool StudyCommandLine::invalid(const QString& why)
{
    m_error = why;
    return false;
}

StudyCommandLine::Outcome StudyCommandLine::parse(const QStringList& arguments,
                                                  const QString& environmentPassword)
{
    m_options = StudyOptions();
    m_error.clear();
    if (!m_parser.parse(arguments)) {
        m_error = m_parser.errorText() + QStringLiteral(" (see --help)");
        return Invalid;
    }
    if (m_parser.isSet(m_help)) {
        return ShowHelp;
    }
    if (m_parser.isSet(m_version)) {
        return ShowVersion;
    }
    auto check = [&]() -> bool {
        if (!m_parser.positionalArguments().isEmpty()) {
            return invalid(QStringLiteral("unexpected argument '%1' (see --help)")
                               .arg(m_parser.positionalArguments().first()));
        }
        StudyOptions& o = m_options;
        if (m_parser.isSet(m_network) && m_parser.isSet(m_synthetic)) {
            return invalid(QStringLiteral("give either --network or --synthetic, not both"));
        }
        o.networkFile = m_parser.value(m_network);
        if (m_parser.isSet(m_synthetic)) {
            bool ok = false;
            o.syntheticBuses = m_parser.value(m_synthetic).toInt(&ok);
            if (!ok || o.syntheticBuses < 3) {
                return invalid(QStringLiteral("--synthetic needs a whole number of buses, at "
                                              "least 3, not '%1'")
                                   .arg(m_parser.value(m_synthetic)));
            }
        }
        o.ownServer = m_parser.isSet(m_server);
        if (!o.ownServer && (m_parser.isSet(m_user) || m_parser.isSet(m_password))) {
            return invalid(QStringLiteral("--user and --password go with --server (the "
                                          "private server has a login of its own)"));
        }
        if (o.ownServer) {
            // HOST, HOST:PORT or [IPV6]:PORT.
            static const QRegularExpression form(
                QStringLiteral("^(\\[[0-9A-Fa-f:.]+\\]|[^:\\[\\]\\s]+)(?::(\\d{1,5}))?$"));
            const QString text = m_parser.value(m_server);
            const QRegularExpressionMatch m = form.match(text);
            const int port = m.hasMatch() && !m.captured(2).isEmpty() ? m.captured(2).toInt()
                                                                    : 3306;
            if (!m.hasMatch() || port < 1 || port > 65535) {
                return invalid(
                    QStringLiteral("--server needs HOST:PORT (a port from 1 to 65535), not '%1'")
                        .arg(text));
            }
            QString host = m.captured(1);
            if (host.startsWith('[')) {
                host = host.mid(1, host.size() - 2);
            }
            o.server.host = host;
            o.server.port = port;
            o.server.user = m_parser.isSet(m_user) ? m_parser.value(m_user)
                                                   : qEnvironmentVariable("USER", "root");
            o.server.password =
                m_parser.isSet(m_password) ? m_parser.value(m_password) : environmentPassword;
        } else {
            o.server = dbserver::ServerAddress::fromEnvironment();
        }
        o.database = m_parser.value(m_database);
        static const QRegularExpression name(QStringLiteral("^[A-Za-z0-9_$]{1,64}$"));
        if (m_parser.isSet(m_database) && !name.match(o.database).hasMatch()) {
            return invalid(QStringLiteral("--database needs a name of 1 to 64 letters, digits, "
                                          "_ or $, not '%1'")
                               .arg(o.database));
        }
        o.keep = m_parser.isSet(m_keep);
        if (m_parser.isSet(m_out) && m_parser.value(m_out).isEmpty()) {
            return invalid(QStringLiteral("--out needs a folder"));
        }
        o.outDir = m_parser.value(m_out);
        o.saveCase = m_parser.value(m_saveCase);
        if (m_parser.isSet(m_saveCase) && !o.saveCase.endsWith(QLatin1String(".m"))) {
            return invalid(QStringLiteral("--save-case needs a file name ending in .m, not '%1'")
                               .arg(o.saveCase));
        }
        if (m_parser.isSet(m_report) && m_parser.value(m_report).isEmpty()) {
            return invalid(QStringLiteral("--report needs a folder"));
        }
        o.reportDir = m_parser.value(m_report);
        o.quiet = m_parser.isSet(m_quiet);
        o.faithfulStatements = m_parser.isSet(m_faithfulStatements);
        o.faithfulSaveBack = m_parser.isSet(m_faithful) || o.faithfulStatements;
        if (m_parser.isSet(m_group)) {
            o.group = m_parser.value(m_group);
            // Refused here, before anything is made: the library would refuse it only after
            // the whole study, and the save-back would then be lost.
            if (o.group.isEmpty() || GbkWidth(o.group) > kNameBytes) {
                return invalid(QStringLiteral("--group needs a data group's name of 1 to %1 bytes "
                                              "as the base tables count them (a Chinese "
                                              "character 2, so at most 10 of them), not '%2' "
                                              "(%3 bytes)")
                                   .arg(kNameBytes)
                                   .arg(o.group)
                                   .arg(GbkWidth(o.group)));
            }
        }
        o.existing = m_parser.isSet(m_existing);
        if (o.existing && (!m_parser.isSet(m_database) || o.syntheticBuses > 0 ||
                           !o.networkFile.isEmpty() || !o.saveCase.isEmpty() || o.keep ||
                           !o.reportDir.isEmpty())) {
            return invalid(QStringLiteral("--existing needs --database NAME and studies the "
                                          "database as it stands: no --network, --synthetic, "
                                          "--save-case, --report (it draws the network file) "
                                          "or --keep"));
        }
        o.allOrNothing = m_parser.isSet(m_allOrNothing);
        // Whole numbers within their range, each checked alike.
        for (auto [option, target, least] :
             {std::make_tuple(&m_job, &o.job, 0), std::make_tuple(&m_wait, &o.waitSeconds, 0)}) {
            if (!m_parser.isSet(*option)) {
                continue;
            }
            bool ok = false;
            *target = m_parser.value(*option).toInt(&ok);
            if (!ok || *target < least) {
                return invalid(QStringLiteral("--%1 needs a whole number of at least %2, not '%3'")
                                   .arg(option->names().first())
                                   .arg(least)
                                   .arg(m_parser.value(*option)));
            }
        }
        if (m_parser.isSet(m_scheme)) {
            o.scheme = m_parser.value(m_scheme);
            if (o.scheme.isEmpty() || GbkWidth(o.scheme) > kSchemeBytes) {
                return invalid(QStringLiteral("--scheme needs a scheme's name of 1 to %1 bytes as "
                                              "the base tables count them, not '%2' (%3 bytes)")
                                   .arg(kSchemeBytes)
                                   .arg(o.scheme)
                                   .arg(GbkWidth(o.scheme)));
            }
        }
        return true;
    };
    return check() ? Run : Invalid;
}

} // namespace demo
