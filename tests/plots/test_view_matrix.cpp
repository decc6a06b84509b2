// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/color_map.h"
#include "plots/connectivity_matrix_widget_rect.h"
#include "plots/histogram.h"
#include "plots/my_label.h"
#include "plots/vertical_header_view.h"
#include "plots/view_matrix.h"
#include "plots/view_matrix_table.h"
#include "tests/plots/plot_fixture.h"
#include "tests/support/form_text.h"

#include <QApplication>
#include <QCheckBox>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPointer>
#include <QScrollBar>
#include <QSpinBox>
#include <QTest>
#include <QWindow>

#include <cmath>
#include <limits>
#include <memory>

namespace
{

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

/// Another value in each cell, not symmetric, between -1.4 and 1.4.
Eigen::MatrixXf gradient(int rows, int columns)
{
    Eigen::MatrixXf matrix(rows, columns);
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < columns; ++c)
            matrix(r, c) = -1.4f + 2.8f * float(r * columns + c) / float(rows * columns);
    }
    return matrix;
}

QString background(const char *property, const QColor &color)
{
    return QStringLiteral("%1: rgb(%2, %3, %4);")
        .arg(QLatin1String(property))
        .arg(color.red())
        .arg(color.green())
        .arg(color.blue());
}

/// The browser of a result, filled as the results dialog does it.
class Browser
{
public:
    explicit Browser(Result &result) : window(&result.dialog)
    {
        const SubjectProtocol protocol = result.subject->protocol();
        if (result.subject->useProtocol()) {
            window.setConditionNames(protocol.volumeNames.values());
            window.setConditionTimes(protocol.volumeNames.keys());
        }
        window.buildConditionList();
        window.loadRange();
        window.setLabels(result.subject->voiLabels(false));
        window.fillTable();
        window.paintTable();
        window.drawOverview();
        window.buildLegend();
    }

    void show()
    {
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
        moveMouse(outside);
    }

    template <typename Object>
    Object *find(const char *name) const
    {
        Object *const found = window.findChild<Object *>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }

    ViewMatrixTable *table() const { return find<ViewMatrixTable>("tableMatrix"); }
    QGraphicsView *overview() const { return find<QGraphicsView>("graphicsView"); }
    QLabel *color() const { return find<QLabel>("lbl_Color"); }
    QLabel *value() const { return find<QLabel>("lbl_Value"); }

    QWidget *condition(int row, int column) const
    {
        QLayoutItem *const item =
            find<QGridLayout>("gridLayout_Conditions")->itemAtPosition(row, column);
        return item ? item->widget() : nullptr;
    }

    void moveMouse(const QPoint &to) { QTest::mouseMove(window.windowHandle(), to); }
    void moveMouseToCell(int row, int column)
    {
        const QRect cell = table()->visualItemRect(table()->item(row, column));
        moveMouse(table()->viewport()->mapTo(&window, cell.center()));
    }
    void click(const QWidget *widget)
    {
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {},
                          widget->mapTo(&window, widget->rect().center()));
    }

    void expectShows(const Eigen::MatrixXf &matrix) const
    {
        ASSERT_EQ(table()->rowCount(), matrix.rows());
        ASSERT_EQ(table()->columnCount(), matrix.cols());
        int squares = 0;
        for (int r = 0; r < matrix.rows(); ++r) {
            for (int c = 0; c < matrix.cols(); ++c) {
                const QTableWidgetItem *const item = table()->item(r, c);
                ASSERT_NE(item, nullptr);
                EXPECT_EQ(item->text(), QString());
                EXPECT_EQ(item->background(),
                          QBrush(valueToColor(double(matrix(r, c))), Qt::SolidPattern))
                    << r << ", " << c;
            }
        }
        for (const QGraphicsItem *item : overview()->scene()->items()) {
            const auto *const square = dynamic_cast<const ConnectivityMatrixWidgetRect *>(item);
            ASSERT_NE(square, nullptr);
            const int o = int(square->rect().x()) / 10;
            const int i = int(square->rect().y()) / 10;
            ASSERT_LT(o, matrix.rows());
            ASSERT_LT(i, matrix.cols());
            EXPECT_EQ(square->rect(), QRectF(o * 10, i * 10, 10, 10));
            EXPECT_EQ(square->brush(), QBrush(valueToColor(double(matrix(o, i))), Qt::SolidPattern))
                << o << ", " << i;
            EXPECT_EQ(square->pen(), QPen(Qt::NoPen));
            ++squares;
        }
        EXPECT_EQ(squares, matrix.size());
    }

    ViewMatrix window;
    const QPoint outside{3, 3};
};

/// The ten boxes of the legend and the texts below them.
struct Legend {
    QStringList styles;
    QStringList texts;
};

Legend legendOf(const Browser &browser)
{
    Legend legend;
    QLayout *const row = browser.find<QHBoxLayout>("horizontalLayout_4");
    for (int i = 0; i < row->count(); ++i) {
        QLayout *const column = row->itemAt(i)->layout();
        if (!column)
            continue;
        const auto *const box = qobject_cast<QLabel *>(column->itemAt(0)->widget());
        const auto *const text = qobject_cast<QLabel *>(column->itemAt(1)->widget());
        legend.styles += box->styleSheet();
        legend.texts += text->text();
    }
    return legend;
}

const QVector<SliceOfProtocol> protocolWithTrigger = {
    {1, "Rest", 0}, {11, "Faces", 0}, {21, "Press", 1}, {22, "Rest", 0}};

std::vector<Eigen::MatrixXf> fourMatrices(int n = 6)
{
    return {gradient(n, n), gradient(n, n) * 0.5f, gradient(n, n) * 0.25f, gradient(n, n) * -1.0f};
}

// The form.

TEST(BrowserForm, is_the_one_that_is_described)
{
    Result result({});
    EXPECT_EQ('\n' + formText(ViewMatrix(&result.dialog)) + '\n', R"(
ViewMatrix ViewMatrix "Browse Connectivity Map" minimumSize 0x620 sizeGripEnabled policy MinimumExpanding/MinimumExpanding 1172x734
  QHBoxLayout horizontalLayout_2 spacing 6 margins 11 11 11 11
    QWidget widget_Conditions minimumSize 200x0 maximumSize 200x16777215 policy Fixed/Preferred
      QVBoxLayout verticalLayout_3 spacing 0 margins 0 0 6 0
        QGroupBox groupBox "Conditions" minimumSize 200x0 maximumSize 200x16777215 policy Preferred/Expanding
          QVBoxLayout verticalLayout_6 spacing 6 margins 2 2 2 2
            QScrollArea scrollArea frameShape NoFrame frameShadow Plain widgetResizable
              QWidget scrollAreaWidgetContents autoFillBackground
                QHBoxLayout horizontalLayout_3 spacing 6 margins 9 9 9 9
                  QGridLayout gridLayout_Conditions spacing 2,2
        spacer 20x40 Minimum/MinimumExpanding
    QVBoxLayout verticalLayout spacing 0
      ViewMatrixTable tableMatrix minimumSize 640x0 mouseTracking accessibleName "Connectivity matrix" autoFillBackground styleSheet "background-color { #ffffff; }" frameShape NoFrame no autoScroll editTriggers NoEditTriggers no tabKeyNavigation no showDropIndicator no dragDropOverwriteMode selectionMode NoSelection textElideMode ElideNone no showGrid rowCount 1 columnCount 1
      QWidget widget_statusbar minimumSize 0x25 maximumSize 16777215x25 policy Minimum/Minimum
        QHBoxLayout horizontalLayout spacing 5 margins 9 0 0 4
          QLabel lbl_Color maximumSize 25x25
          QLabel lbl_Value
    QWidget widget minimumSize 300x0 maximumSize 300x16777215 policy Fixed/Minimum
      QVBoxLayout verticalLayout_2 spacing 6 margins 0 9 9 9
        QGroupBox groupBox_Visualization "Visualization" flat hidden
          QGridLayout gridLayout spacing 6,6 margins 9 9 9 9
            QCheckBox checkBox "Plot symmetric matrix" cell 0,0
            QCheckBox checkBox_2 "Show values" cell 1,0
        spacer 20x40 Minimum/Expanding
        QGroupBox groupBox_Histogram "Histogram" minimumSize 300x200 maximumSize 300x16777215 styleSheet "visible: hidden;" flat policy Fixed/Fixed hidden
          QVBoxLayout verticalLayout_5 spacing 0
            Histogram histogram minimumSize 300x200 maximumSize 300x200 accessibleName "Histogram" autoFillBackground frameShape NoFrame verticalScrollBarPolicy ScrollBarAlwaysOff horizontalScrollBarPolicy ScrollBarAlwaysOff sceneRect 0,0 100x30 renderHints Antialiasing|TextAntialiasing
            QHBoxLayout hlaout_2 spacing 0
              QLabel lbl_Hist "TextLabel"
            QHBoxLayout horizontalLayout_5 spacing 0
              QSpinBox sbox_HistBins "10 bins" suffix " bins" minimum 10 value 10 disabled
              spacer 40x20 Expanding/Minimum
              QCheckBox cbox_HistNormalize "normalize" disabled
        QGroupBox groupbox_Overview "Overview" minimumSize 300x260 maximumSize 300x260 flat
          QVBoxLayout verticalLayout_4 spacing 0 SetFixedSize
            QGraphicsView graphicsView minimumSize 300x290 maximumSize 300x290 accessibleName "Overview" frameShape NoFrame lineWidth 0 verticalScrollBarPolicy ScrollBarAlwaysOff horizontalScrollBarPolicy ScrollBarAlwaysOff sizeAdjustPolicy AdjustToContents sceneRect 0,0 250x250
        spacer 20x5 Minimum/Minimum
        QGroupBox groupbox_Legend flat
          QHBoxLayout horizontalLayout_4 spacing 0
)");
}

TEST(BrowserForm, has_headers_for_long_names)
{
    Result result({});
    const ViewMatrix window(&result.dialog);
    const auto *const table = window.findChild<QTableWidget *>(QStringLiteral("tableMatrix"));
    EXPECT_FALSE(table->verticalHeader()->highlightSections());
    EXPECT_NE(dynamic_cast<VerticalHeaderView *>(table->horizontalHeader()), nullptr);
}

TEST(BrowserForm, begins_with_one_cell_without_content)
{
    Result result({});
    const ViewMatrix window(&result.dialog);
    const auto *const table = window.findChild<QTableWidget *>(QStringLiteral("tableMatrix"));
    EXPECT_EQ(table->rowCount(), 1);
    EXPECT_EQ(table->columnCount(), 1);
    EXPECT_EQ(table->item(0, 0), nullptr) << "the constructor clears the table";
}

TEST(BrowserForm, declares_its_slots_in_order)
{
    const QMetaObject &meta = ViewMatrix::staticMetaObject;
    const QList<QByteArray> expected = {"browseMatrix()", "pickValue(int,int)", "clearPickValue()"};
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(meta.method(meta.methodOffset() + i).methodSignature(), expected[i]);
        EXPECT_EQ(meta.method(meta.methodOffset() + i).methodType(), QMetaMethod::Slot);
    }
}

TEST(BrowserForm, connects_its_hidden_controls_to_nothing)
{
    Result result(fourMatrices());
    Browser browser(result);
    browser.show();
    EXPECT_FALSE(browser.find<QCheckBox>("checkBox")->isVisible());
    EXPECT_FALSE(browser.find<QCheckBox>("checkBox_2")->isVisible());
    EXPECT_FALSE(browser.find<Histogram>("histogram")->isVisible());
    browser.find<QCheckBox>("checkBox")->setChecked(true);
    browser.find<QCheckBox>("checkBox_2")->setChecked(true);
    browser.expectShows(fourMatrices()[0]);
}

TEST(BrowserForm, has_a_blank_histogram_that_cannot_be_operated_when_shown_by_force)
{
    Result result(fourMatrices());
    Browser browser(result);
    browser.show();
    auto *const histogram = browser.find<Histogram>("histogram");
    browser.find<QGroupBox>("groupBox_Histogram")->show();
    QCoreApplication::processEvents();
    ASSERT_TRUE(histogram->isVisible());
    const QImage picture = histogram->viewport()->grab().toImage();
    for (int y = 2; y < picture.height() - 2; ++y) {
        for (int x = 2; x < picture.width() - 2; ++x)
            ASSERT_EQ(picture.pixelColor(x, y), QColor(Qt::white)) << x << ", " << y;
    }

    auto *const bins = browser.find<QSpinBox>("sbox_HistBins");
    auto *const normalize = browser.find<QCheckBox>("cbox_HistNormalize");
    const int before = bins->value();
    QTest::mouseClick(normalize, Qt::LeftButton, {}, QPoint(8, normalize->height() / 2));
    QTest::keyClick(normalize, Qt::Key_Space);
    QTest::keyClick(bins, Qt::Key_Up);
    EXPECT_FALSE(normalize->isChecked());
    EXPECT_EQ(bins->value(), before);
}

// The table.

class BrowserOfRealMatrix : public testing::TestWithParam<int>
{
};

TEST_P(BrowserOfRealMatrix, shows_each_cell_in_its_colour)
{
    SKIP_WITHOUT_REAL_MATRICES();
    const Eigen::MatrixXf matrix = realMatrix(GetParam());
    Result result({matrix});
    Browser browser(result);
    browser.show();
    browser.expectShows(matrix);
    for (int i = 0; i < GetParam(); ++i) {
        const QString name = QStringLiteral("Node %1").arg(i);
        EXPECT_EQ(browser.table()->horizontalHeaderItem(i)->text(), name);
        EXPECT_EQ(browser.table()->verticalHeaderItem(i)->text(), name);
        EXPECT_EQ(browser.table()->columnWidth(i), 15);
        EXPECT_EQ(browser.table()->rowHeight(i), 15);
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, BrowserOfRealMatrix, testing::Values(1, 2, 10, 116),
                         testing::PrintToStringParamName());

TEST(BrowserTable, is_sized_as_told)
{
    Result result(fourMatrices());
    Browser browser(result);
    const ViewMatrixTable *const table = browser.table();
    EXPECT_EQ(table->sizePolicy().horizontalPolicy(), QSizePolicy::Minimum);
    EXPECT_EQ(table->sizePolicy().verticalPolicy(), QSizePolicy::Minimum);
    EXPECT_EQ(table->property("previous-selected-row"), QVariant(-1));
    EXPECT_EQ(table->property("previous-selected-col"), QVariant(-1));
    for (const QHeaderView *header : {table->horizontalHeader(), table->verticalHeader()}) {
        EXPECT_EQ(header->defaultSectionSize(), 15);
        EXPECT_EQ(header->sectionResizeMode(0), QHeaderView::Fixed);
        EXPECT_EQ(header->styleSheet(),
                  QStringLiteral("QHeaderView { font-family: arial; font-size: 10px;}"));
        EXPECT_EQ(header->defaultAlignment(), Qt::AlignRight | Qt::AlignVCenter);
    }
}

TEST(BrowserTable, shows_squares_of_15_by_15_pixels)
{
    const Eigen::MatrixXf matrix = gradient(6, 6);
    Result result({matrix});
    Browser browser(result);
    browser.show();
    const QImage picture = browser.table()->viewport()->grab().toImage();
    const double scale = picture.devicePixelRatio();
    for (int r = 0; r < 6; ++r) {
        for (int c = 0; c < 6; ++c) {
            for (const QPoint &corner :
                 {QPoint(0, 0), QPoint(14, 0), QPoint(0, 14), QPoint(14, 14)}) {
                const QPoint pixel = QPoint(c * 15, r * 15) + corner;
                EXPECT_EQ(picture.pixelColor((QPointF(pixel) * scale).toPoint()).rgb(),
                          valueToColor(double(matrix(r, c))).rgb());
            }
        }
    }
}

TEST(BrowserTable, shows_its_cells_the_same_wherever_the_mouse_and_the_focus_are)
{
    Result result({gradient(3, 4)});
    Browser browser(result);
    browser.show();
    browser.window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&browser.window));
    browser.find<QScrollArea>("scrollArea")->setFocus();
    QWidget *const cells = browser.table()->viewport();
    const QImage before = cells->grab().toImage();

    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 4; ++column) {
            const QPoint cell =
                browser.table()->visualItemRect(browser.table()->item(row, column)).center();
            QTest::mousePress(browser.window.windowHandle(), Qt::LeftButton, {},
                              cells->mapTo(&browser.window, cell));
            ASSERT_TRUE(browser.table()->hasFocus());
            ASSERT_EQ(browser.table()->currentRow(), row);
            ASSERT_EQ(browser.table()->currentColumn(), column);
            EXPECT_TRUE(cells->grab().toImage() == before) << "pressed " << row << ", " << column;
            QTest::mouseRelease(browser.window.windowHandle(), Qt::LeftButton, {},
                                cells->mapTo(&browser.window, cell));
            EXPECT_TRUE(cells->grab().toImage() == before) << "clicked " << row << ", " << column;
        }
    }
    QTest::keyClick(browser.table(), Qt::Key_Up);
    ASSERT_EQ(browser.table()->currentRow(), 1);
    EXPECT_TRUE(cells->grab().toImage() == before) << "with the keyboard";
}

TEST(BrowserTable, numbers_what_has_no_name)
{
    Result result({gradient(4, 4)});
    result.subject->voiNames = QStringList{"First", "Second"};
    Browser browser(result);
    EXPECT_EQ(browser.table()->horizontalHeaderItem(1)->text(), QStringLiteral("Second"));
    EXPECT_EQ(browser.table()->horizontalHeaderItem(2)->text(), QStringLiteral("2"));
    EXPECT_EQ(browser.table()->verticalHeaderItem(3)->text(), QStringLiteral("3"));
}

TEST(BrowserTable, names_each_row_and_column_of_an_oblong_matrix)
{
    Result result({gradient(2, 4)});
    result.subject->voiNames = nodeNames(4);
    Browser browser(result);
    const ViewMatrixTable *const table = browser.table();
    ASSERT_NE(table->horizontalHeaderItem(3), nullptr);
    EXPECT_EQ(table->horizontalHeaderItem(3)->text(), QStringLiteral("Node 3"));
    EXPECT_EQ(table->verticalHeaderItem(1)->text(), QStringLiteral("Node 1"));
    EXPECT_EQ(table->verticalHeaderItem(2), nullptr);
}

TEST(BrowserTable, leaves_out_names_too_many)
{
    Result result({gradient(2, 2)});
    result.subject->voiNames = nodeNames(5);
    Browser browser(result);
    EXPECT_EQ(browser.table()->columnCount(), 2);
    EXPECT_EQ(browser.table()->horizontalHeaderItem(1)->text(), QStringLiteral("Node 1"));
}

// The value under the mouse.

TEST(PickedValue, is_the_one_under_the_mouse)
{
    Eigen::MatrixXf matrix = gradient(6, 6);
    matrix(1, 2) = 0.12345678f;
    matrix(2, 1) = -1e-7f;
    matrix(3, 3) = nan;
    Result result({matrix});
    Browser browser(result);
    browser.show();
    EXPECT_EQ(browser.value()->text(), QString());

    browser.moveMouseToCell(1, 2);
    EXPECT_EQ(browser.value()->text(), QStringLiteral("0.123457"));
    EXPECT_EQ(browser.color()->styleSheet(),
              background("background", valueToColor(double(0.12345678f))));
    EXPECT_EQ(browser.color()->grab().toImage().pixelColor(2, 2).rgb(),
              valueToColor(double(0.12345678f)).rgb());

    browser.moveMouseToCell(2, 1);
    EXPECT_EQ(browser.value()->text(), QStringLiteral("-1e-07"));
    browser.moveMouseToCell(3, 3);
    EXPECT_EQ(browser.value()->text(), QStringLiteral("nan"));
    EXPECT_EQ(browser.color()->styleSheet(), QStringLiteral("background: rgb(0, 0, 0);"));

    browser.moveMouse(browser.outside);
    EXPECT_EQ(browser.value()->text(), QString());
    EXPECT_EQ(browser.color()->styleSheet(), QString());
}

TEST(PickedValue, stays_while_the_mouse_is_on_the_names)
{
    Result result({gradient(6, 6)});
    Browser browser(result);
    browser.show();
    browser.moveMouseToCell(0, 0);
    const QString value = browser.value()->text();
    ASSERT_FALSE(value.isEmpty());
    // The header belongs to the table, which the mouse has not left.
    const QWidget *const names = browser.table()->verticalHeader()->viewport();
    browser.moveMouse(names->mapTo(&browser.window, QPoint(5, 5)));
    EXPECT_EQ(browser.value()->text(), value);
    browser.moveMouse(browser.outside);
    EXPECT_EQ(browser.value()->text(), QString());
}

TEST(PickedValue, takes_the_row_first)
{
    const Eigen::MatrixXf matrix = gradient(3, 3);
    Result result({matrix});
    Browser browser(result);
    browser.window.pickValue(0, 2);
    EXPECT_EQ(browser.value()->text(), QString::number(double(matrix(0, 2)), 'g', 6));
}

TEST(PickedValue, outside_of_the_matrix_is_none)
{
    Result result({gradient(3, 3)});
    Browser browser(result);
    browser.window.pickValue(0, 3);
    browser.window.pickValue(3, 0);
    EXPECT_EQ(browser.value()->text(), QString());
}

// The overview.

TEST(Overview, has_a_fixed_scene_and_scale)
{
    Result result(fourMatrices());
    Browser browser(result);
    const QRectF whole(0, 0, 1160, 1160);
    EXPECT_EQ(browser.overview()->scene()->sceneRect(), whole);
    EXPECT_EQ(browser.overview()->sceneRect(), whole);
    EXPECT_EQ(browser.overview()->transform(),
              QTransform::fromScale(0.21120689655172414, 0.21120689655172414));
    browser.show();
    EXPECT_TRUE(browser.overview()->isVisible());
    // 116 cells of ten units fill 245 pixels.
    EXPECT_NEAR(browser.overview()->transform().m11() * 1160, 245, 1e-9);
}

TEST(Overview, runs_over_its_scene_beyond_116_rows)
{
    Result result({gradient(117, 117)});
    Browser browser(result);
    EXPECT_EQ(browser.overview()->sceneRect(), QRectF(0, 0, 1160, 1160));
    EXPECT_EQ(browser.overview()->scene()->itemsBoundingRect().width(), 1170);
}

TEST(Overview, scrolls_the_table_to_the_mirrored_cell_at_a_click)
{
    const Eigen::MatrixXf matrix = gradient(116, 116);
    Result result({matrix});
    Browser browser(result);
    browser.show();
    ViewMatrixTable *const table = browser.table();
    for (const QPoint &square : {QPoint(60, 40), QPoint(40, 70), QPoint(70, 60)}) {
        const int o = square.x();
        const int i = square.y();
        const QPointF inScene(o * 10 + 5, i * 10 + 5);
        const QPoint inView = browser.overview()->mapFromScene(inScene);
        const QWidget *const viewport = browser.overview()->viewport();
        QTest::mouseClick(browser.window.windowHandle(), Qt::LeftButton, {},
                          viewport->mapTo(&browser.window, inView));
        // The item at row i, column o stands in the centre, as near as whole cells allow.
        const QPoint centre = table->visualItemRect(table->item(i, o)).center();
        const QPoint wanted = table->viewport()->rect().center();
        EXPECT_NEAR(centre.x(), wanted.x(), 3 * 15) << o << ", " << i;
        EXPECT_NEAR(centre.y(), wanted.y(), 3 * 15) << o << ", " << i;
    }
}

TEST(Overview, ignores_a_click_on_what_is_no_longer_in_the_table)
{
    Result result({gradient(3, 3)});
    Browser browser(result);
    browser.show();
    browser.table()->clearContents();
    const QWidget *const viewport = browser.overview()->viewport();
    QTest::mouseClick(browser.window.windowHandle(), Qt::LeftButton, {},
                      viewport->mapTo(&browser.window, browser.overview()->mapFromScene(5, 5)));
    EXPECT_EQ(browser.table()->verticalScrollBar()->value(), 0);
}

TEST(Overview, is_painted_in_the_colours_of_the_matrix)
{
    const Eigen::MatrixXf matrix = gradient(3, 3);
    Result result({matrix});
    Browser browser(result);
    browser.show();
    QGraphicsView *const view = browser.overview();
    const QImage picture = view->viewport()->grab().toImage();
    for (int o = 0; o < 3; ++o) {
        for (int i = 0; i < 3; ++i) {
            const QPoint pixel = view->mapFromScene(QPointF(o * 10 + 5, i * 10 + 5));
            EXPECT_EQ(picture.pixelColor(pixel * picture.devicePixelRatio()).rgb(),
                      valueToColor(double(matrix(o, i))).rgb());
        }
    }
}

// The legend.

TEST(BrowserLegend, has_ten_boxes_from_the_maximum_down)
{
    Eigen::MatrixXf low = Eigen::MatrixXf::Zero(2, 2);
    low(0, 1) = -1.0f;
    Eigen::MatrixXf high = Eigen::MatrixXf::Zero(2, 2);
    high(1, 0) = 1.0f;
    Result result({low, high}, {{1, "Rest", 0}, {11, "Faces", 0}});
    Browser browser(result);
    const Legend legend = legendOf(browser);
    ASSERT_EQ(legend.styles.size(), 10);
    for (int k = 0; k < 10; ++k) {
        // From the largest entry of all slices in tenths of the way to the smallest.
        EXPECT_EQ(legend.styles[k], background("background", valueToColor(1.0 - k * 0.2)));
    }
    EXPECT_EQ(legend.texts, QStringList({"1", "", "", "", "", "", "", "", "", "-1"}));
    EXPECT_EQ(browser.find<QGroupBox>("groupbox_Legend")->styleSheet(),
              QStringLiteral("border: 0px;"));
}

TEST(BrowserLegend, is_laid_out_as_told)
{
    Result result(fourMatrices());
    Browser browser(result);
    QLayout *const row = browser.find<QHBoxLayout>("horizontalLayout_4");
    ASSERT_EQ(row->count(), 12);
    for (const int end : {0, 11}) {
        const QSpacerItem *const spacer = row->itemAt(end)->spacerItem();
        ASSERT_NE(spacer, nullptr);
        EXPECT_EQ(spacer->sizeHint(), QSize(1, 1));
        EXPECT_EQ(spacer->sizePolicy(), QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed));
    }
    for (int k = 0; k < 10; ++k) {
        auto *const column = qobject_cast<QVBoxLayout *>(row->itemAt(k + 1)->layout());
        ASSERT_NE(column, nullptr);
        EXPECT_EQ(column->contentsMargins(), QMargins());
        EXPECT_EQ(column->spacing(), 0);
        EXPECT_EQ(column->itemAt(0)->widget()->minimumSize(), QSize(15, 15));
        EXPECT_EQ(column->itemAt(0)->widget()->maximumSize(), QSize(15, 15));
        EXPECT_EQ(column->itemAt(1)->widget()->styleSheet(),
                  k == 0 || k == 9 ? QStringLiteral("font-size: 8px;") : QString());
    }
}

TEST(BrowserLegend, prints_whole_numbers)
{
    struct Row {
        float smallest;
        float largest;
        const char *first;
        const char *last; // of the smallest plus a tenth of the range
    };
    const Row rows[] = {
        {0.0f, 0.49f, "0", "0"},     {0.0f, 0.5f, "1", "0"},
        {-10.0f, 10.0f, "10", "-8"}, {-0.5f, 0.0f, "0", "0"},
        {2.0f, 2.0f, "2", "2"},      {0.0f, 1234567.0f, "1.23457e+06", "123457"},
        {-4.0f, -2.5f, "-3", "-4"},
    };
    for (const Row &row : rows) {
        Eigen::MatrixXf matrix(1, 2);
        matrix << row.smallest, row.largest;
        Result result({matrix});
        Browser browser(result);
        const Legend legend = legendOf(browser);
        EXPECT_EQ(legend.texts.constFirst(), QString::fromLatin1(row.first)) << row.largest;
        EXPECT_EQ(legend.texts.constLast(), QString::fromLatin1(row.last)) << row.smallest;
    }
}

TEST(BrowserLegend, of_equal_entries_has_one_colour)
{
    Result result({Eigen::MatrixXf::Constant(3, 3, 0.5f)});
    Browser browser(result);
    Legend legend = legendOf(browser);
    EXPECT_EQ(legend.styles.constFirst(), background("background", valueToColor(0.5)));
    EXPECT_EQ(legend.styles.removeDuplicates(), 9);
}

TEST(BrowserLegend, takes_no_part_in_the_colours)
{
    Eigen::MatrixXf matrix(2, 2);
    matrix << 1.25f, -1.25f, 100.0f, 0.0f;
    Result result({matrix});
    Browser browser(result);
    EXPECT_EQ(browser.table()->item(0, 0)->background().color(), QColor(Qt::black));
    EXPECT_EQ(browser.table()->item(0, 1)->background().color(), QColor(Qt::black));
    EXPECT_EQ(browser.table()->item(1, 0)->background().color(), QColor(Qt::black));
    EXPECT_EQ(browser.table()->item(1, 1)->background().color(), valueToColor(0.0));
    EXPECT_EQ(legendOf(browser).styles.constFirst(), QStringLiteral("background: rgb(0, 0, 0);"));
}

TEST(ValueRange, leaves_out_what_is_no_number)
{
    Eigen::MatrixXf some(1, 4);
    some << nan, 0.25f, -0.5f, nan;
    const ValueRange range = valueRange({Eigen::MatrixXf::Constant(2, 2, nan), some});
    EXPECT_EQ(range.minimum, -0.5);
    EXPECT_EQ(range.maximum, 0.25);

    some << infinity, 1.0f, -infinity, nan;
    EXPECT_EQ(valueRange({some}).maximum, double(infinity));
    EXPECT_EQ(valueRange({some}).minimum, -double(infinity));

    for (const std::vector<Eigen::MatrixXf> &nothing : {std::vector<Eigen::MatrixXf>{},
                                                        {Eigen::MatrixXf()},
                                                        {Eigen::MatrixXf::Constant(2, 2, nan)}}) {
        EXPECT_TRUE(std::isnan(valueRange(nothing).minimum));
        EXPECT_TRUE(std::isnan(valueRange(nothing).maximum));
    }
}

// Pictures and slices without the mouse.

class BrowserPictures : public testing::TestWithParam<int>
{
};

/// The cells stand at the right and lower end of the picture of the table.
QPoint cellInPicture(const QImage &picture, int n, int row, int column)
{
    const QPoint end(picture.width(), picture.height());
    return end - QPoint(n - column, n - row) * 15 * picture.devicePixelRatio() +
           QPoint(7, 7) * picture.devicePixelRatio();
}

TEST_P(BrowserPictures, show_the_whole_table)
{
    const int n = GetParam();
    const Eigen::MatrixXf matrix = gradient(n, n);
    Result result({matrix});
    Browser browser(result);
    browser.show();
    const QImage picture = browser.window.tablePicture().toImage();
    const QTableWidget *const table = browser.table();
    const QSize whole(table->verticalHeader()->width() + 15 * n,
                      table->horizontalHeader()->height() + 15 * n);
    EXPECT_EQ(picture.devicePixelRatio(), browser.window.devicePixelRatioF());
    EXPECT_EQ(picture.size(), whole * picture.devicePixelRatio());
    for (const auto &[row, column] : {std::pair(0, 0), {0, n - 1}, {n - 1, 0}, {n / 2, n - 1}}) {
        EXPECT_EQ(picture.pixelColor(cellInPicture(picture, n, row, column)).rgb(),
                  valueToColor(double(matrix(row, column))).rgb())
            << row << ", " << column;
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, BrowserPictures, testing::Values(1, 6, 60),
                         testing::PrintToStringParamName());

TEST(BrowserPicture, of_the_overview_is_the_overview)
{
    Result result(fourMatrices());
    Browser browser(result);
    browser.show();
    EXPECT_EQ(browser.window.overviewPicture().toImage(), browser.overview()->grab().toImage());
}

TEST(BrowserSlice, is_shown_as_by_a_click)
{
    const std::vector<Eigen::MatrixXf> matrices = fourMatrices();
    Result result(matrices);
    Browser browser(result);
    for (const int slice : {2, 0, 3}) {
        browser.window.showSlice(slice);
        browser.expectShows(matrices[std::size_t(slice)]);
    }
    for (const int missing : {4, -1}) {
        browser.window.showSlice(missing);
        EXPECT_EQ(browser.table()->item(0, 0), nullptr);
        EXPECT_TRUE(browser.overview()->scene()->items().isEmpty());
    }
}

// The conditions.

TEST(Conditions, without_protocol_are_not_there)
{
    for (const bool loaded : {false, true}) {
        Result result({gradient(3, 3)}, loaded ? protocolWithTrigger : QVector<SliceOfProtocol>(),
                      false);
        Browser browser(result);
        const auto *const label = qobject_cast<QLabel *>(browser.condition(0, 0));
        ASSERT_NE(label, nullptr);
        EXPECT_EQ(label->text(), QStringLiteral("No protocol loaded."));
        EXPECT_EQ(browser.find<QGridLayout>("gridLayout_Conditions")->count(), 1);
        browser.expectShows(gradient(3, 3));
    }
}

TEST(Conditions, have_a_row_each)
{
    Result result(fourMatrices(), protocolWithTrigger);
    Browser browser(result);
    browser.show();
    const QStringList texts = {"Rest", "Faces", "Trigger: Press", "Rest"};
    const QStringList times = {"1", "11", "21", "22"};
    // Three distinct names share a range of hues; the product is cut.
    const QColor colors[] = {QColor::fromHsv(0, 127, 242), QColor::fromHsv(74, 127, 242),
                             QColor::fromHsv(148, 127, 242), QColor::fromHsv(0, 127, 242)};
    QGridLayout *const grid = browser.find<QGridLayout>("gridLayout_Conditions");
    ASSERT_EQ(grid->count(), 12);
    for (int row = 0; row < 4; ++row) {
        auto *const color = qobject_cast<MyLabel *>(browser.condition(row, 0));
        auto *const name = qobject_cast<MyLabel *>(browser.condition(row, 1));
        auto *const time = qobject_cast<QLabel *>(browser.condition(row, 2));
        ASSERT_TRUE(color && name && time);
        EXPECT_EQ(qobject_cast<MyLabel *>(time), nullptr);
        EXPECT_EQ(color->property("row"), QVariant(row));
        EXPECT_EQ(name->property("row"), QVariant(row));
        EXPECT_EQ(color->styleSheet(), background("background-color", colors[row]));
        EXPECT_EQ(color->maximumWidth(), 40);
        EXPECT_EQ(color->grab().toImage().pixelColor(2, 2).rgb(), colors[row].rgb());
        EXPECT_EQ(name->text(), texts[row]);
        EXPECT_EQ(time->text(), times[row]);
        EXPECT_EQ(time->toolTip(), QStringLiteral("in TR"));
        EXPECT_EQ(time->maximumWidth(), 40);
        EXPECT_EQ(grid->itemAtPosition(row, 0)->alignment(), Qt::AlignVCenter);
        EXPECT_EQ(grid->itemAtPosition(row, 1)->alignment(), Qt::AlignLeft | Qt::AlignVCenter);
        EXPECT_EQ(grid->itemAtPosition(row, 2)->alignment(), Qt::AlignRight | Qt::AlignVCenter);
    }
}

TEST(Conditions, of_one_name_have_hue_zero)
{
    Result result({gradient(3, 3), gradient(3, 3)}, {{1, "Rest", 0}, {11, "Rest", 0}});
    Browser browser(result);
    for (int row = 0; row < 2; ++row)
        EXPECT_EQ(browser.condition(row, 0)->styleSheet(),
                  background("background-color", QColor::fromHsv(0, 127, 242)));
}

TEST(Conditions, tell_names_apart_by_case)
{
    Result result({gradient(3, 3), gradient(3, 3)}, {{1, "rest", 0}, {11, "Rest", 0}});
    Browser browser(result);
    EXPECT_NE(browser.condition(0, 0)->styleSheet(), browser.condition(1, 0)->styleSheet());
    EXPECT_EQ(browser.condition(1, 0)->styleSheet(),
              background("background-color", QColor::fromHsv(111, 127, 242)));
}

TEST(Conditions, bring_their_matrix_at_a_click)
{
    const std::vector<Eigen::MatrixXf> matrices = fourMatrices();
    Result result(matrices, protocolWithTrigger);
    Browser browser(result);
    browser.show();
    browser.expectShows(matrices[0]);
    const Legend legend = legendOf(browser);
    for (const auto &[row, column] : {std::pair(1, 0), {3, 1}, {0, 0}, {1, 1}, {1, 0}}) {
        browser.click(browser.condition(row, column));
        browser.expectShows(matrices[std::size_t(row)]);
        browser.moveMouseToCell(2, 3);
        EXPECT_EQ(browser.value()->text(),
                  QString::number(double(matrices[std::size_t(row)](2, 3)), 'g', 6));
        EXPECT_EQ(browser.table()->columnWidth(3), 15);
        EXPECT_EQ(browser.table()->rowHeight(3), 15);
        EXPECT_EQ(browser.table()->horizontalHeaderItem(3)->text(), QStringLiteral("Node 3"));
        EXPECT_EQ(legendOf(browser).styles, legend.styles);
        EXPECT_EQ(legendOf(browser).texts, legend.texts);
        EXPECT_EQ(browser.overview()->sceneRect(), QRectF(0, 0, 1160, 1160));
        EXPECT_EQ(browser.overview()->transform(),
                  QTransform::fromScale(0.21120689655172414, 0.21120689655172414));
    }
}

TEST(Conditions, delete_the_scene_of_the_slice_before)
{
    Result result(fourMatrices(), protocolWithTrigger);
    Browser browser(result);
    browser.show();
    const QPointer<QGraphicsScene> scene = browser.overview()->scene();
    browser.click(browser.condition(1, 0));
    EXPECT_TRUE(scene.isNull());
    EXPECT_EQ(browser.window.findChildren<QGraphicsScene *>().size(), 2)
        << "one is the histogram's";
}

TEST(Conditions, of_triggers_cannot_be_browsed)
{
    const std::vector<Eigen::MatrixXf> matrices = fourMatrices();
    Result result(matrices, protocolWithTrigger);
    Browser browser(result);
    browser.show();
    for (const int column : {0, 1, 2}) {
        browser.click(browser.condition(2, column));
        browser.expectShows(matrices[0]);
        EXPECT_EQ(browser.condition(2, column)->cursor().shape(), Qt::ArrowCursor);
    }
    const QWidget *const condition = browser.condition(1, 1);
    browser.moveMouse(condition->mapTo(&browser.window, condition->rect().center()));
    EXPECT_EQ(condition->cursor().shape(), Qt::PointingHandCursor);
}

TEST(Conditions, that_become_unclickable_while_hovered_keep_their_cursor)
{
    const std::vector<Eigen::MatrixXf> matrices = fourMatrices();
    Result result(matrices, protocolWithTrigger);
    Browser browser(result);
    browser.show();
    auto *const condition = qobject_cast<MyLabel *>(browser.condition(1, 1));
    browser.moveMouse(condition->mapTo(&browser.window, condition->rect().center()));
    condition->setClickable(false);
    browser.click(condition);
    browser.expectShows(matrices[0]);
    browser.moveMouse(browser.outside);
    EXPECT_EQ(condition->cursor().shape(), Qt::PointingHandCursor);
}

TEST(Conditions, of_any_event_but_zero_are_triggers)
{
    Result result(fourMatrices(), {{1, "A", 0}, {2, "B", 1}, {3, "C", 2}, {4, "D", -1}});
    Browser browser(result);
    const QStringList texts = {"A", "Trigger: B", "Trigger: C", "Trigger: D"};
    for (int row = 0; row < 4; ++row)
        EXPECT_EQ(qobject_cast<QLabel *>(browser.condition(row, 1))->text(), texts[row]);
}

TEST(Conditions, with_placeholders_in_their_names_stay_as_they_are)
{
    Result result({gradient(3, 3)}, {{1, "50 %1 %2", 1}});
    Browser browser(result);
    EXPECT_EQ(qobject_cast<QLabel *>(browser.condition(0, 1))->text(),
              QStringLiteral("Trigger: 50 %1 %2"));
}

TEST(Conditions, with_markup_in_their_names_are_shown_as_they_are_written)
{
    const Eigen::MatrixXf matrix = gradient(2, 2);
    Result result({matrix, matrix}, {{1, "<b>go</b>", 0}, {11, "<i>cue</i>", 1}});
    Browser browser(result);
    browser.show();
    const QStringList expected = {"<b>go</b>", "Trigger: <i>cue</i>"};
    for (int row = 0; row < 2; ++row) {
        const auto *const label = qobject_cast<QLabel *>(browser.condition(row, 1));
        ASSERT_NE(label, nullptr);
        EXPECT_EQ(label->text(), expected[row]);
        EXPECT_EQ(label->textFormat(), Qt::PlainText);
    }
}

TEST(Conditions, are_browsed_by_their_labels_alone)
{
    Result result(fourMatrices(), protocolWithTrigger);
    Browser browser(result);
    browser.window.browseMatrix(); // from nobody
    browser.expectShows(fourMatrices()[0]);
}

// What is not there.

TEST(BrowserWithout, a_results_dialog_shows_nothing)
{
    QWidget other;
    ConnectivityObjectUI withoutResult(nullptr, nullptr);
    for (QWidget *parent :
         {static_cast<QWidget *>(nullptr), &other, static_cast<QWidget *>(&withoutResult)}) {
        ViewMatrix window(parent);
        window.setConditionNames({"Rest", "Faces"});
        window.setConditionTimes({1});
        window.buildConditionList();
        window.loadRange();
        window.fillTable();
        window.paintTable();
        window.drawOverview();
        window.buildLegend();
        window.show();
        auto *const table = window.findChild<QTableWidget *>(QStringLiteral("tableMatrix"));
        EXPECT_EQ(table->rowCount(), 0);
        EXPECT_EQ(table->columnCount(), 0);
        // A click clears before it looks for the result.
        QTest::mouseClick(window.findChild<MyLabel *>(), Qt::LeftButton);
        EXPECT_EQ(table->rowCount(), 0);
    }
}

TEST(BrowserWithout, its_result_clears_the_table_at_a_click)
{
    Result result(fourMatrices(), protocolWithTrigger);
    Browser browser(result);
    browser.show();
    result.dialog.connectivityObject = nullptr;
    browser.click(browser.condition(1, 0));
    EXPECT_EQ(browser.table()->rowCount(), 6);
    EXPECT_EQ(browser.table()->item(0, 0), nullptr);
    EXPECT_TRUE(browser.overview()->scene()->items().isEmpty());
    browser.moveMouse(browser.table()->viewport()->mapTo(&browser.window, QPoint(7, 7)));
    EXPECT_EQ(browser.value()->text(), QString());
    browser.window.paintTable();
}

TEST(BrowserWithout, a_matrix_for_its_condition_clears_the_table_at_a_click)
{
    Result result({gradient(6, 6)}, protocolWithTrigger);
    Browser browser(result);
    browser.show();
    browser.click(browser.condition(1, 0));
    EXPECT_EQ(browser.table()->item(0, 0), nullptr);
    EXPECT_TRUE(browser.overview()->scene()->items().isEmpty());
    browser.click(browser.condition(0, 0));
    browser.expectShows(gradient(6, 6));
}

TEST(BrowserWithout, an_event_flag_takes_the_condition_as_a_block)
{
    Result result(fourMatrices(), protocolWithTrigger);
    SubjectProtocol protocol = result.subject->protocol();
    protocol.volumeEvents.clear();
    result.subject->setProtocol(protocol);
    Browser browser(result);
    EXPECT_EQ(qobject_cast<QLabel *>(browser.condition(2, 1))->text(), QStringLiteral("Press"));
}

TEST(BrowserWithout, numbers_in_its_matrices_survives)
{
    struct Row {
        const char *name;
        std::vector<Eigen::MatrixXf> matrices;
        const char *legend;
    };
    const Row rows[] = {
        {"no matrices", {}, "nan"},
        {"0 x 0", {Eigen::MatrixXf(0, 0)}, "nan"},
        {"1 x 1", {Eigen::MatrixXf::Constant(1, 1, 0.7f)}, "1"},
        {"all NaN", {Eigen::MatrixXf::Constant(4, 4, nan)}, "nan"},
        {"all zero", {Eigen::MatrixXf::Zero(4, 4)}, "0"},
        {"all equal", {Eigen::MatrixXf::Constant(4, 4, -3.0f)}, "-3"},
        {"infinite", {Eigen::MatrixXf::Constant(4, 4, infinity)}, "nan"},
        {"minus infinite", {Eigen::MatrixXf::Constant(4, 4, -infinity)}, "nan"},
        {"2 x 3", {gradient(2, 3)}, "1"},
        {"3 x 0", {Eigen::MatrixXf(3, 0)}, "nan"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        Result result(row.matrices, {{1, "Rest", 0}});
        Browser browser(result);
        browser.show();
        const Eigen::MatrixXf shown = row.matrices.empty() ? Eigen::MatrixXf() : row.matrices[0];
        browser.expectShows(shown);
        EXPECT_EQ(legendOf(browser).texts.constFirst(), QString::fromLatin1(row.legend));
        browser.click(browser.condition(0, 0));
        if (!row.matrices.empty())
            browser.expectShows(shown);
        browser.window.pickValue(0, 0);
        EXPECT_FALSE(browser.window.grab().isNull());
    }
}

TEST(Browser, can_be_destroyed_under_the_mouse)
{
    auto result = std::make_unique<Result>(fourMatrices(), protocolWithTrigger);
    const QPointer<ViewMatrix> window = new ViewMatrix(&result->dialog);
    window->loadRange();
    window->fillTable();
    window->show();
    auto *const table = window->findChild<QTableWidget *>(QStringLiteral("tableMatrix"));
    const QPoint inCell = table->visualItemRect(table->item(1, 1)).center();
    QTest::mouseMove(window->windowHandle(), QPoint(3, 3));
    QTest::mouseMove(window->windowHandle(), table->viewport()->mapTo(window, inCell));
    ASSERT_NE(window->findChild<QLabel *>(QStringLiteral("lbl_Value"))->text(), QString());
    result.reset();
    EXPECT_TRUE(window.isNull());
}

TEST(Browser, is_only_hidden_when_it_is_closed)
{
    Result result(fourMatrices(), protocolWithTrigger);
    Browser browser(result);
    browser.window.setAttribute(Qt::WA_DeleteOnClose, false);
    browser.show();
    browser.click(browser.condition(3, 0));
    browser.window.close();
    EXPECT_FALSE(browser.window.isVisible());
    browser.window.show();
    browser.expectShows(fourMatrices()[3]);
}

} // namespace
