#include "ReportCharts.h"

#include "dialogs/CurveCanvas.h"

#include <QFontDatabase>
#include <QFontMetrics>
#include <QGraphicsLineItem>
#include <QGraphicsSimpleTextItem>
#include <QPainter>
#include <QTemporaryDir>
#include <algorithm>
#include <cmath>

namespace report {
namespace {

// The project's CJK font where it is installed (install-deps), else Qt's default, which
// on this platform falls back to any font that has the glyphs.
QFont ReportFont(int pixels)
{
    static const bool cjk =
        QFontDatabase::families().contains(QStringLiteral("WenQuanYi Micro Hei"));
    QFont font = cjk ? QFont(QStringLiteral("WenQuanYi Micro Hei")) : QFont();
    font.setPixelSize(pixels);
    return font;
}

// The smallest step of 1, 2, 2.5 or 5 times a power of ten that cuts `span` into at most
// `parts` parts.
double NiceStep(double span, int parts)
{
    if (!(span > 0)) {
        return 1;
    }
    const double raw = span / parts;
    const double power = std::pow(10.0, std::floor(std::log10(raw)));
    for (double m : {1.0, 2.0, 2.5, 5.0}) {
        if (m * power >= raw * (1 - 1e-12)) {
            return m * power;
        }
    }
    return 10 * power;
}

QString TickText(double value, double step)
{
    int decimals = 0;
    while (decimals < 6 && std::abs(step * std::pow(10.0, decimals) -
                                    std::round(step * std::pow(10.0, decimals))) > 1e-9) {
        ++decimals;
    }
    return QString::number(std::abs(value) < step * 1e-9 ? 0.0 : value, 'f', decimals);
}

QImage WhiteImage(int w, int h)
{
    QImage image(w, h, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

// ---- the voltage profile, on the curve canvas ----

// The canvas's scale counts from 0 and its grid steps are whole pixels: the profile plots
// each voltage above the bottom of its range, writes its own tick texts, and takes a plot
// area that the steps divide exactly, so that the curve stays on the grid.
struct ProfileAxes
{
    double low = 0, stepV = 0.01;
    int stepsV = 1;
    double stepBus = 1;
    int stepsBus = 1;
    int width = 0, height = 0;

    explicit ProfileAxes(const std::vector<ProfileBus>& buses)
    {
        double lo = 1e300, hi = -1e300;
        for (const ProfileBus& b : buses) {
            lo = std::min({lo, b.v, b.vmin});
            hi = std::max({hi, b.v, b.vmax});
        }
        if (buses.empty()) {
            lo = 0.9;
            hi = 1.1;
        }
        // Room above the highest value for the name of a bus marked there.
        stepV = NiceStep(hi - lo, 8);
        low = std::floor(lo / stepV) * stepV;
        stepsV = std::max(1, int(std::ceil((hi + 0.6 * stepV - low) / stepV - 1e-9)));
        const int positions = int(buses.size()) + 1; // bus k at position k, 1 to n
        if (positions <= 20) {
            stepsBus = positions;
        } else {
            // The whole step (1, 2 or 5 times a power of ten) of at most 12 intervals that
            // wastes the least width after the last bus.
            stepsBus = 0;
            for (double power = 1; stepsBus == 0 || power * 10 <= positions; power *= 10) {
                for (double m : {1.0, 2.0, 5.0}) {
                    const int steps = int(std::ceil(positions / (m * power)));
                    if (steps <= 12 && (stepsBus == 0 || steps * m * power <
                                                             stepsBus * stepBus)) {
                        stepBus = m * power;
                        stepsBus = steps;
                    }
                }
            }
        }
        width = 80 + 920 / stepsBus * stepsBus;
        height = 60 + 320 / stepsV * stepsV;
    }
};

// The legend, in the top margin: a swatch and a text for each kind of mark.
class ProfileLegend : public CLegendRect
{
public:
    ProfileLegend(QGraphicsScene* canvas, const QFont& font) : CLegendRect(canvas)
    {
        setPen(Qt::NoPen);
        int x = 0;
        auto entry = [&](const QString& text) {
            auto* label = new QGraphicsSimpleTextItem(text, this);
            label->setFont(font);
            label->setPos(x + 28, 2);
            x += 28 + QFontMetrics(font).horizontalAdvance(text) + 18;
        };
        auto* curve = new QGraphicsLineItem(x + 2, 9, x + 24, 9, this);
        curve->setPen(QPen(colour::voltage, 2));
        entry(QStringLiteral("voltage"));
        auto* limit = new QGraphicsLineItem(x + 2, 9, x + 24, 9, this);
        limit->setPen(QPen(colour::limit, 2, Qt::DashLine));
        entry(QStringLiteral("limits (Vmin, Vmax of the network file)"));
        for (int d : {-1, 1}) {
            auto* cross = new QGraphicsLineItem(x + 9, 4, x + 17, 14, this);
            if (d > 0) {
                cross->setLine(x + 9, 14, x + 17, 4);
            }
            cross->setPen(QPen(colour::outside, 2));
        }
        entry(QStringLiteral("outside its limits"));
        setRect(0, 0, x, 18);
    }
};

class ProfileCanvas : public CDlgCurveCanvas
{
public:
    ProfileCanvas(const std::vector<ProfileBus>& buses, int namedAtMost, const ProfileAxes& axes)
        : CDlgCurveCanvas(axes.width, axes.height), m_buses(buses), m_named(namedAtMost),
          m_axes(axes), m_font(ReportFont(12))
    {
        SetNumSteps(axes.stepsBus, axes.stepsV);
        SetMaxMinValue(axes.stepsBus * axes.stepBus, axes.stepsV * axes.stepV, 0, 0);
    }

    // The grid, the ticks, the curve and the legend, each once.
    void Draw()
    {
        FreeCoordTexts();
        DrawCoordLines();
        DrawTicks();
        DrawCurve();
        AddCurveLegend(new ProfileLegend(this, m_font), 40, 1);
        m_pLegend->setX(width() - 40 - m_pLegend->rect().width());
    }

    QImage Render()
    {
        QImage image = WhiteImage(int(width()), int(height()));
        QPainter painter(&image);
        render(&painter, QRectF(0, 0, width(), height()), sceneRect());
        return image;
    }

protected:
    void DrawCurve() override
    {
        const int n = int(m_buses.size());
        const int left = 40, right = int(width()) - 40;
        // A curve through each bus while buses stand at least two pixels apart.
        const bool curve = n <= (right - left) / 2;
        struct Span
        {
            int x0, x1;
            double vmin, vmax;
        };
        std::vector<Span> spans;
        std::vector<int> marked; // buses marked outside their limits
        if (curve) {
            GetCurveDataList()->clear();
            for (int k = 0; k < n; ++k) {
                GetCurveDataList()->append({double(k + 1), m_buses[k].v - m_axes.low});
            }
            CDlgCurveCanvas::DrawCurve();
            for (int k = 0; k < n; ++k) {
                spans.push_back({std::max(left, CalculateX(k + 0.5)),
                                 std::min(right, CalculateX(k + 1.5)), m_buses[k].vmin,
                                 m_buses[k].vmax});
                if (m_buses[k].outside) {
                    marked.push_back(k);
                }
            }
        } else {
            FreeCurveLines();
            // Per pixel column: the range of the voltages, the tightest limits, and the bus
            // farthest outside them.
            struct Column
            {
                double lo = 1e300, hi = -1e300, vmin = -1e300, vmax = 1e300;
                int worst = -1;
                double excess = 0;
            };
            std::vector<Column> columns(right - left + 1);
            for (int k = 0; k < n; ++k) {
                const ProfileBus& b = m_buses[k];
                Column& c = columns[std::clamp(CalculateX(k + 1) - left, 0, right - left)];
                c.lo = std::min(c.lo, b.v);
                c.hi = std::max(c.hi, b.v);
                c.vmin = std::max(c.vmin, b.vmin);
                c.vmax = std::min(c.vmax, b.vmax);
                const double excess = std::max(b.v - b.vmax, b.vmin - b.v);
                if (b.outside && (c.worst < 0 || excess > c.excess)) {
                    c.worst = k;
                    c.excess = excess;
                }
            }
            for (int i = 0; i < int(columns.size()); ++i) {
                const Column& c = columns[i];
                if (c.lo > c.hi) {
                    continue;
                }
                const int top = CalculateY(c.hi - m_axes.low);
                const int bottom = std::max(CalculateY(c.lo - m_axes.low), top + 1);
                AddCurveLine(left + i, top, left + i, bottom, colour::voltage, 1, Qt::SolidLine);
                spans.push_back({left + i, left + i + 1, c.vmin, c.vmax});
                if (c.worst >= 0) {
                    marked.push_back(c.worst);
                }
            }
        }
        DrawLimit(spans, [](const Span& s) { return s.vmax; });
        DrawLimit(spans, [](const Span& s) { return s.vmin; });

        // The marks, and the names of the farthest outside.
        std::vector<int> byExcess = marked;
        std::sort(byExcess.begin(), byExcess.end(), [&](int a, int b) {
            return Excess(m_buses[a]) > Excess(m_buses[b]);
        });
        byExcess.resize(std::min<size_t>(byExcess.size(), size_t(std::max(0, m_named))));
        for (int k : marked) {
            const int x = CalculateX(k + 1), y = CalculateY(m_buses[k].v - m_axes.low);
            AddCurveLine(x - 4, y - 4, x + 4, y + 4, colour::outside, 2, Qt::SolidLine);
            AddCurveLine(x - 4, y + 4, x + 4, y - 4, colour::outside, 2, Qt::SolidLine);
        }
        std::vector<QRect> placed; // names never overlap: one without room is left out
        for (int k : byExcess) {
            const ProfileBus& b = m_buses[k];
            const int x = CalculateX(k + 1), y = CalculateY(b.v - m_axes.low);
            // Above a mark over its Vmax, below one under its Vmin, inside the plot area;
            // first on the side where the curve leaves the mark the other way, or, when it
            // climbs into the name on both sides, on the other side of the mark.
            bool above = b.v > b.vmax && y - 18 >= 20;
            auto clear = [&](int other) {
                if (!curve || other < 0 || other >= n) {
                    return true;
                }
                return above ? m_buses[other].v <= b.v : m_buses[other].v >= b.v;
            };
            bool right = clear(k + 1);
            const bool left = clear(k - 1);
            if (!right && !left) {
                above = !above;
                right = true;
            }
            const int w = TextWidth(b.name), h = QFontMetrics(m_font).height();
            const QRect places[] = {
                QRect(right ? x + 7 : x - 7 - w, above ? y - 18 : y + 3, w, h),
                QRect(right ? x - 7 - w : x + 7, above ? y - 18 : y + 3, w, h),
                QRect(right ? x + 7 : x - 7 - w, above ? y + 3 : y - 18, w, h)};
            for (const QRect& r : places) {
                if (std::none_of(placed.begin(), placed.end(),
                                 [&](const QRect& p) { return p.intersects(r); })) {
                    AddText(b.name, r.x(), r.y());
                    placed.push_back(r);
                    break;
                }
            }
        }
    }

private:
    static double Excess(const ProfileBus& b) { return std::max(b.v - b.vmax, b.vmin - b.v); }

    // A limit as steps: one level per run of spans that share it, joined where it changes.
    template <class Span, class Level>
    void DrawLimit(const std::vector<Span>& spans, Level level)
    {
        size_t k = 0;
        int previousY = -1;
        while (k < spans.size()) {
            size_t end = k + 1;
            while (end < spans.size() && level(spans[end]) == level(spans[k]) &&
                   spans[end].x0 <= spans[end - 1].x1) {
                ++end;
            }
            const int y = CalculateY(level(spans[k]) - m_axes.low);
            if (previousY >= 0 && previousY != y) {
                AddCurveLine(spans[k].x0, previousY, spans[k].x0, y, colour::limit, 2,
                             Qt::DashLine);
            }
            AddCurveLine(spans[k].x0, y, spans[end - 1].x1, y, colour::limit, 2, Qt::DashLine);
            previousY = y;
            k = end;
        }
    }

    void AddText(const QString& text, int x, int y)
    {
        AddTextItem(text, x, y);
        static_cast<QGraphicsSimpleTextItem*>(m_CoordTexts.last())->setFont(m_font);
    }

    int TextWidth(const QString& text) const
    {
        return QFontMetrics(m_font).horizontalAdvance(text);
    }

    // Tick texts at the grid lines: voltages from the bottom of the range, bus positions
    // (or the buses' names, where each fits under its own grid line); the axis titles.
    void DrawTicks()
    {
        const int left = 40, right = int(width()) - 40, top = 20, bottom = int(height()) - 40;
        const int stepY = (bottom - top) / m_axes.stepsV;
        for (int i = 0; i <= m_axes.stepsV; ++i) {
            const QString text = TickText(m_axes.low + i * m_axes.stepV, m_axes.stepV);
            AddText(text, 36 - TextWidth(text), bottom - i * stepY - 8);
        }
        const int stepX = (right - left) / m_axes.stepsBus;
        const int n = int(m_buses.size());
        bool names = m_axes.stepBus == 1;
        for (int k = 0; names && k < n; ++k) {
            names = TextWidth(m_buses[k].name) < stepX - 4;
        }
        for (int i = names ? 1 : 0; i <= m_axes.stepsBus; ++i) {
            if (names && i > n) {
                break;
            }
            const QString text = names ? m_buses[i - 1].name
                                       : TickText(i * m_axes.stepBus, m_axes.stepBus);
            AddText(text, left + i * stepX - TextWidth(text) / 2, bottom + 3);
        }
        const QString busTitle = names ? QStringLiteral("bus, in the order of the network file")
                                       : QStringLiteral("bus position in the network file");
        AddText(busTitle, (left + right - TextWidth(busTitle)) / 2, bottom + 20);
        AddText(QStringLiteral("V (pu)"), left + 4, 2);
    }

    const std::vector<ProfileBus>& m_buses;
    int m_named;
    ProfileAxes m_axes;
    QFont m_font;
};

// ---- bar charts, with the painter ----

// A horizontal axis from `lo` to `hi` over [x0, x1], with light grid lines down to
// `gridTop` and tick texts under `y`.
struct Axis
{
    double lo, hi, step;
    int x0, x1;
    int X(double v) const { return x0 + int(std::lround((v - lo) / (hi - lo) * (x1 - x0))); }

    static Axis Around(double lo, double hi, int x0, int x1)
    {
        if (hi - lo < 1e-9) {
            hi = lo + 1;
        }
        const double step = NiceStep(hi - lo, 8);
        // Rounded outwards to whole steps, a value on a step staying there.
        return {std::floor(lo / step + 1e-9) * step, std::ceil(hi / step - 1e-9) * step, step,
                x0, x1};
    }

    void Draw(QPainter& p, int gridTop, int y, const QString& title) const
    {
        const QFontMetrics fm(p.font());
        for (double v = lo; v <= hi + step * 1e-6; v += step) {
            const int x = X(v);
            p.setPen(QColor(225, 225, 225));
            p.drawLine(x, gridTop, x, y);
            p.setPen(Qt::black);
            const QString text = TickText(v, step);
            p.drawText(x - fm.horizontalAdvance(text) / 2, y + 4 + fm.ascent(), text);
        }
        p.drawLine(x0, y, x1, y);
        p.drawText((x0 + x1 - fm.horizontalAdvance(title)) / 2, y + 24 + fm.ascent(), title);
    }
};

// The names at the left of the rows, right-aligned and cut with an ellipsis at `width`.
void DrawRowLabels(QPainter& p, const std::vector<QString>& labels, int width, int top, int rowH)
{
    const QFontMetrics fm(p.font());
    p.setPen(Qt::black);
    for (size_t k = 0; k < labels.size(); ++k) {
        const QString text = fm.elidedText(labels[k], Qt::ElideRight, width);
        p.drawText(QRect(0, top + int(k) * rowH, width, rowH), Qt::AlignRight | Qt::AlignVCenter,
                   text);
    }
}

int LabelWidth(const QFont& font, const std::vector<QString>& labels)
{
    int w = 40;
    for (const QString& l : labels) {
        w = std::max(w, QFontMetrics(font).horizontalAdvance(l));
    }
    return std::min(w, 240);
}

} // namespace

void UseOffscreenPlatform()
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    UsePrivateRuntimeFolder();
}

void UsePrivateRuntimeFolder()
{
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        static QTemporaryDir runtime; // made 0700, gone with the program
        if (runtime.isValid()) {
            qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtime.path()));
        }
    }
}

std::unique_ptr<CDlgCurveCanvas> MakeVoltageProfileCanvas(const std::vector<ProfileBus>& buses,
                                                          int namedAtMost)
{
    auto canvas = std::make_unique<ProfileCanvas>(buses, namedAtMost, ProfileAxes(buses));
    canvas->Draw();
    return canvas;
}

QImage DrawVoltageProfile(const std::vector<ProfileBus>& buses, int namedAtMost)
{
    ProfileCanvas canvas(buses, namedAtMost, ProfileAxes(buses));
    canvas.Draw();
    return canvas.Render();
}

QImage DrawBarChart(const std::vector<Bar>& bars, const QString& axisTitle, double markAt,
                    const QString& markText)
{
    const QFont font = ReportFont(13);
    const int rowH = 24, top = 24, w = 1000;
    const int h = top + int(bars.size()) * rowH + 52;
    std::vector<QString> labels;
    double hi = markAt;
    for (const Bar& b : bars) {
        labels.push_back(b.label);
        hi = std::max(hi, b.value);
    }
    const int labelW = LabelWidth(font, labels);
    const Axis axis = Axis::Around(0, hi * 1.02, labelW + 16, w - 70);
    QImage image = WhiteImage(w, h);
    QPainter p(&image);
    p.setFont(font);
    const int plotBottom = top + int(bars.size()) * rowH;
    axis.Draw(p, top, plotBottom, axisTitle);
    DrawRowLabels(p, labels, labelW + 8, top, rowH);
    const QFontMetrics fm(font);
    for (size_t k = 0; k < bars.size(); ++k) {
        const int y = top + int(k) * rowH;
        const int x1 = axis.X(bars[k].value);
        p.fillRect(QRect(axis.x0, y + 5, std::max(1, x1 - axis.x0), rowH - 10),
                   bars[k].over ? colour::overBar : colour::bar);
        p.setPen(Qt::black);
        p.drawText(x1 + 5, y + (rowH + fm.ascent() - fm.descent()) / 2,
                   QString::number(bars[k].value, 'f', 1));
    }
    if (markAt > 0) {
        const int x = axis.X(markAt);
        p.setPen(QPen(Qt::black, 1, Qt::DashLine));
        p.drawLine(x, top - 4, x, plotBottom);
        p.setPen(Qt::black);
        p.drawText(x + 4, top - 8, markText);
    }
    return image;
}

QImage DrawGeneratorChart(const std::vector<GeneratorRange>& gens)
{
    const QFont font = ReportFont(13);
    const int rowH = 24, top = 12, w = 1000;
    const int h = top + int(gens.size()) * rowH + 52;
    std::vector<QString> labels;
    double plo = 0, phi = 0, qlo = 0, qhi = 0;
    for (const GeneratorRange& g : gens) {
        labels.push_back(g.name);
        plo = std::min({plo, g.p, g.pmin});
        phi = std::max({phi, g.p, g.pmax});
        qlo = std::min({qlo, g.q, g.qmin});
        qhi = std::max({qhi, g.q, g.qmax});
    }
    const int labelW = LabelWidth(font, labels);
    const int panel = (w - labelW - 16 - 60) / 2;
    const Axis pAxis = Axis::Around(plo, phi, labelW + 16, labelW + 16 + panel - 20);
    const Axis qAxis = Axis::Around(qlo, qhi, pAxis.x1 + 60, w - 20);
    QImage image = WhiteImage(w, h);
    QPainter p(&image);
    p.setFont(font);
    const int plotBottom = top + int(gens.size()) * rowH;
    pAxis.Draw(p, top, plotBottom, QStringLiteral("active power P (MW): range between Pmin and "
                                                  "Pmax, and the output"));
    qAxis.Draw(p, top, plotBottom, QStringLiteral("reactive power Q (Mvar): Qmin to Qmax"));
    DrawRowLabels(p, labels, labelW + 8, top, rowH);
    auto row = [&](const Axis& axis, int y, double value, double lo, double hi) {
        if (hi > lo) {
            p.fillRect(QRect(axis.X(lo), y + 8, std::max(1, axis.X(hi) - axis.X(lo)), rowH - 16),
                       colour::range);
        }
        // Outside its limits beyond rounding (a generator at its limit sits on it).
        const bool outside = hi > lo && (value > hi + 1e-6 || value < lo - 1e-6);
        p.fillRect(QRect(axis.X(value) - 2, y + 3, 5, rowH - 6),
                   outside ? colour::overBar : colour::output);
    };
    for (size_t k = 0; k < gens.size(); ++k) {
        const int y = top + int(k) * rowH;
        row(pAxis, y, gens[k].p, gens[k].pmin, gens[k].pmax);
        row(qAxis, y, gens[k].q, gens[k].qmin, gens[k].qmax);
    }
    return image;
}

} // namespace report
