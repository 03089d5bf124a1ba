#pragma once
// The study report's pictures, drawn offscreen into images of a size that reads on a
// laptop screen: the voltage profile on the library's curve canvas, and bar charts of the
// branches' loading and the generators' outputs with Qt's painter. Texts use the CJK font
// the project installs, so Chinese names show. Each kind of mark has a colour of its own
// (below), used for nothing else in its picture.

#include <QColor>
#include <QImage>
#include <QString>
#include <memory>
#include <vector>

class CDlgCurveCanvas;

namespace report {

// Before the application is made: Qt's offscreen platform unless the caller chose one, and
// a private runtime folder.
void UseOffscreenPlatform();
// A private runtime folder where the session gives none (Qt would warn and make one).
void UsePrivateRuntimeFolder();

namespace colour {
const QColor voltage(Qt::red); // the canvas's own curve colour
const QColor limit(0, 0, 255);
const QColor outside(255, 128, 0);
const QColor bar(70, 110, 170);
const QColor overBar(200, 30, 30);
const QColor range(200, 200, 200);
const QColor output(0, 140, 60);
} // namespace colour

// One bus of the profile, in the order of the network file.
struct ProfileBus
{
    QString name;
    double v = 0, vmin = 0, vmax = 0;
    bool outside = false;
};

// The voltages by bus against their limits, the buses outside them marked (the farthest
// `namedAtMost` named). Up to about one bus per two pixels a curve through each bus;
// beyond, an envelope: the lowest to the highest voltage of the buses in each pixel
// column, and the tightest limits among them.
QImage DrawVoltageProfile(const std::vector<ProfileBus>& buses, int namedAtMost = 12);
// The same profile as the canvas itself, drawn, to be shown in a view. It keeps a pointer
// to `buses`, which must outlive it.
std::unique_ptr<CDlgCurveCanvas> MakeVoltageProfileCanvas(const std::vector<ProfileBus>& buses,
                                                          int namedAtMost = 12);

struct Bar
{
    QString label;
    double value = 0;
    bool over = false; // drawn in the colour of an overload
};

// Horizontal bars, top to bottom in the given order, on an axis from 0; `markAt` > 0
// draws a dashed line there (the rating), with `markText` beside it.
QImage DrawBarChart(const std::vector<Bar>& bars, const QString& axisTitle, double markAt = 0,
                    const QString& markText = QString());

struct GeneratorRange
{
    QString name;
    double p = 0, pmin = 0, pmax = 0; // MW
    double q = 0, qmin = 0, qmax = 0; // Mvar
};

// For each generator its P and Q beside each other: the range between its limits, and
// its output as a mark, in the colour of an overload where it lies outside them.
QImage DrawGeneratorChart(const std::vector<GeneratorRange>& gens);

} // namespace report
