// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/ledger.h"

#include <cmath>

#include "signals/text.h"

namespace signals
{

namespace
{

double mean_of(const Eigen::ArrayXd &values, const Flags &flags)
{
    double sum = 0;
    Eigen::Index count = 0;
    for (Eigen::Index i = 0; i < values.size(); ++i) {
        if (flags[i] && !std::isnan(values[i])) {
            sum += values[i];
            ++count;
        }
    }
    return count > 0 ? sum / double(count) : std::numeric_limits<double>::quiet_NaN();
}

void require_equal(Eigen::Index found, const char *what, Eigen::Index volumes)
{
    if (found != volumes) {
        throw Error(std::string(what) + " of " + counted(found, "volume") + ": expected " +
                    std::to_string(volumes));
    }
}

} // namespace

Refused::Refused(const std::string &reason, const Ledger &ledger)
    : Error(reason + " (" + text(ledger) + ")"), m_ledger(ledger)
{
}

Ledger count_volumes(const Volumes &volumes, double tr)
{
    require_equal(volumes.censored.size(), "a list of censored volumes", volumes.count());
    const Flags kept = volumes.kept();
    Ledger ledger;
    ledger.volumes = volumes.count();
    ledger.non_steady = volumes.non_steady.count();
    ledger.kept = kept.count();
    ledger.censored = ledger.volumes - ledger.non_steady - ledger.kept;
    ledger.degrees = double(ledger.kept);
    ledger.seconds = double(ledger.kept) * tr;
    if (volumes.fd.size() > 0) {
        require_equal(volumes.fd.size(), "FD", volumes.count());
        Flags before = !volumes.non_steady;
        before[0] = false;
        ledger.mean_fd_before = mean_of(volumes.fd, before);
        ledger.mean_fd_after = mean_of(volumes.fd, kept);
    }
    return ledger;
}

std::string text(const Ledger &ledger)
{
    return counted(ledger.volumes, "volume") + " in the file, " +
           std::to_string(ledger.non_steady) + " non-steady, " + std::to_string(ledger.censored) +
           " censored, " + std::to_string(ledger.kept) + " kept, " + number(ledger.seconds) +
           " s; design of rank " + std::to_string(ledger.rank) + ", " +
           (ledger.about ? "about " : "") + number(ledger.degrees) +
           " degrees of freedom left; mean FD " + number(ledger.mean_fd_before) + " mm before, " +
           number(ledger.mean_fd_after) + " mm after";
}

void require_enough(const Ledger &ledger, const Limits &limits)
{
    const auto refuse = [&](const std::string &found, const std::string &wanted) {
        throw Refused("too little is left of the run: " + found + ", expected at least " + wanted,
                      ledger);
    };
    // Negated, so that a NaN is refused too.
    if (!(ledger.degrees >= least_degrees)) {
        refuse(number(ledger.degrees) + " degrees of freedom", number(least_degrees));
    }
    if (ledger.kept < limits.volumes) {
        refuse(counted(ledger.kept, "volume"), std::to_string(limits.volumes));
    }
    if (!(ledger.seconds >= limits.seconds)) {
        refuse(number(ledger.seconds) + " s", number(limits.seconds) + " s");
    }
}

} // namespace signals
