// The gallery: every dialog of the library in a real window, over a sample base database
// that it makes on the private server (the IEEE 14-bus case unless told otherwise,
// extracted into job 0, solved, its results stored and a change saved back into group
// NEW, with a few cases in LF_CASE). Without options it shows a list of the dialogs;
// with --screenshot DIR it opens each one in turn, saves its picture as DIR/<name>.png
// and exits, which needs no display (the offscreen platform).
//
// Exit status: 0 done; 1 a dialog could not be shown or saved; 2 a wrong option, a
// network file that cannot be read, or a server that cannot be used.

#include "Gallery.h"
#include "SampleNetwork.h"
#include "ServerConnection.h"
#include "ShowDialog.h"
#include "Study.h"
#include "StudyReport.h"
#include "common/ModalBox.h"
#include "rtdb/rtdb.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDialog>
#include <QDir>
#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

const char* const kProgram = "calcdata_gallery";

int refuse(const QString& why)
{
    std::fprintf(stderr, "%s: %s\n", kProgram, qPrintable(why));
    return 2;
}

// Without a display the screenshots are taken offscreen; a window needs a display.
bool PrepareDisplay(int argc, char** argv)
{
    bool screenshots = false;
    for (int k = 1; k < argc; ++k) {
        screenshots = screenshots || std::strncmp(argv[k], "--screenshot", 12) == 0 ||
                      std::strcmp(argv[k], "--list") == 0 || std::strcmp(argv[k], "-h") == 0 ||
                      std::strcmp(argv[k], "--help") == 0;
    }
    const bool display = !qEnvironmentVariableIsEmpty("DISPLAY") ||
                         !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && !display) {
        if (!screenshots) {
            std::fprintf(stderr,
                         "%s: no display: run it on a desktop, under xvfb-run, or with "
                         "--screenshot DIR\n",
                         kProgram);
            return false;
        }
        report::UseOffscreenPlatform();
    }
    report::UsePrivateRuntimeFolder();
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    if (!PrepareDisplay(argc, argv)) {
        return 2;
    }
    QApplication app(argc, argv);
    QCoreApplication::setApplicationName(kProgram);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Shows each dialog of the calcdata library over a sample base database made on the "
        "project's private server (scripts/db.sh start).");
    parser.addHelpOption();
    const QCommandLineOption screenshot(
        "screenshot", "Open each dialog in turn, save its picture as DIR/<name>.png and exit.",
        "DIR");
    const QCommandLineOption only("only", "Only the dialogs named (see --list), by commas.",
                                  "NAMES");
    const QCommandLineOption list("list", "List the dialogs' names and exit.");
    const QCommandLineOption network(
        "network",
        "Make the sample base database of the network in FILE, in the JSON form of the "
        "samples (default: samples/ieee14.json).",
        "FILE");
    parser.addOptions({screenshot, only, list, network});
    if (!parser.parse(app.arguments())) {
        return refuse(parser.errorText() + " (see --help)");
    }
    if (parser.isSet("help")) {
        std::printf("%s", qPrintable(parser.helpText()));
        return 0;
    }
    std::vector<gallery::Entry> entries = gallery::Entries();
    if (parser.isSet(list)) {
        for (const gallery::Entry& e : entries) {
            std::printf("%-18s %s\n", qPrintable(e.name), qPrintable(e.title));
        }
        return 0;
    }
    if (parser.isSet(only)) {
        const QStringList names = parser.value(only).split(',', Qt::SkipEmptyParts);
        std::vector<gallery::Entry> chosen;
        for (const QString& name : names) {
            const auto e = std::find_if(entries.begin(), entries.end(),
                                        [&](const gallery::Entry& e) { return e.name == name; });
            if (e == entries.end()) {
                return refuse(QStringLiteral("no dialog called '%1' (see --list)").arg(name));
            }
            chosen.push_back(*e);
        }
        entries = chosen;
    }

    samples::Network net;
    QString error;
    const QString file = parser.isSet(network) ? parser.value(network)
                                               : QStringLiteral(CALCDATA_SAMPLES_DIR
                                                                "/ieee14.json");
    if (!samples::ReadNetworkJson(file, net, error)) {
        return refuse(error);
    }
    std::fprintf(stderr, "%s: making the sample base database of %s on the private server\n",
                 kProgram, qPrintable(net.name));
    dbserver::ScratchDatabase scratch(QStringLiteral("calcdata_gallery"));
    if (!scratch.ok()) {
        return refuse(scratch.error() + " (start the server with: bash scripts/db.sh start)");
    }
    dbDatabase rtdb;
    rtdb.open("gallery");
    demo::Study study(scratch.db(), &rtdb);
    // The study's steps, the cases a module would have named, the voltages for the canvas.
    std::vector<report::ProfileBus> profile;
    int unsolved = 0;
    if (!study.LoadNetwork(net) || !study.Extract() || !study.BuildAndImport() ||
        !study.Solve() || !study.StoreResults() || !study.ChangeAndSaveBack("NEW") ||
        !scratch.exec(QStringLiteral(
            "INSERT INTO LF_CASE(Case_No, Case_Name, SCHEME, Note) VALUES "
            "(1, '夏季大方式', 'DEMO', ''), (2, '夏季小方式', 'DEMO', ''), "
            "(3, '冬季大方式', 'DEMO', ''), (4, 'N-1 检修方式', 'DEMO', '')")) ||
        !report::ReadVoltageProfile(scratch.db(), demo::Study::kJob, net, profile, unsolved, error)) {
        return refuse(QStringLiteral("cannot make the sample base database: %1")
                          .arg(!study.error().isEmpty() ? study.error() : error));
    }

    gallery::Context context;
    context.db = scratch.db();
    context.profile = &profile;
    if (!parser.isSet(screenshot)) {
        context.beforeExec = [](QDialog*) {};
        return gallery::RunGalleryWindow(entries, context);
    }
    // Nothing may wait for a user: boxes become lines on standard error.
    SetModalBoxHook([](ModalBoxKind, const QString& caption, const QString& text) {
        std::fprintf(stderr, "%s: box %s: %s\n", kProgram, qPrintable(caption), qPrintable(text));
    });
    const QDir dir(parser.value(screenshot));
    int failed = 0;
    for (const gallery::Entry& e : entries) {
        const QString path = dir.absoluteFilePath(e.name + QStringLiteral(".png"));
        bool saved = false;
        context.beforeExec = [&](QDialog* dialog) {
            gallery::WhenShown(dialog, [&saved, &path, dialog] {
                saved = gallery::SaveScreenshot(dialog, path);
            });
        };
        e.open(context);
        if (saved) {
            std::printf("%s\n", qPrintable(path));
        } else {
            std::fprintf(stderr, "%s: %s could not be shown or saved\n", kProgram,
                         qPrintable(e.name));
            ++failed;
        }
    }
    rtdb.close();
    return failed ? 1 : 0;
}
