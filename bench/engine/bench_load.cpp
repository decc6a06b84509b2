// SPDX-License-Identifier: GPL-3.0-or-later
//
// Loading a subject through the host's function table: a run of 60 x 72 x 60 samples and 300
// volumes, VOIs of 300 voxels each.
#include "dataset/subject.h"
#include "tests/support/fake_host.h"

#include <benchmark/benchmark.h>

namespace
{

constexpr int dimX = 60;
constexpr int dimY = 72;
constexpr int dimZ = 60;
constexpr int voxelsPerVoi = 300;

void loadSubject(benchmark::State &state)
{
    fake_host::FakeHost host;
    Subject subject;
    subject.setDocumentId(host.addVmr("/a.vmr"));
    subject.setVtcFile("/r.vtc");
    subject.setVoiFile("/v.voi");
    host.vtcs["/r.vtc"] =
        fake_host::makeVtc({{{0, 3 * dimX}, {0, 3 * dimY}, {0, 3 * dimZ}}}, 3, 300, 1,
                           [](int i, int j, int k, int t) { return float((i + j + k + t) % 999); });
    std::vector<fake_host::Voi> &vois = host.voiSets["/v.voi"].vois;
    int voxel = 0;
    for (int v = 0; v < state.range(0); ++v) {
        fake_host::Voi voi{"VOI", {}, true};
        for (int n = 0; n < voxelsPerVoi; ++n, voxel += 7) {
            voi.voxels.push_back({3 * (voxel % dimX), 3 * (voxel / dimX % dimY),
                                  3 * (voxel / (dimX * dimY) % dimZ)});
        }
        vois.push_back(voi);
    }
    // The stand-in host copies the run when it is linked; that is not the plugin's time.
    for (auto _ : state) {
        state.PauseTiming();
        Subject loaded = subject;
        state.ResumeTiming();
        if (!loaded.load())
            state.SkipWithError("not loaded");
    }
}

void linkOnly(benchmark::State &state)
{
    // What the stand-in host takes of loadSubject: the copy of the run.
    fake_host::FakeHost host;
    const fake_host::Vtc vtc =
        fake_host::makeVtc({{{0, 3 * dimX}, {0, 3 * dimY}, {0, 3 * dimZ}}}, 3, 300, 1,
                           [](int i, int j, int k, int t) { return float((i + j + k + t) % 999); });
    fake_host::Vtc copy;
    for (auto _ : state) {
        copy = vtc;
        benchmark::DoNotOptimize(copy.integers.data());
    }
}

} // namespace

BENCHMARK(loadSubject)->ArgName("VOIs")->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);
BENCHMARK(linkOnly)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
