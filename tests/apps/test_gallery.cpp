// The gallery's screenshot mode, as CI runs it: one picture of each of the library's
// dialogs, shown over the sample base database, and nothing left waiting for a user.

#include <QDir>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <set>

TEST(Gallery, ScreenshotModeSavesOnePictureOfEachDialog)
{
    QTemporaryDir dir;
    QProcess gallery;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_QPA_PLATFORM", "offscreen");
    gallery.setProcessEnvironment(env);
    gallery.start(CALCDATA_GALLERY_PROGRAM, {"--screenshot", dir.path()});
    ASSERT_TRUE(gallery.waitForFinished(600000));
    EXPECT_EQ(gallery.exitCode(), 0) << gallery.readAllStandardError().toStdString();

    const std::set<std::string> dialogs = {
        "branch_chooser", "bus_chooser",     "terminal_chooser", "case_chooser",
        "case_combo_box", "saveback_dialog", "caldata_grid",     "find_dialog",
        "curve_canvas",   "not_purchased"};
    std::set<std::string> saved;
    for (const QString& file : QDir(dir.path()).entryList({"*.png"})) {
        saved.insert(file.chopped(4).toStdString());
        // A dialog's face: a window's size, and more than its background.
        const QImage image(dir.filePath(file));
        EXPECT_TRUE(image.width() >= 200 && image.height() >= 80) << file.toStdString();
        std::set<QRgb> colours;
        for (int y = 0; y < image.height(); y += 3) {
            for (int x = 0; x < image.width(); x += 3) {
                colours.insert(image.pixel(x, y));
            }
        }
        EXPECT_GT(colours.size(), 8u) << file.toStdString();
    }
    EXPECT_EQ(saved, dialogs);
    EXPECT_EQ(QString::fromUtf8(gallery.readAllStandardOutput()).count(".png\n"), 10);
}
