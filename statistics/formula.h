// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace statistics
{

/// What a term is a product of.
struct Factor {
    enum class Kind {
        plain,    ///< `x`: a number, or a category if the column holds text
        category, ///< `C(x)`, `C(x, ref=v)`: a category also if the column holds numbers
        centred,  ///< `center(x)`: a number less its mean
    };
    Kind kind = Kind::plain;
    std::string column;
    /// The reference level, where the formula names it.
    std::optional<std::string> reference;
};

using Term = std::vector<Factor>;

/// The right-hand side of a model.
struct Formula {
    bool intercept = true;
    /// Main effects first, then interactions of two, of three, ...; otherwise as written. No term
    /// stands twice.
    std::vector<Term> terms;
};

/// Reads a formula such as `group * center(age) + C(site, ref=B) - 1`.
///
/// - `a + b` both terms; `a:b` their interaction; `a * b` is `a + b + a:b`, and of three or more
///   all of their interactions. `:` binds tighter than `*`, `*` tighter than `+`.
/// - `1` keeps the intercept, which is there by itself; `0 +`, `+ 0` and `- 1` leave it out; the
///   last of them counts. Nothing else can be subtracted.
/// - A name is made of letters, digits, `_` and `.`, and begins with no digit; bytes beyond ASCII
///   are letters. Any other name stands between backquotes. The value after `ref=` goes to the
///   closing parenthesis, or stands between quotes.
/// - A column can stand once in a term, and in one way (one reference level) in a formula.
///
/// The notation is that of Wilkinson and Rogers 1973, Appl Stat 22:392, doi:10.2307/2346786.
///
/// \throws Error saying what was found at which character (counted from 1) and what was expected.
Formula read_formula(const std::string &text);

} // namespace statistics
