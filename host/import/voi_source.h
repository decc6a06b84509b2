// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace corvane
{

/// A file that VOIs are made of.
struct VoiSource {
    enum Kind {
        Atlas,  ///< an image of labels: a VOI for each
        Mask,   ///< an image whose values other than 0 are one VOI, named as the file
        Spheres ///< a table of centres, see host/import/sphere_table.h
    };

    Kind kind = Atlas;
    QString file;
    QString labels = {}; ///< table with the names of an atlas's labels; empty for none
};

} // namespace corvane
