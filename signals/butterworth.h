// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include <Eigen/Core>

#include "signals/error.h"

/// \file
/// Butterworth filters from formulas, as second-order sections, run forward and backward.
///
/// Sources: Butterworth 1930, Experimental Wireless 7:536; Oppenheim and Schafer, Discrete-time
/// signal processing, ISBN 978-0131988422 (bilinear transform). Agrees with scipy 1.10
/// (doi:10.1038/s41592-019-0686-2), butter and sosfiltfilt, to 1e-13 of the largest value.

namespace signals
{

/// y = (b0 + b1/z + b2/z^2) / (1 + a1/z + a2/z^2) x.
struct Section {
    double b0, b1, b2, a1, a2;
};

/// The edges of a filter in Hz; 0 is no edge. Both make a band, high_pass alone a high-pass,
/// low_pass alone a low-pass.
struct Band {
    double high_pass = 0;
    double low_pass = 0;
};

/// An edge at or above Nyquist, 1/(2 tr) Hz, becomes Nyquist (1 - 1e-6); any other stays.
double below_nyquist(double edge, double tr);

/// The sections of a filter of order N.
///
/// With w(f) = 4 tan(pi f tr) and P_m = -exp(i pi m/2N), m = -N+1, -N+3 .. N-1, zeros, poles and
/// gain of the analogue filter are
///
///     low-pass    none       w P                                      w^N
///     high-pass   N times 0  w/P                                      1
///     band        N times 0  b +- sqrt(b^2 - w1 w2), b = P (w2-w1)/2  (w2 - w1)^N
///
/// Bilinear: a zero or pole s becomes (4 + s)/(4 - s), missing zeros are -1, and the gain becomes
/// k Re(prod(4 - zero)/prod(4 - pole)). Each pair of conjugate poles is a section with one zero
/// from each end of their sorted list; two real poles make one section, a single one a section
/// with b2 = a2 = 0. The gain is in the first section. A band of order N has 2N poles.
///
/// \throws UsageError if order < 1, tr <= 0, there is no edge, an edge is not within 0 to Nyquist,
/// or the band has no width.
std::vector<Section> butterworth(int order, double tr, const Band &band);

/// Rows of padding a side: 3 (2 S + 1 - min(#(b2 = 0), #(a2 = 0))), S the number of sections. 33
/// for a band of order 5, 18 for a low-pass or high-pass of order 5.
Eigen::Index padding(const std::vector<Section> &sections);

/// How a series goes on beyond its ends.
enum class Extension {
    odd,     ///< 2 x_0 - x_i, and the like at the end
    constant ///< x_0, x_(n-1)
};

/// The series filtered forward, then backward, so that nothing is shifted in time and the gain is
/// squared.
///
/// The series is extended by \p padding rows a side, which are cut off in the end. Each pass runs
/// in the transposed direct form II and starts where a constant input of its first value would have
/// settled: z0 = (b1 + b2 - (a1 + a2) b0)/(1 + a1 + a2), z1 = (1 + a1) z0 - (b1 - a1 b0), times
/// that value and the gain at frequency 0 of the sections before. Linear in the series.
///
/// \param series rows x series.
/// \throws Error if there are not more rows than \p padding, with both numbers.
Eigen::MatrixXd forward_backward(const std::vector<Section> &sections,
                                 const Eigen::MatrixXd &series, Extension extension,
                                 Eigen::Index padding);

} // namespace signals
