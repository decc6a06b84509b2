// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/butterworth.h"

#include <algorithm>
#include <cmath>
#include <complex>

#include "signals/text.h"

namespace signals
{

namespace
{

using Complex = std::complex<double>;

constexpr double pi = 3.141592653589793238462643383279502884;

/// Zeros are 1 (where the analogue filter has 0) or -1.
struct DigitalFilter {
    std::vector<double> zeros;
    std::vector<Complex> poles;
    double gain = 1;
};

struct AnalogueFilter {
    int zeros_at_0 = 0;
    std::vector<Complex> poles;
    double gain = 1;
};

std::vector<Complex> prototype(int order)
{
    std::vector<Complex> poles;
    for (int m = -order + 1; m < order; m += 2) {
        poles.push_back(-std::polar(1.0, pi * m / (2.0 * order)));
    }
    return poles;
}

AnalogueFilter analogue(int order, double tr, const Band &band)
{
    const auto warped = [tr](double edge) { return 4 * std::tan(pi * edge * tr); };
    AnalogueFilter filter;
    for (const Complex &pole : prototype(order)) {
        if (band.high_pass <= 0) {
            filter.poles.push_back(warped(band.low_pass) * pole);
        } else if (band.low_pass <= 0) {
            filter.poles.push_back(warped(band.high_pass) / pole);
        } else {
            const double low = warped(band.high_pass);
            const double high = warped(band.low_pass);
            const Complex middle = pole * (high - low) / 2.0;
            const Complex distance = std::sqrt(middle * middle - low * high);
            filter.poles.push_back(middle + distance);
            filter.poles.push_back(middle - distance);
        }
    }
    if (band.high_pass <= 0) {
        filter.gain = std::pow(warped(band.low_pass), order);
    } else {
        filter.zeros_at_0 = order;
        if (band.low_pass > 0) {
            filter.gain = std::pow(warped(band.low_pass) - warped(band.high_pass), order);
        }
    }
    return filter;
}

DigitalFilter bilinear(const AnalogueFilter &analogue)
{
    DigitalFilter filter;
    Complex gain = analogue.gain * std::pow(4.0, analogue.zeros_at_0);
    for (const Complex &pole : analogue.poles) {
        filter.poles.push_back((4.0 + pole) / (4.0 - pole));
        gain /= 4.0 - pole;
    }
    filter.gain = gain.real();
    filter.zeros.assign(analogue.poles.size(), -1);
    std::fill_n(filter.zeros.end() - analogue.zeros_at_0, analogue.zeros_at_0, 1);
    return filter;
}

/// Hands out zeros from both ends of their sorted list.
class Zeros
{
public:
    explicit Zeros(const std::vector<double> &sorted) : m_first(sorted.begin()), m_end(sorted.end())
    {
    }
    double least() { return *m_first++; }
    double largest() { return *--m_end; }

private:
    std::vector<double>::const_iterator m_first, m_end;
};

Section with_zeros(Zeros &zeros, double a1, double a2)
{
    const double first = zeros.least();
    const double second = zeros.largest();
    return {1, -(first + second), first * second, a1, a2};
}

std::vector<Section> sections_of(const DigitalFilter &filter)
{
    const double real_line = 1e-12;
    std::vector<Complex> upper;
    std::vector<double> real;
    for (const Complex &pole : filter.poles) {
        if (pole.imag() > real_line) {
            upper.push_back(pole);
        } else if (std::abs(pole.imag()) <= real_line) {
            real.push_back(pole.real());
        }
    }
    std::sort(upper.begin(), upper.end(),
              [](const Complex &a, const Complex &b) { return std::abs(a) < std::abs(b); });

    Zeros zeros(filter.zeros);
    std::vector<Section> sections;
    for (const Complex &pole : upper) {
        sections.push_back(with_zeros(zeros, -2 * pole.real(), std::norm(pole)));
    }
    for (std::size_t i = 0; i + 1 < real.size(); i += 2) {
        sections.push_back(with_zeros(zeros, -(real[i] + real[i + 1]), real[i] * real[i + 1]));
    }
    if (real.size() % 2 == 1) {
        sections.push_back({1, -zeros.largest(), 0, -real.back(), 0});
    }
    sections.front().b0 *= filter.gain;
    sections.front().b1 *= filter.gain;
    sections.front().b2 *= filter.gain;
    return sections;
}

void require_edges(int order, double tr, const Band &band)
{
    if (order < 1) {
        throw UsageError("filter of order " + std::to_string(order) + ": expected 1 or more");
    }
    if (!(tr > 0) || !std::isfinite(tr)) {
        throw UsageError("repetition time of " + number(tr) + " s: expected more than 0");
    }
    const double nyquist = 1 / (2 * tr);
    for (const double edge : {band.high_pass, band.low_pass}) {
        if (!(edge >= 0 && edge < nyquist)) {
            throw UsageError("filter edge of " + number(edge) + " Hz: expected 0 to below " +
                             number(nyquist) + " Hz, half the rate of the volumes");
        }
    }
    if (band.high_pass <= 0 && band.low_pass <= 0) {
        throw UsageError("a filter needs a high-pass or a low-pass edge: both are 0 Hz");
    }
    if (band.low_pass > 0 && band.high_pass >= band.low_pass) {
        throw UsageError("the pass band from " + number(band.high_pass) + " to " +
                         number(band.low_pass) + " Hz has no width");
    }
}

/// Rows of all series that run side by side: wide vector units work across them.
constexpr Eigen::Index tile_width = 8;
using TileRow = Eigen::Array<double, 1, tile_width>;
using FixedTile = Eigen::Array<double, Eigen::Dynamic, tile_width, Eigen::RowMajor>;

struct State {
    TileRow z0, z1;
};

std::vector<State> settled(const std::vector<Section> &sections, const TileRow &first)
{
    std::vector<State> states;
    double gain = 1;
    for (const auto &[b0, b1, b2, a1, a2] : sections) {
        const double z0 = (b1 + b2 - (a1 + a2) * b0) / (1 + a1 + a2);
        const double z1 = (1 + a1) * z0 - (b1 - a1 * b0);
        states.push_back({z0 * gain * first, z1 * gain * first});
        gain *= (b0 + b1 + b2) / (1 + a1 + a2);
    }
    return states;
}

/// One pass in place over the rows \p from, from + step, ..
void run(const std::vector<Section> &sections, FixedTile &tile, Eigen::Index from,
         Eigen::Index step)
{
    std::vector<State> states = settled(sections, tile.row(from));
    for (Eigen::Index row = from; row >= 0 && row < tile.rows(); row += step) {
        TileRow value = tile.row(row);
        for (std::size_t s = 0; s < sections.size(); ++s) {
            const Section &section = sections[s];
            State &state = states[s];
            const TileRow out = section.b0 * value + state.z0;
            state.z0 = section.b1 * value - section.a1 * out + state.z1;
            state.z1 = section.b2 * value - section.a2 * out;
            value = out;
        }
        tile.row(row) = value;
    }
}

/// \p width series from \p column on, with their extensions; the tile's other columns are 0.
FixedTile extended(const Eigen::MatrixXd &series, Eigen::Index column, Eigen::Index width,
                   Extension extension, Eigen::Index padding)
{
    const Eigen::Index rows = series.rows();
    FixedTile tile = FixedTile::Zero(rows + 2 * padding, tile_width);
    const auto source = series.middleCols(column, width).array();
    const auto target = [&](Eigen::Index row) { return tile.row(row).head(width); };
    for (Eigen::Index row = 0; row < rows; ++row) {
        target(padding + row) = source.row(row);
    }
    for (Eigen::Index i = 1; i <= padding; ++i) {
        if (extension == Extension::odd) {
            target(padding - i) = 2 * source.row(0) - source.row(i);
            target(padding + rows - 1 + i) = 2 * source.row(rows - 1) - source.row(rows - 1 - i);
        } else {
            target(padding - i) = source.row(0);
            target(padding + rows - 1 + i) = source.row(rows - 1);
        }
    }
    return tile;
}

} // namespace

double below_nyquist(double edge, double tr)
{
    const double nyquist = 1 / (2 * tr);
    return edge < nyquist ? edge : nyquist * (1 - 1e-6);
}

std::vector<Section> butterworth(int order, double tr, const Band &band)
{
    require_edges(order, tr, band);
    return sections_of(bilinear(analogue(order, tr, band)));
}

Eigen::Index padding(const std::vector<Section> &sections)
{
    const auto without = [&](double Section::*coefficient) {
        return std::count_if(sections.begin(), sections.end(),
                             [=](const Section &section) { return section.*coefficient == 0; });
    };
    const auto count = static_cast<Eigen::Index>(sections.size());
    return 3 * (2 * count + 1 - std::min(without(&Section::b2), without(&Section::a2)));
}

Eigen::MatrixXd forward_backward(const std::vector<Section> &sections,
                                 const Eigen::MatrixXd &series, Extension extension,
                                 Eigen::Index padding)
{
    if (series.rows() <= padding) {
        throw Error("the run is too short for the filter: " + counted(series.rows(), "volume") +
                    ", expected more than the " + std::to_string(padding) +
                    " by which each end is extended");
    }
    Eigen::MatrixXd filtered(series.rows(), series.cols());
    for (Eigen::Index column = 0; column < series.cols(); column += tile_width) {
        const Eigen::Index width = std::min(tile_width, series.cols() - column);
        FixedTile tile = extended(series, column, width, extension, padding);
        run(sections, tile, 0, 1);
        run(sections, tile, tile.rows() - 1, -1);
        filtered.middleCols(column, width) = tile.block(padding, 0, series.rows(), width);
    }
    return filtered;
}

} // namespace signals
