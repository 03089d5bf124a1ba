// The curve canvas (scale, grid, ticks, curve, legend, redraws) and the notice that a
// module was not purchased.

#include "DialogDriver.h"
#include "dialogs/CurveCanvas.h"
#include "dialogs/DlgNoBuy.h"

#include <QGraphicsLineItem>
#include <QGraphicsSimpleTextItem>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QPen>
#include <QTest>
#include <gtest/gtest.h>

using namespace dialogtest;

namespace {

class Canvas : public CDlgCurveCanvas
{
public:
    using CDlgCurveCanvas::AddCurveLegend;
    using CDlgCurveCanvas::CalculateX;
    using CDlgCurveCanvas::CDlgCurveCanvas;
    using CDlgCurveCanvas::DrawCurve;
    using CDlgCurveCanvas::Refresh;

    QList<QGraphicsItem*> Grid() const { return m_CoordLines; }
    QList<QGraphicsItem*> Curve() const { return m_CurveLines; }
    // Text and position of each tick or axis text, "text@x,y".
    QStringList Texts() const
    {
        QStringList out;
        for (QGraphicsItem* item : m_CoordTexts) {
            const auto* text = static_cast<QGraphicsSimpleTextItem*>(item);
            out << QString("%1@%2,%3").arg(text->text()).arg(text->x()).arg(text->y());
        }
        return out;
    }
};

QLineF Line(QGraphicsItem* item)
{
    return static_cast<QGraphicsLineItem*>(item)->line();
}

class Legend : public CLegendRect
{
public:
    Legend(QGraphicsScene* canvas, bool* gone) : CLegendRect(canvas), m_gone(gone) {}
    ~Legend() override { *m_gone = true; }

private:
    bool* m_gone;
};

} // namespace

// Where the scale puts a point the curve's segments show (below); here its truncation, and
// the range's minimum, which it does not subtract.
TEST(CurveCanvas, GridScaleAndTicksAreWholePixelsFromZeroAndRedrawsNeverDouble)
{
    Canvas canvas(400, 300);
    canvas.SetNumSteps(3, 4);
    canvas.SetMaxMinValue(10, 10, 0, 0);
    EXPECT_EQ(canvas.CalculateX(10.0 / 3), 146) << "truncated: 146.67";
    canvas.DrawCoordLines();
    QList<QLineF> lines;
    for (QGraphicsItem* item : canvas.Grid()) {
        lines << Line(item);
        EXPECT_EQ(static_cast<QGraphicsLineItem*>(item)->pen(), QPen(Qt::black, 1));
    }
    EXPECT_EQ(lines, (QList<QLineF>{{40, 260, 360, 260}, {40, 200, 360, 200}, {40, 140, 360, 140},
                                    {40, 80, 360, 80},   {40, 20, 360, 20},   {40, 20, 40, 260},
                                    {146, 20, 146, 260}, {252, 20, 252, 260}, {358, 20, 358, 260}}))
        << "stepX is 106: the last vertical line stands at 358, not at 360";

    canvas.SetXYLabels("t (s)", "V (pu)");
    canvas.DrawCoord();
    EXPECT_EQ(canvas.Texts(), (QStringList{"t (s)@254,280", " 0.0@30,265", " 3.3@136,265",
                                           " 6.7@242,265", "10.0@348,265", " 0.0@10,255",
                                           " 2.5@10,195", " 5.0@10,135", " 7.5@10,75", "10.0@10,15",
                                           "V (pu)@20,2"}));
    // A range from 5: the ticks still count from 0. Without an x label, no axis text.
    canvas.SetMaxMinValue(10, 10, 5, 0);
    canvas.SetXYLabels("", "V");
    canvas.DrawCoord();
    EXPECT_EQ(canvas.Texts(), (QStringList{" 0.0@30,265", " 1.7@136,265", " 3.3@242,265",
                                           " 5.0@348,265", " 0.0@10,255", " 2.5@10,195",
                                           " 5.0@10,135", " 7.5@10,75", "10.0@10,15", "V@20,2"}));
    EXPECT_EQ(canvas.CalculateX(5.0), 360) << "(5 / 5) * 320 + 40: the minimum is not subtracted";

    canvas.SetNumSteps(2, 2);
    canvas.SetMaxMinValue(10, 10, 0, 0);
    canvas.GetCurveDataList()->append({5, 5});
    canvas.GetCurveDataList()->append({0, 0});
    canvas.GetCurveDataList()->append({10, 10});
    canvas.DrawCurve();
    canvas.DrawCurve();
    ASSERT_EQ(canvas.Curve().size(), 2) << "three points, two segments: a redraw replaces them";
    EXPECT_EQ(Line(canvas.Curve()[0]), QLineF(200, 140, 40, 260)) << "list order, unsorted";
    EXPECT_EQ(Line(canvas.Curve()[1]), QLineF(40, 260, 360, 20));
    EXPECT_EQ(static_cast<QGraphicsLineItem*>(canvas.Curve()[0])->pen(), QPen(Qt::red, 2));

    canvas.DrawCoordLines();
    const auto grid = canvas.Grid();
    const int items = canvas.items().size();
    canvas.Refresh();
    canvas.Refresh();
    EXPECT_EQ(canvas.Grid(), grid) << "Refresh leaves the grid alone";
    EXPECT_EQ(canvas.items().size(), items - 3) << "10 texts above become 3 + 3 ticks and V";

    bool firstGone = false, secondGone = false;
    auto* first = new Legend(&canvas, &firstGone);
    canvas.AddCurveLegend(first, 300, 30);
    EXPECT_EQ(first->pos(), QPointF(300, 30));
    canvas.AddCurveLegend(new Legend(&canvas, &secondGone), 310, 40);
    EXPECT_TRUE(firstGone) << "the legend held before is deleted";
    EXPECT_FALSE(secondGone);

    // The picture, for the eye.
    canvas.SetXYLabels("时间 (s)", "电压 (pu)");
    canvas.DrawCoord();
    QImage image(400, 300, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    canvas.render(&painter);
    painter.end();
    image.save(ScreenshotPath("curve_canvas"));
}

TEST(NotPurchased, NamesTheModuleAndClosesOnOk)
{
    DlgNoBuy dlg("暂态稳定计算");
    EXPECT_TRUE(dlg.isModal());
    EXPECT_TRUE(dlg.textLabel_Notice->text().contains("暂态稳定计算"));
    WhenShown(&dlg, [&] {
        SaveScreenshot(&dlg, "not_purchased");
        QTest::keyClick(&dlg, Qt::Key_Return);
    });
    EXPECT_EQ(dlg.exec(), QDialog::Accepted) << "Return presses the default OK";
}
