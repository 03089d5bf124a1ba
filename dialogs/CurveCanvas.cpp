#include "dialogs/CurveCanvas.h"

#include <QGraphicsLineItem>
#include <QGraphicsSimpleTextItem>
#include <QPen>

CLegendRect::CLegendRect(QGraphicsScene* canvas)
{
    if (canvas) {
        canvas->addItem(this);
    }
}

CLegendRect::~CLegendRect() = default;

CDlgCurveCanvas::CDlgCurveCanvas(int w, int h)
    : QGraphicsScene(0, 0, w, h), m_pCurveData(new QList<SCurveData>())
{
}

CDlgCurveCanvas::~CDlgCurveCanvas()
{
    FreeCurveLines();
    FreeCoordLines();
    FreeCoordTexts();
    delete m_pLegend;
    // m_pCurveData stays: the canvas hands the list out and never takes it back.
}

void CDlgCurveCanvas::SetNumSteps(int x, int y)
{
    m_nStepsX = x;
    m_nStepsY = y;
}

void CDlgCurveCanvas::SetMaxMinValue(double maxX, double maxY, double minX, double minY)
{
    m_dMaxX = maxX;
    m_dMaxY = maxY;
    m_dMinX = minX;
    m_dMinY = minY;
}

void CDlgCurveCanvas::SetXYLabels(QString x, QString y)
{
    m_strXLabel = x;
    m_strYLabel = y;
}

int CDlgCurveCanvas::CalculateX(double x)
{
    return int((x / (m_dMaxX - m_dMinX)) * (width() - 80) + 40.0);
}

int CDlgCurveCanvas::CalculateY(double y)
{
    return int((height() - 40) - (y / (m_dMaxY - m_dMinY)) * (height() - 60));
}

void CDlgCurveCanvas::DrawCoord()
{
    FreeCoordTexts();
    if (!HasSteps()) {
        return;
    }
    const double dx = (m_dMaxX - m_dMinX) / m_nStepsX;
    const double dy = (m_dMaxY - m_dMinY) / m_nStepsY;
    const int left = Left(), right = Right(), top = Top(), bottom = Bottom();
    const int stepX = (right - left) / m_nStepsX;
    const int stepY = (bottom - top) / m_nStepsY;
    if (!m_strXLabel.isEmpty()) {
        AddTextItem(m_strXLabel, right - (right - left) / 3, bottom + 20);
    }
    for (int i = 0; i <= m_nStepsX; ++i) {
        AddTextItem(QString::asprintf("%4.1f", i * dx), left + i * stepX - 10, bottom + 5);
    }
    for (int i = 0; i <= m_nStepsY; ++i) {
        AddTextItem(QString::asprintf("%4.1f", i * dy), 10, bottom - i * stepY - 5);
    }
    if (!m_strYLabel.isEmpty()) {
        AddTextItem(m_strYLabel, 20, bottom - m_nStepsY * stepY - 18);
    }
}

void CDlgCurveCanvas::DrawCoordLines()
{
    FreeCoordLines();
    if (!HasSteps()) {
        return;
    }
    const int left = Left(), right = Right(), top = Top(), bottom = Bottom();
    // Integer step widths: the last line stops short of the plot area's edge by the
    // remainder of the division.
    const int stepY = (bottom - top) / m_nStepsY;
    for (int i = 0; i <= m_nStepsY; ++i) {
        AddCoordLine(left, bottom - i * stepY, right, bottom - i * stepY, Qt::black, 1,
                     Qt::SolidLine);
    }
    const int stepX = (right - left) / m_nStepsX;
    for (int i = 0; i <= m_nStepsX; ++i) {
        AddCoordLine(left + i * stepX, top, left + i * stepX, bottom, Qt::black, 1,
                     Qt::SolidLine);
    }
}

void CDlgCurveCanvas::DrawCurve()
{
    FreeCurveLines();
    // Points in list order, neither sorted nor clipped.
    bool first = true;
    int prevX = 0, prevY = 0;
    for (const SCurveData& point : *m_pCurveData) {
        const int x = CalculateX(point.dX), y = CalculateY(point.dY);
        if (!first) {
            AddCurveLine(prevX, prevY, x, y, Qt::red, 2, Qt::SolidLine);
        }
        first = false;
        prevX = x;
        prevY = y;
    }
}

void CDlgCurveCanvas::Refresh()
{
    DrawCoord();
    DrawCurve();
    update();
}

void CDlgCurveCanvas::AddCurveLegend(CLegendRect* p, int x, int y)
{
    // The item held so far goes, unless it is p itself, which is then only moved.
    if (m_pLegend != p) {
        delete m_pLegend;
    }
    m_pLegend = p;
    if (!p) {
        return;
    }
    if (p->scene() != this) {
        addItem(p);
    }
    p->setX(x);
    p->setY(y);
    p->show();
    update();
}

namespace {
QGraphicsLineItem* makeLine(int x1, int y1, int x2, int y2, const QColor& color, unsigned width,
                            Qt::PenStyle style)
{
    auto* line = new QGraphicsLineItem(x1, y1, x2, y2);
    line->setPen(QPen(QBrush(color), qreal(width), style));
    line->show();
    return line;
}
} // namespace

void CDlgCurveCanvas::AddCoordLine(int x1, int y1, int x2, int y2, const QColor& color,
                                   unsigned width, Qt::PenStyle style)
{
    QGraphicsLineItem* line = makeLine(x1, y1, x2, y2, color, width, style);
    addItem(line);
    m_CoordLines.append(line);
}

void CDlgCurveCanvas::AddCurveLine(int x1, int y1, int x2, int y2, const QColor& color,
                                   unsigned width, Qt::PenStyle style)
{
    QGraphicsLineItem* line = makeLine(x1, y1, x2, y2, color, width, style);
    addItem(line);
    m_CurveLines.append(line);
}

void CDlgCurveCanvas::AddTextItem(QString text, int x, int y)
{
    auto* item = new QGraphicsSimpleTextItem(text);
    addItem(item);
    item->setPos(x, y);
    item->show();
    m_CoordTexts.append(item);
}

void CDlgCurveCanvas::FreeItems(QList<QGraphicsItem*>& items)
{
    while (!items.isEmpty()) {
        delete items.takeFirst();
    }
}

void CDlgCurveCanvas::FreeCoordLines()
{
    FreeItems(m_CoordLines);
}

void CDlgCurveCanvas::FreeCurveLines()
{
    FreeItems(m_CurveLines);
}

void CDlgCurveCanvas::FreeCoordTexts()
{
    FreeItems(m_CoordTexts);
}
