// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QtGlobal>
#include <algorithm>
#include <cstring>

namespace corvane
{

/// Checksum of the samples of a `.vtc`, taken while they are written in any order.
///
/// With x_n the sample at index n of the file, a short by its value and a float by its 32 bits, it
/// holds the sums of x_n and of n * x_n modulo 2^64, mixed into one number of 64 bits. One changed
/// sample, two unequal samples that changed places and a shifted run are always noticed; anything
/// else with a chance of one in 2^64. It guards against damage, not against intent.
class VtcChecksum
{
public:
    /// Adds `count` samples that stand at firstIndex, firstIndex + step, ... of the file.
    template <typename Sample>
    void add(const Sample *samples, qint64 count, quint64 firstIndex, quint64 step = 1)
    {
        for (qint64 done = 0; done < count; done += chunk) {
            const auto length = static_cast<int>(std::min(chunk, count - done));
            const Sums sums = chunkSums(samples + done, length);
            const quint64 index = firstIndex + step * static_cast<quint64>(done);
            m_sum += sums.plain;
            m_weighted += index * sums.plain + step * sums.weighted;
        }
    }

    quint64 value() const { return mixed(m_sum + mixed(m_weighted)); }

    /// As it stands in the file: 16 lower-case hexadecimal digits.
    QString text() const { return QStringLiteral("%1").arg(value(), 16, 16, QLatin1Char('0')); }

private:
    struct Sums {
        quint64 plain;
        quint64 weighted; ///< each sample times its place in the chunk
    };

    /// So short that the sums over a chunk of shorts stay within 32 bits, which makes them fast.
    static constexpr qint64 chunk = 256;

    static Sums chunkSums(const short *samples, int length)
    {
        qint32 plain = 0;
        qint32 weighted = 0;
        for (int i = 0; i < length; ++i) {
            plain += samples[i];
            weighted += samples[i] * i;
        }
        return {static_cast<quint64>(plain), static_cast<quint64>(weighted)};
    }

    static Sums chunkSums(const float *samples, int length)
    {
        Sums sums{0, 0};
        for (int i = 0; i < length; ++i) {
            quint32 bits;
            std::memcpy(&bits, samples + i, sizeof bits);
            sums.plain += bits;
            sums.weighted += quint64(bits) * static_cast<quint32>(i);
        }
        return sums;
    }

    /// A one-to-one scrambling of 64 bits (the finaliser of Steele, Lea and Flood 2014,
    /// OOPSLA, doi:10.1145/2660193.2660195).
    static quint64 mixed(quint64 bits)
    {
        bits = (bits ^ (bits >> 30)) * Q_UINT64_C(0xbf58476d1ce4e5b9);
        bits = (bits ^ (bits >> 27)) * Q_UINT64_C(0x94d049bb133111eb);
        return bits ^ (bits >> 31);
    }

    quint64 m_sum = 0;
    quint64 m_weighted = 0;
};

} // namespace corvane
