// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/compute_error.h"

#include <utility>

ComputeError::ComputeError(std::string text) : m_text(std::move(text)) {}

ComputeError::~ComputeError() = default;

void ComputeError::raise() const
{
    throw *this;
}

ComputeError *ComputeError::clone() const
{
    return new ComputeError(*this);
}

const char *ComputeError::what() const noexcept
{
    return m_text.c_str();
}
