// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/example_signals.h"

#include <cmath>
#include <cstring>

namespace corvane::example
{

const std::array<Region, regionCount> regions{{
    {"Calcarine L", Visual, {-12, -81, 6}},
    {"Calcarine R", Visual, {12, -81, 6}},
    {"Lateral occipital L", Visual, {-39, -75, 0}},
    {"Lateral occipital R", Visual, {39, -75, 0}},
    {"Precentral L", Motor, {-36, -18, 57}},
    {"Precentral R", Motor, {36, -18, 57}},
    {"Supplementary motor L", Motor, {-12, -3, 60}},
    {"Supplementary motor R", Motor, {12, -3, 60}},
    {"Intraparietal L", Attention, {-33, -54, 45}},
    {"Intraparietal R", Attention, {33, -54, 45}},
    {"Frontal eye field L", Attention, {-30, 6, 48}},
    {"Frontal eye field R", Attention, {30, 6, 48}},
    {"Angular L", Default, {-45, -63, 33}},
    {"Angular R", Default, {45, -63, 33}},
    {"Medial prefrontal", Default, {0, 51, 6}},
    {"Posterior cingulate", Default, {0, -51, 27}},
}};

namespace
{

/// Standard deviation of a region's series, in units of the image.
constexpr double amplitude = 20;

/// How much of its own past a series keeps from volume to volume.
constexpr double persistence = 0.6;

/// Share of the visual network in the motor one during movement.
constexpr double couplingInMovement = 0.6;

constexpr double cueResponse = 15; ///< units of the image, in the visual network

double scalarProduct(const Series &a, const Series &b)
{
    double sum = 0;
    for (int t = 0; t < volumeCount; ++t)
        sum += a[t] * b[t];
    return sum;
}

void subtractMean(Series &series)
{
    double sum = 0;
    for (const double value : series)
        sum += value;
    for (double &value : series)
        value -= sum / volumeCount;
}

/// A random series of mean 0 that keeps a part of its past from volume to volume.
Series walk(Random &random, double part)
{
    Series series(volumeCount);
    double value = 0;
    for (double &sample : series) {
        value = part * value + random.normal();
        sample = value;
    }
    subtractMean(series);
    return series;
}

/// Slow random series of mean 0 and variance 1, none of which correlates with another one.
std::vector<Series> independentSeries(int count, Random &random)
{
    std::vector<Series> all;
    for (int number = 0; number < count; ++number) {
        Series series = walk(random, persistence);
        for (const Series &earlier : all) {
            const double shared = scalarProduct(series, earlier) / volumeCount;
            for (int t = 0; t < volumeCount; ++t)
                series[t] -= shared * earlier[t];
        }
        const double deviation = std::sqrt(scalarProduct(series, series) / volumeCount);
        for (double &sample : series)
            sample /= deviation;
        all.push_back(series);
    }
    return all;
}

Series mixed(const Series &a, double partOfA, const Series &b, double partOfB)
{
    Series sum(volumeCount);
    for (int t = 0; t < volumeCount; ++t)
        sum[t] = partOfA * a[t] + partOfB * b[t];
    return sum;
}

/// The rest of a variance of 1.
double remainder(double part)
{
    return std::sqrt(1 - part * part);
}

bool isDuring(const char *condition, double time)
{
    for (const TaskEvent &event : taskEvents())
        if (std::strcmp(event.condition, condition) == 0 && time >= event.onset &&
            time < event.onset + event.duration)
            return true;
    return false;
}

/// The shared series of the networks, from four that are independent.
std::array<Series, networkCount> networkSeries(const std::vector<Series> &independent)
{
    const double visualAttention = networkCorrelation(Visual, Attention);
    const double attentionDefault = networkCorrelation(Attention, Default);
    std::array<Series, networkCount> series;
    series[Visual] = independent[0];
    series[Motor] = independent[1];
    series[Attention] =
        mixed(independent[0], visualAttention, independent[2], remainder(visualAttention));
    // No part of the visual series, so that the two do not correlate.
    const double part = attentionDefault / remainder(visualAttention);
    series[Default] = mixed(independent[2], part, independent[3], remainder(part));
    return series;
}

/// While the subject moves, the motor network also follows the visual one.
void coupleInMovement(std::array<Series, networkCount> &series)
{
    for (int t = 0; t < volumeCount; ++t)
        if (isDuring("movement", t * repetitionTime))
            series[Motor][t] = couplingInMovement * series[Visual][t] +
                               remainder(couplingInMovement) * series[Motor][t];
}

/// Each region has a part of its network's series and a part of its own.
std::array<Series, regionCount> withOwnParts(const std::array<Series, networkCount> &networks,
                                             const std::vector<Series> &independent)
{
    const double shared = amplitude * std::sqrt(correlationWithinNetwork);
    const double own = amplitude * std::sqrt(1 - correlationWithinNetwork);
    std::array<Series, regionCount> all;
    for (int number = 0; number < regionCount; ++number)
        all[number] = mixed(networks[regions[number].network], shared,
                            independent[networkCount + number], own);
    return all;
}

/// A sine wave with a step of one volume, made by turning a point: the sine function of the
/// library may differ in its last bit from machine to machine. The arguments are cosine and sine
/// of the step.
Series wave(double cosine, double sine)
{
    Series series(volumeCount);
    double x = 1;
    double y = 0;
    for (double &sample : series) {
        sample = y;
        const double turned = cosine * x - sine * y;
        y = sine * x + cosine * y;
        x = turned;
    }
    return series;
}

} // namespace

std::vector<TaskEvent> taskEvents()
{
    std::vector<TaskEvent> events;
    const double block = 30;
    const double cycle = 68;
    for (int number = 0; number < 5; ++number) {
        const double start = number * cycle;
        events.push_back({start, block, "rest"});
        events.push_back({start + 31, 0, "cue"});
        events.push_back({start + 34, block, "movement"});
    }
    events.push_back({5 * cycle, block, "rest"});
    return events;
}

/// The generator of Steele, Lea and Flood 2014, OOPSLA, doi:10.1145/2660193.2660195.
quint64 Random::next()
{
    m_state += Q_UINT64_C(0x9e3779b97f4a7c15);
    quint64 bits = m_state;
    bits = (bits ^ (bits >> 30)) * Q_UINT64_C(0xbf58476d1ce4e5b9);
    bits = (bits ^ (bits >> 27)) * Q_UINT64_C(0x94d049bb133111eb);
    return bits ^ (bits >> 31);
}

double Random::normal()
{
    double sum = 0;
    for (int word = 0; word < 3; ++word)
        for (quint64 bits = next(), part = 0; part < 4; ++part, bits >>= 16)
            sum += static_cast<double>(bits & 0xffff) + 0.5;
    return sum / 65536 - 6;
}

double networkCorrelation(Network a, Network b)
{
    if (a == b)
        return 1;
    if ((a == Visual && b == Attention) || (a == Attention && b == Visual))
        return 0.4;
    if ((a == Attention && b == Default) || (a == Default && b == Attention))
        return -0.5;
    return 0;
}

std::array<Series, regionCount> regionSeries()
{
    Random random(1);
    const std::vector<Series> independent = independentSeries(networkCount + regionCount, random);
    std::array<Series, networkCount> networks = networkSeries(independent);
    coupleInMovement(networks);
    std::array<Series, regionCount> all = withOwnParts(networks, independent);
    for (const TaskEvent &event : taskEvents()) {
        if (std::strcmp(event.condition, "cue") != 0)
            continue;
        // The response comes four seconds behind the cue.
        const int volume = static_cast<int>((event.onset + 4) / repetitionTime);
        for (int number = 0; number < regionCount; ++number)
            if (regions[number].network == Visual)
                all[number][volume] += cueResponse;
    }
    return all;
}

std::array<Series, regionCount> restSeries()
{
    Random random(5);
    const std::vector<Series> independent = independentSeries(networkCount + regionCount, random);
    return withOwnParts(networkSeries(independent), independent);
}

Series persistentSeries(Random &random, double part)
{
    Series series = walk(random, part);
    const double deviation = std::sqrt(scalarProduct(series, series) / volumeCount);
    for (double &sample : series)
        sample /= deviation;
    return series;
}

double correlation(const Series &a, const Series &b)
{
    Series first = a;
    Series second = b;
    subtractMean(first);
    subtractMean(second);
    return scalarProduct(first, second) /
           std::sqrt(scalarProduct(first, first) * scalarProduct(second, second));
}

Nuisance nuisance()
{
    Nuisance result;
    result.drift.resize(volumeCount);
    for (int t = 0; t < volumeCount; ++t) {
        const double place = 2.0 * t / (volumeCount - 1) - 1;
        result.drift[t] = 8 * place + 4 * place * place;
    }
    // 0.29 and 1.13 Hz, seen every two seconds.
    result.breathing = wave(-0.8763066800438637, -0.4817536741017153);
    result.pulse = wave(-0.06279051952931337, 0.9980267284282716);
    return result;
}

} // namespace corvane::example
