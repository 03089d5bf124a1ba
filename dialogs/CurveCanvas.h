#pragma once
// A scene that draws one x-y curve over a labelled grid. A caller fills the point
// list, sets the scale and the number of steps, draws the grid once and asks for the
// drawing. All geometry is integer pixel arithmetic with fixed margins: the plot area
// runs from 40 to width() - 40 across and from 20 to height() - 40 down.

#include <QColor>
#include <QGraphicsRectItem>
#include <QGraphicsScene>
#include <QList>
#include <QString>

// One point of the curve.
struct SCurveData
{
    double dX;
    double dY;
};

// The legend item: a rectangle on the canvas that callers derive from or use as it is.
class CLegendRect : public QGraphicsRectItem
{
public:
    // The item is put on `canvas`.
    explicit CLegendRect(QGraphicsScene* canvas);
    ~CLegendRect() override;
};

class CDlgCurveCanvas : public QGraphicsScene
{
    Q_OBJECT
public:
    CDlgCurveCanvas(int w, int h);
    // Frees the curve, the grid, the texts and the legend; not the point list.
    ~CDlgCurveCanvas() override;

    // The numbers of x and y intervals. They divide: set them before any drawing.
    void SetNumSteps(int x, int y);
    void SetMaxMinValue(double maxX, double maxY, double minX, double minY);
    void SetXYLabels(QString x, QString y);
    // The list itself, filled in place by the caller. The canvas never frees it.
    QList<SCurveData>* GetCurveDataList() { return m_pCurveData; }

    // Tick and axis texts. Ticks count from 0, not from the minimum, in step with
    // CalculateX and CalculateY.
    void DrawCoord();
    // The grid, drawn once by the caller: Refresh leaves it alone.
    void DrawCoordLines();

protected:
    virtual void DrawCurve();
    void Refresh();
    // Replaces the legend by p (deleting the one held before), places it at x, y and
    // shows it. The canvas owns p from here on.
    void AddCurveLegend(CLegendRect* p, int x, int y);
    // Pixel of a value. Only the width of the range enters, not its minimum, so a
    // range that does not start at 0 moves the curve right or up; the scale spans the
    // plot area in floating point and is truncated at the end, while the grid uses
    // integer step widths, so a curve can drift from the grid by the step remainders.
    int CalculateX(double x);
    int CalculateY(double y);
    void AddCoordLine(int x1, int y1, int x2, int y2, const QColor& color, unsigned width,
                      Qt::PenStyle style);
    void AddCurveLine(int x1, int y1, int x2, int y2, const QColor& color, unsigned width,
                      Qt::PenStyle style);
    void AddTextItem(QString text, int x, int y);
    void FreeCoordLines();
    void FreeCurveLines();
    void FreeCoordTexts();

    QList<QGraphicsItem*> m_CoordLines; // owned
    QList<QGraphicsItem*> m_CoordTexts; // owned
    QList<QGraphicsItem*> m_CurveLines; // owned
    double m_dMaxX = 1.0;
    double m_dMaxY = 1.0;
    double m_dMinX = 0.0;
    double m_dMinY = 0.0;
    CLegendRect* m_pLegend = nullptr; // owned
    int m_nStepsX = 0;
    int m_nStepsY = 0;
    QList<SCurveData>* m_pCurveData;
    QString m_strXLabel;
    QString m_strYLabel;

private:
    int Left() const { return 40; }
    int Right() const { return int(width()) - 40; }
    int Top() const { return 20; }
    int Bottom() const { return int(height()) - 40; }
    // Step counts below 1 (SetNumSteps not called) leave the grid and the ticks
    // undrawn rather than dividing by zero.
    bool HasSteps() const { return m_nStepsX > 0 && m_nStepsY > 0; }
    static void FreeItems(QList<QGraphicsItem*>& items);
};
