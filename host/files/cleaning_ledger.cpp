// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/cleaning_ledger.h"

#include "host/files/limits.h"
#include "host/files/text_check.h"

#include <cmath>

namespace corvane
{

namespace
{

constexpr auto methodKey = "cleaning";
constexpr auto volumesKey = "cleaning volumes";
constexpr auto nonSteadyKey = "cleaning non-steady volumes";
constexpr auto censoredKey = "cleaning censored volumes";
constexpr auto keptKey = "cleaning kept volumes";
constexpr auto rankKey = "cleaning rank";
constexpr auto freedomKey = "cleaning degrees of freedom";
constexpr auto secondsKey = "cleaning seconds kept";
constexpr auto fdBeforeKey = "cleaning mean FD before";
constexpr auto fdAfterKey = "cleaning mean FD after";

QString name(const char *key)
{
    return QString::fromLatin1(key);
}

QString notAvailable()
{
    return QStringLiteral("n/a");
}

QString text(int number)
{
    return QString::number(number);
}

QString text(double number)
{
    return QString::fromLatin1(shortestDecimal(number));
}

QString text(const std::optional<double> &number)
{
    return number ? text(*number) : notAvailable();
}

int wholeKey(const NrrdHeader &header, const char *key)
{
    return header.wholeNumber(name(key), 0, largestCount);
}

double numberKey(const NrrdHeader &header, const char *key)
{
    const std::optional<double> number = finiteNumber(header.text(name(key)));
    if (!number)
        header.fail(name(key), QStringLiteral("a finite number"));
    return *number;
}

std::optional<double> fdKey(const NrrdHeader &header, const char *key)
{
    if (header.text(name(key)) == notAvailable())
        return std::nullopt;
    return numberKey(header, key);
}

bool isNegative(double number)
{
    return !std::isfinite(number) || number < 0;
}

std::optional<QString> methodFault(const QString &method)
{
    if (method.isEmpty())
        return QStringLiteral("an empty text");
    if (method.size() > CleaningLedger::longestMethod)
        return QStringLiteral("%1 characters").arg(method.size());
    return nameFault(method);
}

} // namespace

QStringList cleaningKeys()
{
    QStringList keys;
    for (const char *key : {methodKey, volumesKey, nonSteadyKey, censoredKey, keptKey, rankKey,
                            freedomKey, secondsKey, fdBeforeKey, fdAfterKey})
        keys += name(key);
    return keys;
}

std::optional<BrokenRule> brokenRule(const CleaningLedger &ledger)
{
    if (const auto fault = methodFault(ledger.method))
        return BrokenRule{
            methodKey, *fault,
            QStringLiteral("a line of 1 to %1 characters").arg(CleaningLedger::longestMethod)};
    const std::pair<const char *, int> counts[] = {{nonSteadyKey, ledger.nonSteady},
                                                   {censoredKey, ledger.censored},
                                                   {keptKey, ledger.kept},
                                                   {rankKey, ledger.rank}};
    for (const auto &[key, count] : counts)
        if (count < 0)
            return BrokenRule{key, text(count), QStringLiteral("0 or more")};
    const qint64 sum = qint64(ledger.nonSteady) + ledger.censored + ledger.kept;
    if (ledger.volumes < 1 || ledger.volumes != sum)
        return BrokenRule{volumesKey, text(ledger.volumes),
                          QStringLiteral("the sum of those non-steady, censored and kept, 1 or "
                                         "more")};
    const std::pair<const char *, double> numbers[] = {
        {freedomKey, ledger.degreesOfFreedom},
        {secondsKey, ledger.secondsKept},
        {fdBeforeKey, ledger.meanFdBefore.value_or(0)},
        {fdAfterKey, ledger.meanFdAfter.value_or(0)}};
    for (const auto &[key, number] : numbers)
        if (isNegative(number))
            return BrokenRule{key, text(number), QStringLiteral("a finite number, 0 or more")};
    return std::nullopt;
}

QString ledgerText(const CleaningLedger &ledger)
{
    return QStringLiteral("%1: %2 of %3 volumes kept, %4 degrees of freedom left")
        .arg(ledger.method, text(ledger.kept), text(ledger.volumes),
             QString::number(ledger.degreesOfFreedom, 'g', 4));
}

void addCleaning(NrrdWriter &header, const CleaningLedger &ledger)
{
    header.key(methodKey, ledger.method)
        .key(volumesKey, text(ledger.volumes))
        .key(nonSteadyKey, text(ledger.nonSteady))
        .key(censoredKey, text(ledger.censored))
        .key(keptKey, text(ledger.kept))
        .key(rankKey, text(ledger.rank))
        .key(freedomKey, text(ledger.degreesOfFreedom))
        .key(secondsKey, text(ledger.secondsKept))
        .key(fdBeforeKey, text(ledger.meanFdBefore))
        .key(fdAfterKey, text(ledger.meanFdAfter));
}

std::optional<CleaningLedger> readCleaning(const NrrdHeader &header)
{
    const QStringList keys = cleaningKeys();
    if (std::none_of(keys.begin(), keys.end(), [&](const QString &key) { return header.has(key); }))
        return std::nullopt;
    CleaningLedger ledger;
    ledger.method = header.text(name(methodKey));
    ledger.volumes = wholeKey(header, volumesKey);
    ledger.nonSteady = wholeKey(header, nonSteadyKey);
    ledger.censored = wholeKey(header, censoredKey);
    ledger.kept = wholeKey(header, keptKey);
    ledger.rank = wholeKey(header, rankKey);
    ledger.degreesOfFreedom = numberKey(header, freedomKey);
    ledger.secondsKept = numberKey(header, secondsKey);
    ledger.meanFdBefore = fdKey(header, fdBeforeKey);
    ledger.meanFdAfter = fdKey(header, fdAfterKey);
    return ledger;
}

} // namespace corvane
