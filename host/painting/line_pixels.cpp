// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/line_pixels.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <future>

namespace corvane
{

namespace
{

constexpr int parts = 4;

/// Does parts 0 to parts - 1 of a work side by side, or in this thread where no other is to be had.
void doParts(const std::function<void(int part)> &work)
{
    std::vector<std::future<void>> others;
    for (int part = 0; part < parts; ++part)
        others.push_back(std::async(work, part));
    for (std::future<void> &other : others)
        other.get();
}

/// The border of a line, with a square end beyond each end; in pixels, closed.
using Border = std::vector<QPointF>;

Border borderOf(const PixelLine &line)
{
    // n straight pieces are no further from the curve than |from - 2 control + to| / (4 n^2).
    constexpr double tolerance = 0.1;
    const QPointF bend = line.from - 2 * line.control + line.to;
    const int pieces = std::clamp(
        int(std::ceil(std::sqrt(std::hypot(bend.x(), bend.y()) / 4 / tolerance))), 1, 200);
    Border border(std::size_t(2 * (pieces + 1)));
    for (int n = 0; n <= pieces; ++n) {
        const double t = double(n) / pieces;
        QPointF place =
            (1 - t) * (1 - t) * line.from + 2 * t * (1 - t) * line.control + t * t * line.to;
        QPointF way = (1 - t) * (line.control - line.from) + t * (line.to - line.control);
        double length = std::hypot(way.x(), way.y());
        if (length < 1e-9) {
            way = line.to - line.from;
            length = std::hypot(way.x(), way.y());
        }
        way = length < 1e-9 ? QPointF(line.width / 2, 0) : way * (line.width / 2 / length);
        if (n == 0)
            place -= way;
        if (n == pieces)
            place += way;
        const QPointF aside(-way.y(), way.x());
        border[std::size_t(n)] = place + aside;
        border[std::size_t(2 * pieces + 1 - n)] = place - aside;
    }
    return border;
}

/// Two bytes, each in 16 bits, divided by 255.
quint32 divided(quint32 two)
{
    return ((two + ((two >> 8) & 0xff00ff) + 0x800080) >> 8) & 0xff00ff;
}

/// A share of 255 of a premultiplied colour above a pixel.
quint32 mixed(quint32 above, quint32 share, quint32 below)
{
    const quint32 left = 255 - divided((above >> 24) * share);
    return divided((above & 0xff00ff) * share + (below & 0xff00ff) * left) |
           divided(((above >> 8) & 0xff00ff) * share + ((below >> 8) & 0xff00ff) * left) << 8;
}

/// Some rows of an image. What a border encloses is the running sum along a row of the signed areas
/// that its pieces leave in each pixel, to the right of them.
class Stripe
{
public:
    Stripe(QImage &image, int first, int last)
        : m_bits(image.bits()), m_bytesPerLine(std::size_t(image.bytesPerLine())),
          m_width(image.width()), m_first(first), m_last(last),
          m_areas(std::size_t(m_width + 2) * std::size_t(std::max(0, last - first)), 0),
          m_touched(std::size_t(std::max(0, last - first)), {m_width, -1})
    {
    }

    void paint(const Border &border, const QColor &colour)
    {
        const auto [least, most] =
            std::minmax_element(border.begin(), border.end(),
                                [](const QPointF &a, const QPointF &b) { return a.y() < b.y(); });
        const int top = int(std::clamp(std::floor(least->y()), double(m_first), double(m_last)));
        const int bottom = int(std::clamp(std::ceil(most->y()), double(m_first), double(m_last)));
        if (top >= bottom)
            return;
        for (std::size_t n = 0; n < border.size(); ++n)
            addPiece(border[n], border[n + 1 < border.size() ? n + 1 : 0]);
        const quint32 bytes = qPremultiply(colour.rgba());
        for (int row = top; row < bottom; ++row)
            fill(row, bytes);
    }

private:
    void addPiece(QPointF from, QPointF to)
    {
        if (from.y() == to.y())
            return;
        // What is left of the image counts at its border, what is right of it nowhere.
        for (const double border : {0.0, double(m_width)})
            if ((from.x() - border) * (to.x() - border) < 0) {
                const double share = (border - from.x()) / (to.x() - from.x());
                const QPointF between(border, from.y() + share * (to.y() - from.y()));
                addPiece(from, between);
                addPiece(between, to);
                return;
            }
        const float sign = from.y() < to.y() ? 1.0F : -1.0F;
        if (sign < 0)
            std::swap(from, to);
        const double slope = (to.x() - from.x()) / (to.y() - from.y());
        const float steepness = slope != 0 ? sign / float(std::abs(slope)) : 0;
        const double begin = std::max(from.y(), double(m_first));
        const double end = std::min(to.y(), double(m_last));
        if (begin >= end)
            return;
        double x = from.x() + slope * (begin - from.y());
        double y = begin;
        for (int row = int(begin); y < end; ++row) {
            const double next = std::min(end, double(row + 1));
            const double nextX = x + slope * (next - y);
            addInRow(row, float(std::clamp(x, 0.0, double(m_width))),
                     float(std::clamp(nextX, 0.0, double(m_width))), sign * float(next - y),
                     steepness);
            x = nextX;
            y = next;
        }
    }

    /// A straight piece within one row that goes down by `height`, by `steepness` for each column.
    void addInRow(int row, float x, float other, float height, float steepness)
    {
        const float left = std::min(x, other);
        const float right = std::max(x, other);
        const int first = int(left);
        const int last = int(right);
        float *const areas = areasOf(row);
        auto &[least, most] = m_touched[std::size_t(row - m_first)];
        least = std::min(least, first);
        most = std::max(most, last + 1);
        if (first == last) {
            const float before = (left + right) / 2 - float(first);
            areas[first] += height * (1 - before);
            areas[first + 1] += height * before;
            return;
        }
        float sum = 0; // of what earlier pixels have
        for (int column = first; column <= last; ++column) {
            const float begin = std::max(left, float(column));
            const float end = std::min(right, float(column + 1));
            const float covered =
                steepness *
                (begin - left + (end - begin) * (float(column + 1) - (begin + end) / 2));
            areas[column] += covered - sum;
            sum = covered;
        }
        areas[last + 1] += height - sum;
    }

    void fill(int row, quint32 bytes)
    {
        auto &[least, most] = m_touched[std::size_t(row - m_first)];
        float *const areas = areasOf(row);
        auto *const pixels =
            reinterpret_cast<quint32 *>(m_bits + std::size_t(row) * m_bytesPerLine);
        float sum = 0;
        for (int column = least; column <= std::min(most, m_width - 1); ++column) {
            sum += areas[column];
            // NOLINTNEXTLINE(bugprone-incorrect-roundings): a colour, and the innermost loop.
            const auto share = quint32(std::min(std::abs(sum), 1.0F) * 255 + 0.5F);
            if (share == 0)
                continue;
            pixels[column] = mixed(bytes, share, pixels[column]);
        }
        std::fill(areas + least, areas + most + 1, 0.0F);
        least = m_width;
        most = -1;
    }

    float *areasOf(int row)
    {
        return m_areas.data() + std::size_t(row - m_first) * std::size_t(m_width + 2);
    }

    uchar *m_bits;
    std::size_t m_bytesPerLine;
    int m_width;
    int m_first, m_last; ///< rows, the last one not
    std::vector<float> m_areas;
    std::vector<std::pair<int, int>> m_touched; ///< of each row the columns with areas
};

} // namespace

void paintLines(QImage &image, const std::vector<PixelLine> &lines)
{
    Q_ASSERT(image.format() == QImage::Format_ARGB32_Premultiplied);
    std::vector<Border> borders(lines.size());
    doParts([&](int part) {
        for (std::size_t n = std::size_t(part); n < lines.size(); n += parts)
            borders[n] = borderOf(lines[n]);
    });
    image.detach(); // before threads ask for its pixels
    doParts([&](int part) {
        Stripe stripe(image, image.height() * part / parts, image.height() * (part + 1) / parts);
        for (std::size_t n = 0; n < lines.size(); ++n)
            stripe.paint(borders[n], lines[n].colour);
    });
}

} // namespace corvane
