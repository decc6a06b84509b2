// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/host/support/host_files.h"

#include <cmath>
#include <functional>

/// @file
/// Results as commands leave them, small ones, for tests of the connectome window.

namespace corvane
{

inline QByteArray matrixText(int nodes, const std::function<double(int, int)> &value)
{
    QByteArray text = "Node";
    const auto name = [](int node) { return "Region " + QByteArray::number(node); };
    for (int node = 0; node < nodes; ++node)
        text += '\t' + name(node);
    for (int row = 0; row < nodes; ++row) {
        text += '\n' + name(row);
        for (int column = 0; column < nodes; ++column)
            text += '\t' + QByteArray::number(row == column ? 1.0 : value(row, column), 'g', 17);
    }
    return text + '\n';
}

inline double exampleValue(int a, int b)
{
    return std::sin(1.7 * (a + 1) * (b + 1)) * 0.9;
}

/// A run with a matrix, one of a condition, twelve nodes in three networks, places and series.
class ExampleResult
{
public:
    static constexpr int nodes = 12;

    ExampleResult()
    {
        put("stat-pearsoncorrelation_relmat.tsv", matrixText(nodes, exampleValue));
        put("stat-pearsoncorrelation_relmat.json",
            R"({"RelationshipMeasure": "Pearson correlation", "Ledger": {"DegreesOfFreedom": 50}})");
        put("cond-faces_stat-pearsoncorrelation_relmat.tsv",
            matrixText(nodes, [](int a, int b) { return -exampleValue(a, b) / 2; }));
        put("cond-faces_stat-pearsoncorrelation_relmat.json",
            R"({"RelationshipMeasure": "Pearson correlation", "Part": {"Condition": "faces",
                "Intervals": [[5, 9]], "Volumes": [5, 6, 7, 8, 9], "DegreesOfFreedom": 12}})");
        QByteArray places = "index\tname\tnetwork\themisphere\tx\ty\tz\tvoxels\tused_voxels\n";
        QByteArray series;
        for (int node = 0; node < nodes; ++node) {
            const double turn = 2 * 3.141592653589793 * node / nodes;
            places += QByteArray::number(node + 1) + "\tRegion " + QByteArray::number(node) + '\t' +
                      "ABC"[node % 3] + '\t' + (node % 2 == 0 ? "L" : "R") + '\t' +
                      QByteArray::number(60 * std::cos(turn), 'f', 1) + '\t' +
                      QByteArray::number(80 * std::sin(turn), 'f', 1) + '\t' +
                      QByteArray::number(4 * node) + "\t10\t9\n";
            series += (node > 0 ? "\t" : "") + QByteArray("Region ") + QByteArray::number(node);
        }
        series += '\n';
        QByteArray kept;
        for (int volume = 0; volume < 40; ++volume) {
            if (volume == 20)
                continue;
            kept += (kept.isEmpty() ? "" : ", ") + QByteArray::number(volume);
            for (int node = 0; node < nodes; ++node)
                series += (node > 0 ? "\t" : "") +
                          QByteArray::number(std::sin(0.37 * volume * (node + 1) + node), 'g', 17);
            series += '\n';
        }
        put("nodes.tsv", places);
        put("stat-mean_timeseries.tsv", series);
        put("stat-mean_timeseries.json",
            R"({"RepetitionTime": 2, "Volumes": [)" + kept +
                R"(], "Ledger": {"Volumes": 40, "Kept": 39, "DegreesOfFreedom": 50}})");
    }

    QString path() const { return m_folder.path(); }
    QString path(const char *name) const { return m_folder.path(name); }

private:
    void put(const char *rest, const QByteArray &bytes)
    {
        putBytes(
            m_folder.path(QStringLiteral("sub-01_task-rest_atlas-Twelve_") + QLatin1String(rest)),
            bytes);
    }

    TemporaryFolder m_folder;
};

/// A group of twelve nodes with a contrast and two networks.
class ExampleGroup
{
public:
    ExampleGroup()
    {
        QByteArray names;
        for (int node = 0; node < ExampleResult::nodes; ++node)
            names +=
                (node > 0 ? ", " : "") + QByteArray("\"Region ") + QByteArray::number(node) + '"';
        putBytes(
            m_folder.path("group.json"),
            R"({"Participants": ["s1", "s2"], "LeftOut": ["sub-09 lacks Region 3"], "Nodes": [)" +
                names + R"(], "Contrasts": [{"Name": "old", "Statistic": "t"}]})");
        QByteArray edges = "contrast\tnode_1\tnode_2\testimate\tt\tF\tdf\tp\tp_perm\tp_fwe\tq\n";
        for (int a = 0; a < ExampleResult::nodes; ++a)
            for (int b = a + 1; b < ExampleResult::nodes; ++b)
                edges += "old\tRegion " + QByteArray::number(a) + "\tRegion " +
                         QByteArray::number(b) + '\t' +
                         QByteArray::number(exampleValue(a, b) / 4, 'g', 17) + '\t' +
                         QByteArray::number(exampleValue(a, b) * 4, 'g', 17) +
                         "\tn/a\t18\t0.01\t0.02\t0.3\t0.4\n";
        putBytes(m_folder.path("edges.tsv"), edges);
        putBytes(m_folder.path("components.tsv"),
                 "contrast\tthreshold\tside\tedges\tintensity\tp_extent\tp_intensity\tmembers\n"
                 "old\t2.5\tgreater\t2\t1\t0.04\t0.05\t0-1 1-2\n"
                 "old\t2.5\tless\t1\t1\t0.5\t0.6\t3-4\n");
    }

    QString path() const { return m_folder.path(); }

private:
    TemporaryFolder m_folder;
};

} // namespace corvane
