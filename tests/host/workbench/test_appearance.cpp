// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a user sees of every window of the host, in a light and in a dark palette. With
// TESSERA_PICTURES set to a folder the pictures are saved there.
#include "host/workbench/import_previews.h"
#include "host/workbench/slice_view.h"
#include "host/workbench/time_course_view.h"
#include "tests/host/workbench/host_windows.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QGroupBox>
#include <QHash>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QScrollArea>
#include <QTabBar>
#include <QTest>
#include <cmath>
#include <gtest/gtest.h>

namespace corvane
{

namespace
{

QPalette darkPalette()
{
    QPalette palette(QColor(53, 53, 53), QColor(53, 53, 53));
    palette.setColor(QPalette::Base, QColor(35, 35, 35));
    palette.setColor(QPalette::AlternateBase, QColor(45, 45, 45));
    palette.setColor(QPalette::ToolTipBase, QColor(35, 35, 35));
    palette.setColor(QPalette::ToolTipText, Qt::white);
    palette.setColor(QPalette::Highlight, QColor(30, 100, 170));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

/// A palette of the application while it lives.
class PaletteInUse
{
public:
    explicit PaletteInUse(bool isDark) : m_before(QApplication::palette())
    {
        if (isDark)
            QApplication::setPalette(darkPalette());
    }
    ~PaletteInUse() { QApplication::setPalette(m_before); }
    PaletteInUse(const PaletteInUse &) = delete;
    PaletteInUse &operator=(const PaletteInUse &) = delete;

private:
    QPalette m_before;
};

/// Relative luminance and contrast as the W3C's guidelines for accessibility (2.1) define them.
double luminance(QRgb colour)
{
    const auto linear = [](int channel) {
        const double c = channel / 255.0;
        return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(colour)) + 0.7152 * linear(qGreen(colour)) +
           0.0722 * linear(qBlue(colour));
}

double contrast(QRgb one, QRgb other)
{
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

/// Between what most of a picture is and what stands out most.
double contrastIn(const QImage &image)
{
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            ++counts[image.pixel(x, y)];
    QRgb ground = 0;
    int most = 0;
    for (auto count = counts.cbegin(); count != counts.cend(); ++count) {
        if (count.value() > most) {
            most = count.value();
            ground = count.key();
        }
    }
    double best = 1;
    for (auto count = counts.cbegin(); count != counts.cend(); ++count)
        best = std::max(best, contrast(ground, count.key()));
    return best;
}

bool showsText(const QWidget *widget)
{
    if (const auto *const label = qobject_cast<const QLabel *>(widget))
        return !label->text().isEmpty();
    if (const auto *const button = qobject_cast<const QAbstractButton *>(widget))
        return !button->text().isEmpty();
    return qobject_cast<const QComboBox *>(widget) || qobject_cast<const QLineEdit *>(widget);
}

bool paintsItself(const QWidget *widget)
{
    return qobject_cast<const SliceView *>(widget) ||
           qobject_cast<const TimeCourseView *>(widget) ||
           qobject_cast<const GridPreview *>(widget) ||
           qobject_cast<const ConditionTimeline *>(widget);
}

/// Of a pane or a tab: its picture is all that there is to see of it.
bool isWindowButton(const QWidget *widget)
{
    return widget->objectName().startsWith(QStringLiteral("qt_dockwidget_")) ||
           (qobject_cast<const QAbstractButton *>(widget) &&
            qobject_cast<const QTabBar *>(widget->parentWidget()));
}

/// In a pane that scrolls, and not all of it in sight now.
bool isScrolledAway(const QWidget *widget)
{
    for (const QWidget *area = widget->parentWidget(); area != nullptr; area = area->parentWidget())
        if (qobject_cast<const QScrollArea *>(area))
            return widget->visibleRegion().boundingRect() != widget->rect();
    return false;
}

std::string nameOf(const QWidget *widget)
{
    return widget->metaObject()->className() +
           QStringLiteral(" %1").arg(widget->objectName()).toStdString();
}

/// The window and all in it.
QList<QWidget *> partsOf(QWidget &window)
{
    return window.findChildren<QWidget *>() << &window;
}

} // namespace

class EveryWindow : public testing::TestWithParam<HostWindow>
{
protected:
    static void expectReadable(bool isDark)
    {
        const PaletteInUse palette(isDark);
        int looked = 0;
        GetParam().show([&](QWidget &window) {
            const QPixmap picture = pictureOf(window, isDark ? "_dark" : "");
            for (QWidget *part : partsOf(window)) {
                const bool isEmptyLine = qobject_cast<QLineEdit *>(part) &&
                                         qobject_cast<QLineEdit *>(part)->text().isEmpty();
                if (!part->isVisible() || !part->isEnabled() || isEmptyLine ||
                    isScrolledAway(part) ||
                    !(showsText(part) || paintsItself(part) || isWindowButton(part)))
                    continue;
                ++looked;
                const double needed = isWindowButton(part) ? 3 : 4.5; // the guidelines' numbers
                const double scale = picture.devicePixelRatio();
                const QRectF place(part->mapTo(&window, QPoint(0, 0)), part->size());
                const QRect pixels =
                    QRectF(place.topLeft() * scale, place.size() * scale).toAlignedRect();
                EXPECT_GE(contrastIn(picture.copy(pixels).toImage()), needed) << nameOf(part);
            }
        });
        EXPECT_GT(looked, 0);
    }

    static QPixmap pictureOf(QWidget &window, const char *kind)
    {
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
        QTest::qWait(0);
        QPixmap picture = window.grab();
        const QString folder = qEnvironmentVariable("TESSERA_PICTURES");
        if (!folder.isEmpty()) {
            const QString file = QStringLiteral("host_%1%2_at_%3.png")
                                     .arg(QLatin1String(GetParam().name), QLatin1String(kind))
                                     .arg(picture.devicePixelRatio());
            EXPECT_TRUE(picture.save(QDir(folder).filePath(file))) << qPrintable(file);
        }
        return picture;
    }
};

TEST_P(EveryWindow, IsReadable)
{
    expectReadable(false);
}

TEST_P(EveryWindow, IsReadableInADarkPalette)
{
    expectReadable(true);
}

TEST_P(EveryWindow, CutsNoTextOff)
{
    int looked = 0;
    GetParam().show([&looked](QWidget &window) {
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
        for (const QWidget *part : partsOf(window)) {
            if (!part->isVisible() || !showsText(part) || qobject_cast<const QLineEdit *>(part))
                continue;
            ++looked;
            EXPECT_LE(part->minimumSizeHint().width(), part->width()) << nameOf(part);
            const int needed = part->hasHeightForWidth() ? part->heightForWidth(part->width())
                                                         : part->minimumSizeHint().height();
            EXPECT_LE(needed, part->height()) << nameOf(part);
        }
    });
    EXPECT_GT(looked, 0);
}

TEST_P(EveryWindow, HasATitleAndEachOfItsLettersOnce)
{
    GetParam().show([](QWidget &window) {
        if (window.windowType() != Qt::ToolTip) {
            EXPECT_FALSE(window.windowTitle().isEmpty());
        }
        QHash<QString, QString> texts;
        const auto expectNew = [&texts](const QString &text) {
            const QString letter = QKeySequence::mnemonic(text).toString();
            if (letter.isEmpty())
                return;
            EXPECT_FALSE(texts.contains(letter))
                << qPrintable(texts[letter]) << " and " << qPrintable(text);
            texts.insert(letter, text);
        };
        for (const QMenuBar *bar : window.findChildren<QMenuBar *>())
            for (const QAction *action : bar->actions())
                expectNew(action->text());
        for (const QWidget *part : partsOf(window)) {
            if (!part->isVisible())
                continue;
            if (const auto *const label = qobject_cast<const QLabel *>(part)) {
                if (label->buddy() != nullptr)
                    expectNew(label->text());
            } else if (const auto *const button = qobject_cast<const QAbstractButton *>(part)) {
                expectNew(button->text());
            } else if (const auto *const group = qobject_cast<const QGroupBox *>(part)) {
                expectNew(group->title());
            }
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Host, EveryWindow, testing::ValuesIn(hostWindows()),
                         [](const auto &window) { return window.param.name; });

} // namespace corvane
