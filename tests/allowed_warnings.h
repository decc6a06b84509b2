// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QString;

/// Whether a warning of Qt is on the short list of those known to be right.
bool isAllowedWarning(const QString &warning);
