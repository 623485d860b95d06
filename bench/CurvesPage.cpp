#include "bench/Curves.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iomanip>

// The curves as a table and as a picture.

namespace bench {

namespace {

std::string Fixed(double value, int nDigits)
{
    char text[64];
    std::snprintf(text, sizeof(text), "%.*f", nDigits, value);
    return text;
}

// 200000 as 200,000.
std::string Grouped(double value)
{
    std::string text = Fixed(value, 0);
    for (auto n = static_cast<std::ptrdiff_t>(text.size()) - 3; n > 0; n -= 3)
        text.insert(static_cast<std::size_t>(n), ",");
    return text;
}

struct Place
{
    double x;
    double y;
};

// The plane of two logarithmic axes.
class Plane
{
public:
    explicit Plane(const std::vector<Curve>& curves)
    {
        double least = INFINITY, most = 0;
        for (const Curve& curve : curves)
            for (const Curve::Point& point : curve.points) {
                least = std::min(least, point.cost.median);
                most = std::max(most, point.cost.median);
                m_right = std::max(m_right, std::ceil(std::log10(point.size)));
            }
        m_bottom = std::floor(std::log10(least));
        m_top = std::ceil(std::log10(most));
    }

    Place At(double size, double time) const
    {
        return {left + std::log10(size) / m_right * cx,
                top + (m_top - std::log10(time)) / (m_top - m_bottom) * cy};
    }
    void DrawAxes(std::ostream& out) const
    {
        for (double n = 0; n <= m_right; ++n) {
            const double x = At(std::pow(10, n), 1).x;
            Line(out, {x, top}, {x, top + cy}, "#dddddd");
            Text(out, {x, top + cy + 18}, Grouped(std::pow(10, n)), "middle");
        }
        for (double n = m_bottom; n <= m_top; ++n) {
            const double y = At(1, std::pow(10, n)).y;
            Line(out, {left, y}, {left + cx, y}, "#dddddd");
            Text(out, {left - 8, y + 4}, Time(std::pow(10, n)), "end");
        }
        Text(out, {left + cx / 2, top + cy + 40},
             "size, in the unit in brackets; the slope is that between the last two sizes", "middle");
        Text(out, {left, top - 12}, "time of one", "start");
    }

    static void Line(std::ostream& out, Place from, Place to, const char* pszColor)
    {
        out << R"(<line x1=")" << from.x << R"(" y1=")" << from.y << R"(" x2=")" << to.x << R"(" y2=")"
            << to.y << R"(" stroke=")" << pszColor << "\"/>\n";
    }
    static void Text(std::ostream& out, Place at, const std::string& text, const char* pszAnchor,
                     const char* pszColor = "#222222")
    {
        out << R"(<text x=")" << at.x << R"(" y=")" << at.y << R"(" text-anchor=")" << pszAnchor
            << R"(" fill=")" << pszColor << "\">" << text << "</text>\n";
    }

    static constexpr double left = 80, top = 40, cx = 560, cy = 600;

private:
    double m_right = 1;
    double m_bottom = 0;
    double m_top = 1;
};

void DrawCurve(const Plane& plane, const Curve& curve, const char* pszColor, std::ostream& out)
{
    out << R"(<polyline fill="none" stroke-width="2" stroke=")" << pszColor << R"(" points=")";
    for (const Curve::Point& point : curve.points) {
        const Place at = plane.At(point.size, point.cost.median);
        out << at.x << ',' << at.y << ' ';
    }
    out << "\"/>\n";
    for (const Curve::Point& point : curve.points) {
        const Place at = plane.At(point.size, point.cost.median);
        out << R"(<circle r="3" cx=")" << at.x << R"(" cy=")" << at.y << R"(" fill=")" << pszColor
            << "\"/>\n";
    }
}

} // namespace

void PrintCurves(const std::vector<Curve>& curves)
{
    for (const Curve& curve : curves)
        for (std::size_t n = 0; n < curve.points.size(); ++n) {
            const auto& [size, cost] = curve.points[n];
            std::printf("%-24s %12s %-10s %12.3f us (%.3f to %.3f)", curve.name.c_str(),
                        Grouped(size).c_str(), curve.unit.c_str(), cost.median / 1000, cost.lower / 1000,
                        cost.upper / 1000);
            std::printf(n > 0 ? "  slope %.2f\n" : "\n", n > 0 ? curve.SlopeTo(n) : 0);
        }
}

void WriteCurves(const std::vector<Curve>& curves, std::ostream& out)
{
    out << "| Work | Row | Size | Time | Quartiles | Slope | Memory |\n|---|---|--:|--:|--:|--:|--:|\n";
    for (const Curve& curve : curves)
        for (std::size_t n = 0; n < curve.points.size(); ++n) {
            const auto& [size, cost] = curve.points[n];
            out << "| " << (n == 0 ? curve.what + " (" + curve.unit + ")" : "") << " | "
                << (n == 0 ? curve.name : "") << " | " << Grouped(size) << " | " << Spread(cost) << " | "
                << (n > 0 ? Fixed(curve.SlopeTo(n), 2) : "") << " | " << Memory(cost.peak) << " |\n";
        }
}

void DrawCurves(const std::vector<Curve>& curves, const std::string& strFile)
{
    constexpr std::array colors{"#1f77b4", "#d62728", "#2ca02c", "#9467bd", "#ff7f0e", "#8c564b",
                                "#e377c2", "#17becf", "#555555", "#bcbd22", "#000080"};
    constexpr double rowHeight = 17, labels = Plane::left + Plane::cx + 40;
    std::ofstream out(strFile);
    out << std::fixed << std::setprecision(1)
        << R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 1060 700" width="1060" height="700" )"
           R"(font-family="DejaVu Sans, Arial, sans-serif" font-size="12">)"
           "\n<title>Time by size, both axes logarithmic</title>\n"
           R"(<rect width="1060" height="700" fill="#ffffff"/>)"
           "\n";
    const Plane plane(curves);
    plane.DrawAxes(out);
    std::vector<std::pair<Place, std::size_t>> ends; // the right ends of the lines, from the top
    for (std::size_t n = 0; n < curves.size(); ++n) {
        if (curves[n].points.empty()) continue;
        DrawCurve(plane, curves[n], colors[n % colors.size()], out);
        const Curve::Point& last = curves[n].points.back();
        ends.emplace_back(plane.At(last.size, last.cost.median), n);
    }
    std::sort(ends.begin(), ends.end(), [](const auto& a, const auto& b) { return a.first.y < b.first.y; });
    double y = Plane::top;
    for (const auto& [end, n] : ends) {
        const char* pszColor = colors[n % colors.size()];
        const Curve& curve = curves[n];
        y = std::max(y + rowHeight, end.y);
        Plane::Line(out, end, {labels - 4, y - 4}, "#bbbbbb");
        Plane::Text(out, {labels, y},
                    curve.what + " (" + curve.unit + "), slope " +
                        Fixed(curve.SlopeTo(curve.points.size() - 1), 2),
                    "start", pszColor);
    }
    out << "</svg>\n";
}

} // namespace bench
