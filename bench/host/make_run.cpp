// SPDX-License-Identifier: GPL-3.0-or-later
//
// make_run FOLDER [half-a-voxel-off]: writes run.nii.gz, 60 x 72 x 60 x 300 samples of 16 bits, and
// anatomy.nii.gz, 180 x 216 x 180 voxels of 1 mm, packed as gzip does it by default.
// make_run FOLDER large: writes large.nii.gz, 97 x 115 x 97 x 300 samples of single precision.
// make_run FOLDER atlases: writes atlas100.nii.gz and atlas400.nii.gz, on the grids of these runs.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>
#include <zlib.h>

namespace
{

using Bytes = std::vector<unsigned char>;

void put(Bytes &bytes, std::size_t offset, const void *value, std::size_t length)
{
    std::memcpy(bytes.data() + offset, value, length);
}

void putShort(Bytes &bytes, std::size_t offset, int value)
{
    const auto number = static_cast<std::int16_t>(value);
    put(bytes, offset, &number, sizeof number);
}

void putFloat(Bytes &bytes, std::size_t offset, double value)
{
    const auto number = static_cast<float>(value);
    put(bytes, offset, &number, sizeof number);
}

struct Grid {
    int x, y, z, volumes;
    double voxel;
    double firstX, firstY, firstZ;
};

Bytes header(const Grid &grid, int datatype, int bits)
{
    Bytes bytes(352);
    const std::int32_t length = 348;
    put(bytes, 0, &length, sizeof length);
    const int dim[8] = {grid.volumes > 1 ? 4 : 3, grid.x, grid.y, grid.z, grid.volumes, 1, 1, 1};
    const double pixdim[8] = {1, grid.voxel, grid.voxel, grid.voxel, 2, 0, 0, 0};
    for (std::size_t i = 0; i < 8; ++i) {
        putShort(bytes, 40 + 2 * i, dim[i]);
        putFloat(bytes, 76 + 4 * i, pixdim[i]);
    }
    putShort(bytes, 70, datatype);
    putShort(bytes, 72, bits);
    putFloat(bytes, 108, 352);
    bytes[123] = 2 | 8;
    putShort(bytes, 254, 1);
    const double first[3] = {grid.firstX, grid.firstY, grid.firstZ};
    for (std::size_t row = 0; row < 3; ++row) {
        putFloat(bytes, 280 + 20 * row, grid.voxel);
        putFloat(bytes, 292 + 16 * row, first[row]);
    }
    std::memcpy(bytes.data() + 344, "n+1", 4);
    return bytes;
}

/// Random bits, the same at each run of the program.
std::uint64_t nextBits()
{
    static std::uint64_t state = 88172645463325252U;
    state ^= state << 13;
    state ^= state >> 7;
    state ^= state << 17;
    return state;
}

int noise(std::uint64_t bits)
{
    return static_cast<int>((bits & 15) + (bits >> 4 & 15) + (bits >> 8 & 15) + (bits >> 12 & 15)) -
           30;
}

/// Squared distance from the middle of the grid, 1 at the border of a head in it.
double squaredRadius(const Grid &grid, int i, int j, int k)
{
    const double a = (i - grid.x / 2.0) / (0.47 * grid.x);
    const double b = (j - grid.y / 2.0) / (0.47 * grid.y);
    const double c = (k - grid.z / 2.0) / (0.47 * grid.z);
    return a * a + b * b + c * c;
}

void writeRun(const std::string &path, double shift)
{
    const Grid grid{60, 72, 60, 300, 3, -88.5 + shift, -124.5, -70.5};
    const gzFile file = gzopen(path.c_str(), "wb6");
    const Bytes start = header(grid, 4, 16);
    gzwrite(file, start.data(), static_cast<unsigned>(start.size()));
    std::vector<std::int16_t> volume;
    for (int t = 0; t < grid.volumes; ++t) {
        volume.clear();
        for (int k = 0; k < grid.z; ++k)
            for (int j = 0; j < grid.y; ++j)
                for (int i = 0; i < grid.x; ++i) {
                    const double radius = squaredRadius(grid, i, j, k);
                    const int random = noise(nextBits());
                    const int value = radius < 1 ? static_cast<int>(900 + 100 * radius) + random
                                                 : (random > 8 ? random - 8 : 0);
                    volume.push_back(static_cast<std::int16_t>(value));
                }
        gzwrite(file, volume.data(), static_cast<unsigned>(volume.size() * sizeof volume[0]));
    }
    gzclose(file);
}

const Grid largeGrid{97, 115, 97, 300, 2, -96, -132, -78};

/// Zeros around a head of full precision, as a pipeline resamples it.
void writeLargeRun(const std::string &path)
{
    const Grid &grid = largeGrid;
    const gzFile file = gzopen(path.c_str(), "wb1");
    const Bytes start = header(grid, 16, 32);
    gzwrite(file, start.data(), static_cast<unsigned>(start.size()));
    std::vector<float> volume;
    for (int t = 0; t < grid.volumes; ++t) {
        volume.clear();
        for (int k = 0; k < grid.z; ++k)
            for (int j = 0; j < grid.y; ++j)
                for (int i = 0; i < grid.x; ++i) {
                    const double radius = squaredRadius(grid, i, j, k);
                    const double noise = static_cast<double>(nextBits() >> 11) / 9007199254740992.0;
                    volume.push_back(
                        radius < 1 ? static_cast<float>(900 + 100 * radius + 50 * noise) : 0.0f);
                }
        gzwrite(file, volume.data(), static_cast<unsigned>(volume.size() * sizeof volume[0]));
    }
    gzclose(file);
}

/// Boxes of one size with running labels, in the head.
void writeAtlas(const std::string &path, Grid grid, int labels)
{
    grid.volumes = 1;
    const gzFile file = gzopen(path.c_str(), "wb6");
    const Bytes start = header(grid, 4, 16);
    gzwrite(file, start.data(), static_cast<unsigned>(start.size()));
    const int perAxis = labels == 100 ? 5 : 8; // 5 x 5 x 4 boxes, 8 x 8 x 7 less the last ones
    const int layers = (labels + perAxis * perAxis - 1) / (perAxis * perAxis);
    std::vector<std::int16_t> volume;
    for (int k = 0; k < grid.z; ++k)
        for (int j = 0; j < grid.y; ++j)
            for (int i = 0; i < grid.x; ++i) {
                const int box = i * perAxis / grid.x + perAxis * (j * perAxis / grid.y) +
                                perAxis * perAxis * (k * layers / grid.z);
                const bool inside = squaredRadius(grid, i, j, k) < 1 && box < labels;
                volume.push_back(static_cast<std::int16_t>(inside ? box + 1 : 0));
            }
    gzwrite(file, volume.data(), static_cast<unsigned>(volume.size() * sizeof volume[0]));
    gzclose(file);
}

void writeAnatomy(const std::string &path)
{
    const Grid grid{180, 216, 180, 1, 1, -89.5, -125.5, -71.5};
    const gzFile file = gzopen(path.c_str(), "wb6");
    const Bytes start = header(grid, 2, 8);
    gzwrite(file, start.data(), static_cast<unsigned>(start.size()));
    Bytes plane;
    for (int k = 0; k < grid.z; ++k) {
        plane.clear();
        for (int j = 0; j < grid.y; ++j)
            for (int i = 0; i < grid.x; ++i)
                plane.push_back(static_cast<unsigned char>(
                    (squaredRadius(grid, i, j, k) < 1 ? 140 : 40) + noise(nextBits())));
        gzwrite(file, plane.data(), static_cast<unsigned>(plane.size()));
    }
    gzclose(file);
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 2) {
        std::fputs("usage: make_run FOLDER [half-a-voxel-off|large|atlases]\n", stderr);
        return 2;
    }
    const std::string folder = argv[1];
    const std::string what = argc > 2 ? argv[2] : "";
    if (what == "large") {
        writeLargeRun(folder + "/large.nii.gz");
        return 0;
    }
    if (what == "atlases") {
        writeAtlas(folder + "/atlas100.nii.gz", {60, 72, 60, 1, 3, -88.5, -124.5, -70.5}, 100);
        writeAtlas(folder + "/atlas400.nii.gz", largeGrid, 400);
        return 0;
    }
    writeRun(folder + "/run.nii.gz", what.empty() ? 0 : 0.5);
    writeAnatomy(folder + "/anatomy.nii.gz");
    return 0;
}
