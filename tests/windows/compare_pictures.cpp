// SPDX-License-Identifier: GPL-3.0-or-later
//
// compare_pictures EXPECTED FOUND [PART SHARE]: the PNG files of two folders have the same names,
// and look alike. Letters are drawn with other edges on other systems and are a trifle wider, and
// with them pictures that are as large as what is in them; but nothing else differs. Of pictures
// with PART in their name a SHARE may.
#include <QColor>
#include <QDir>
#include <QImage>

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace
{

/// Pictures that are blurred to blocks of this many pixels differ where things stand elsewhere, are
/// missing or have another colour, and hardly where letters have other edges.
constexpr int block = 8;
constexpr int mostDifference = 64; ///< of a colour's part, out of 255
constexpr double mostBlocks = 0.002;
constexpr double mostGrowth = 0.02;

QImage blurred(const QImage &picture, const QSize &size)
{
    return picture.convertToFormat(QImage::Format_RGB32)
        .scaled(size / block, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

bool areAlike(int a, int b)
{
    return a > 0 && b > 0 && std::abs(a - b) <= mostGrowth * a;
}

double differingBlocks(const QImage &a, const QImage &b)
{
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QColor p = a.pixelColor(x, y);
            const QColor q = b.pixelColor(x, y);
            if (std::abs(p.red() - q.red()) > mostDifference ||
                std::abs(p.green() - q.green()) > mostDifference ||
                std::abs(p.blue() - q.blue()) > mostDifference)
                ++count;
        }
    }
    return double(count) / (double(a.width()) * a.height());
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3 && argc != 5)
        return 2;
    const QString special = argc == 5 ? QString::fromUtf8(argv[3]) : QString();
    const double mostSpecial = argc == 5 ? std::atof(argv[4]) : 0;
    const QDir expected(QString::fromUtf8(argv[1]));
    const QDir found(QString::fromUtf8(argv[2]));
    const QStringList pictures = expected.entryList({QStringLiteral("*.png")}, QDir::Files);
    bool failed =
        pictures.isEmpty() || pictures != found.entryList({QStringLiteral("*.png")}, QDir::Files);
    for (const QString &name : pictures) {
        const QImage a(expected.filePath(name));
        const QImage b(found.filePath(name));
        const bool haveOneSize = areAlike(a.width(), b.width()) && areAlike(a.height(), b.height());
        const double difference =
            haveOneSize ? differingBlocks(blurred(a, a.size()), blurred(b, a.size())) : 1;
        std::printf("%s: %d x %d, here %d x %d, %.2f %% of it differ\n", qPrintable(name),
                    b.width(), b.height(), a.width(), a.height(), 100 * difference);
        const bool isSpecial = !special.isEmpty() && name.contains(special);
        failed = failed || difference > (isSpecial ? mostSpecial : mostBlocks);
    }
    std::printf("%d pictures\n", int(pictures.size()));
    return failed ? 1 : 0;
}
