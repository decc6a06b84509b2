// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/butterworth.h"
#include "tests/signals/error_text.h"
#include "tests/signals/near.h"
#include "tests/signals/noise.h"

#include <complex>

#include <gmock/gmock.h>

namespace
{

using namespace signals;
using testing::HasSubstr;

/// Gain of one pass at a frequency.
double gain(const std::vector<Section> &sections, double frequency, double tr)
{
    const std::complex<double> z = std::polar(1.0, -2 * M_PI * frequency * tr);
    std::complex<double> response = 1;
    for (const Section &s : sections) {
        response *= (s.b0 + s.b1 * z + s.b2 * z * z) / (1.0 + s.a1 * z + s.a2 * z * z);
    }
    return std::abs(response);
}

/// The definition: 1/sqrt(1 + x^2N), x the distance from the band on the warped axis.
double wanted_gain(int order, double tr, const Band &band, double frequency)
{
    const auto warped = [tr](double f) { return std::tan(M_PI * f * tr); };
    double x = 0;
    if (band.high_pass <= 0) {
        x = warped(frequency) / warped(band.low_pass);
    } else if (band.low_pass <= 0) {
        x = warped(band.high_pass) / warped(frequency);
    } else {
        const double low = warped(band.high_pass);
        const double high = warped(band.low_pass);
        const double f = warped(frequency);
        x = (f * f - low * high) / (f * (high - low));
    }
    return 1 / std::sqrt(1 + std::pow(x, 2 * order));
}

TEST(Butterworth, GainIsTheDefinition)
{
    for (const double tr : {0.5, 0.8, 2.0, 3.0}) {
        for (const Band &band :
             {Band{0.01, 0.08}, Band{0, 0.1}, Band{0.008, 0}, Band{0.02, 0.15}}) {
            for (const int order : {1, 2, 3, 4, 5, 6}) {
                const std::vector<Section> sections = butterworth(order, tr, band);
                for (const double frequency : {0.003, 0.01, 0.05, 0.08, 0.1, 0.16}) {
                    EXPECT_NEAR(gain(sections, frequency, tr),
                                wanted_gain(order, tr, band, frequency), 1e-9)
                        << "order " << order << ", " << band.high_pass << " to " << band.low_pass
                        << " Hz at " << frequency << " Hz, tr " << tr;
                }
            }
        }
    }
}

TEST(Butterworth, PaddingDependsOnTheSections)
{
    EXPECT_EQ(padding(butterworth(5, 2, {0.01, 0.08})), 33);
    EXPECT_EQ(padding(butterworth(5, 2, {0, 0.08})), 18);
    EXPECT_EQ(padding(butterworth(5, 2, {0.01, 0})), 18);
    EXPECT_EQ(padding(butterworth(2, 2, {0.01, 0.08})), 15);
    EXPECT_EQ(padding(butterworth(1, 2, {0, 0.08})), 6);
}

TEST(Butterworth, ConstantPassesALowPassAndNotAHighPass)
{
    const Eigen::MatrixXd series = Eigen::MatrixXd::Constant(60, 2, 1000);
    const std::vector<Section> low = butterworth(5, 2, {0, 0.08});
    const std::vector<Section> high = butterworth(5, 2, {0.01, 0});
    for (const Extension extension : {Extension::odd, Extension::constant}) {
        EXPECT_TRUE(near(forward_backward(low, series, extension, 18), series, 1e-8));
        EXPECT_TRUE(near(forward_backward(high, series, extension, 18),
                         Eigen::MatrixXd::Zero(60, 2), 1e-8));
    }
}

TEST(Butterworth, ForwardAndBackwardShiftsNothing)
{
    // A slow wave in the middle of the band stays where it is, at the square of the gain.
    const double tr = 1;
    const double frequency = 0.04;
    const std::vector<Section> sections = butterworth(2, tr, {0.01, 0.1});
    const Eigen::ArrayXd t = Eigen::ArrayXd::LinSpaced(2000, 0, 1999);
    const Eigen::ArrayXd wave = (2 * M_PI * frequency * t).sin();
    const Eigen::ArrayXd found =
        forward_backward(sections, wave.matrix(), Extension::odd, 300).col(0).array();
    const double squared = std::pow(gain(sections, frequency, tr), 2);
    EXPECT_TRUE(near(found.segment(600, 800), squared * wave.segment(600, 800), 1e-8));
}

TEST(Butterworth, SeriesAreFilteredEachForItself)
{
    // More series than run side by side at once.
    Noise noise(2);
    const Eigen::MatrixXd series = noise.white(90, 19);
    const std::vector<Section> sections = butterworth(5, 2, {0.01, 0.08});
    const Eigen::MatrixXd all = forward_backward(sections, series, Extension::odd, 33);
    for (Eigen::Index i = 0; i < series.cols(); ++i) {
        EXPECT_EQ(all.col(i), forward_backward(sections, series.col(i), Extension::odd, 33).col(0));
    }
    EXPECT_EQ(forward_backward(sections, Eigen::MatrixXd(90, 0), Extension::odd, 33).rows(), 90);
}

TEST(Butterworth, ExtensionsReachIntoTheRun)
{
    // A ramp goes on beyond its ends where the extension is odd, so that a low-pass leaves it be.
    const Eigen::MatrixXd ramp = Eigen::VectorXd::LinSpaced(100, 0, 99);
    const std::vector<Section> low = butterworth(5, 2, {0, 0.1});
    EXPECT_TRUE(near(forward_backward(low, ramp, Extension::odd, 60), ramp, 1e-4));
    EXPECT_GT(std::abs(forward_backward(low, ramp, Extension::constant, 60)(0, 0)), 0.1);
}

TEST(Butterworth, RunShorterThanThePaddingIsRefusedWithBothNumbers)
{
    const std::vector<Section> sections = butterworth(5, 2, {0.01, 0.08});
    const auto filter = [&](Eigen::Index rows) {
        return forward_backward(sections, Eigen::MatrixXd::Random(rows, 1), Extension::odd, 33);
    };
    EXPECT_EQ(filter(34).rows(), 34);
    EXPECT_THAT(error_text<Error>([&] { filter(33); }),
                HasSubstr("33 volumes, expected more than the 33"));
    EXPECT_THAT(error_text<Error>([&] { filter(0); }), HasSubstr("0 volumes"));
}

TEST(Butterworth, EdgesAreLoweredBelowNyquist)
{
    EXPECT_EQ(below_nyquist(0.1, 2), 0.1);
    for (const double edge : {0.25, 0.3, 5.0}) {
        EXPECT_LT(below_nyquist(edge, 2), 0.25);
        EXPECT_NEAR(below_nyquist(edge, 2), 0.25, 1e-6);
    }
    // Such a low-pass lets everything pass, and stays stable.
    Noise noise(3);
    const Eigen::MatrixXd series = noise.white(500, 2);
    const std::vector<Section> sections = butterworth(5, 2, {0, below_nyquist(0.3, 2)});
    EXPECT_TRUE(near(forward_backward(sections, series, Extension::odd, 18), series, 1e-2));
}

TEST(Butterworth, WhatCannotBeAFilter)
{
    const auto text = [](int order, double tr, const Band &band) {
        return error_text<UsageError>([&] { butterworth(order, tr, band); });
    };
    EXPECT_THAT(text(0, 2, {0.01, 0.08}), HasSubstr("order 0: expected 1 or more"));
    EXPECT_THAT(text(5, 0, {0.01, 0.08}), HasSubstr("repetition time of 0 s"));
    EXPECT_THAT(text(5, NAN, {0.01, 0.08}), HasSubstr("repetition time of n/a s"));
    EXPECT_THAT(text(5, INFINITY, {0.01, 0.08}), HasSubstr("repetition time of inf s"));
    EXPECT_THAT(text(5, 2, {0, 0}), HasSubstr("needs a high-pass or a low-pass"));
    EXPECT_THAT(text(5, 2, {-0.01, 0.08}), HasSubstr("edge of -0.01 Hz: expected 0 to below 0.25"));
    EXPECT_THAT(text(5, 2, {0.01, 0.25}), HasSubstr("edge of 0.25 Hz: expected 0 to below 0.25"));
    EXPECT_THAT(text(5, 2, {NAN, 0.08}), HasSubstr("edge of n/a Hz"));
    EXPECT_THAT(text(5, 2, {0.08, 0.08}), HasSubstr("from 0.08 to 0.08 Hz has no width"));
}

} // namespace
