# SPDX-License-Identifier: GPL-3.0-or-later
# tessera_precompile(TARGET header...): reads headers of libraries once for a target of many files,
# those that everything here uses and the given ones.
#
# Not under the sanitizers: there each file is seen to include what it uses.

function(tessera_precompile target)
    if(NOT TESSERA_SANITIZE)
        target_precompile_headers(${target} PRIVATE
            <algorithm> <array> <cmath> <functional> <map> <memory> <optional> <string> <vector>
            <Eigen/Core> <QDir> <QFile> <QHash> <QJsonDocument> <QPointer> <QRegularExpression>
            <QStringList> <QVector> ${ARGN})
    endif()
endfunction()
