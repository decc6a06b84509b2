// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/extract/connectome.h"
#include "host/report/html_page.h"

namespace corvane
{

/// A section that tells how sure a correlation of the whole run is: 95 % intervals of several
/// correlations, from the ledger's degrees of freedom and, where these do not already come from a
/// band, from those that the serial correlation of the median pair leaves.
void addConfidence(HtmlPage &page, const Connectome &connectome);

} // namespace corvane
