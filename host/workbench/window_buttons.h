// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProxyStyle>

namespace corvane
{

/// Draws the buttons of panes and tabs, close and float, in the colour that the palette has for
/// texts. Those of most styles are pictures in black, which a dark palette hides.
class WindowButtonStyle : public QProxyStyle
{
    Q_OBJECT

public:
    /// The application's style, but for those buttons.
    WindowButtonStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    QIcon standardIcon(StandardPixmap icon, const QStyleOption *option,
                       const QWidget *widget) const override;
};

} // namespace corvane
