// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/extract/connectome_files.h"

namespace corvane
{

/// The HTML page of a run and an atlas: what went in, the ledger, motion and signal over the run,
/// the design, coverage, matrix and ring, how sure a correlation is, and a table of the nodes. It
/// needs no other file and depends on nothing but its arguments. Needs a QGuiApplication.
QByteArray runPage(const ConnectomeRequest &request, const ConnectomeNames &names,
                   const Connectome &connectome);

/// What the file is called: "<stem>_report.html".
QString runPageName(const ConnectomeNames &names);

} // namespace corvane
