// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/report/example_run.h"

#include "tests/host/support/nifti_files.h"

#include <cmath>

namespace corvane
{

namespace
{

/// A number that looks random, the same everywhere, from -0.5 to 0.5.
double jitter(int a, int b)
{
    unsigned mixed = unsigned(a) * 2654435761U ^ unsigned(b) * 2246822519U;
    mixed ^= mixed >> 15;
    mixed *= 2246822519U;
    mixed ^= mixed >> 13;
    return double(mixed >> 8 & 0xffff) / 65536 - 0.5;
}

QByteArray confounds(int volumes)
{
    QByteArray table = "framewise_displacement\tstd_dvars\ttrouble\tnon_steady_state_outlier00\n";
    for (int t = 0; t < volumes; ++t)
        table += (t == 0 ? QByteArray("n/a\tn/a") : QByteArray(t == 10 ? "0.9\t1.8" : "0.1\t1")) +
                 '\t' + QByteArray::number(jitter(t, 7777), 'g', 17) + '\t' +
                 (t == 0 ? "1\n" : "0\n");
    return table;
}

QByteArray labels(int nodes)
{
    QByteArray table = "index\tname\tnetwork\themisphere\n";
    for (int node = 0; node < nodes; ++node) {
        QByteArray name = "Node " + QByteArray::number(node);
        if (node == 0)
            name = "First <b>& \"only\"</b>";
        if (node == 1)
            name = "</td><script>alert(1)</script>";
        table += QByteArray::number(node + 1) + '\t' + name + '\t' +
                 (node % 2 == 0 ? "Visual & more" : "Limbic") + '\t' +
                 (node < nodes / 2 ? "L\n" : "R\n");
    }
    return table;
}

} // namespace

ExampleRun::ExampleRun(int nodes, int volumes)
{
    NiftiParts run;
    run.setSize({nodes, 1, 2, volumes});
    run.setSpacing(3);
    run.pixdim[4] = 2;
    std::vector<float> samples;
    for (int t = 0; t < volumes; ++t)
        for (int voxel = 0; voxel < 2 * nodes; ++voxel) {
            const int node = voxel % nodes;
            samples.push_back(float(1000 + 100 * jitter(t, node) + 80 * jitter(t, 5000 + node % 2) +
                                    60 * jitter(t, 7777) + 10 * jitter(t, 9000 + voxel)));
        }
    setSamples(run, samples);

    std::vector<qint16> regions;
    std::vector<qint16> inside;
    for (int voxel = 0; voxel < 2 * nodes; ++voxel) {
        regions.push_back(qint16(voxel % nodes + 1));
        inside.push_back(voxel % nodes == nodes - 1 ? 0 : 1);
    }
    NiftiParts image;
    image.setSize({nodes, 1, 2});
    image.setSpacing(3);
    setSamples(image, regions);
    NiftiParts mask = image;
    setSamples(mask, inside);

    m_request.run = m_folder.path("sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz");
    m_request.atlas = m_folder.path("tpl_atlas-Rows_dseg.nii.gz");
    m_request.labels = m_folder.path("names & more.tsv");
    m_request.mask = m_folder.path("sub-01_mask.nii.gz");
    m_request.cleaning.confounds = m_folder.path("sub-01_desc-confounds_timeseries.tsv");
    m_request.cleaning.strategy.strategy = "columns:trouble";
    m_request.cleaning.strategy.fd_threshold = 0.5;
    putBytes(m_request.run, gzipped(niftiBytes(run)));
    putBytes(m_request.atlas, gzipped(niftiBytes(image)));
    putBytes(m_request.mask, gzipped(niftiBytes(mask)));
    putBytes(m_request.labels, labels(nodes));
    putBytes(m_request.cleaning.confounds, confounds(volumes));
}

} // namespace corvane
