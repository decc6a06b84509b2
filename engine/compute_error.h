// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QException>

#include <string>

/// What went wrong with a measure on its worker thread. A `QException`, so that it reaches the GUI
/// thread with its text; any other exception would arrive there without one.
class ComputeError : public QException
{
public:
    explicit ComputeError(std::string text);
    ~ComputeError() override;

    void raise() const override;
    ComputeError *clone() const override;
    const char *what() const noexcept override;

private:
    std::string m_text;
};
